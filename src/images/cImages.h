#pragma once

#include "images/cImage.h"

namespace OXClass {

/// The owner whose images `cImages::LoadAll4Object` loads. `iootPatient` selects by the column PatientID,
/// `iootSeries` by Series_ID. The other two select nothing: with them, a caller must pass a condition.
enum ImageOwnerOjectTypes : Long { iootUnknown = 0, iootPatient = 1, iootImageCard = 2, iootSeries = 3 };

/// The images of a patient, of a series, or of a condition in SQL, as a keyed list that is counted from 1.
///
/// `Remove` raises 9 for a position and 5 for a key that doesn't exist. An object belongs to the thread that
/// created it.
class cImages final : public Keyed<cImage> {
public:
    static constexpr const char* ClassName = "cImages";

    // ---- load --------------------------------------------------------------------------------------

    /// Replaces the members by the images of an owner, oldest capture first and by key among equal dates,
    /// under the keys "K" + `cImage::ID`. Returns their number. Doesn't load the comments.
    ///
    /// `ObjectType` and `ID` name the owner: the key of a patient or of a series. If `SQLWhereClause` isn't
    /// empty, it selects the images instead, with its own WHERE, unchanged and unchecked. Any other owner
    /// raises the statement error of the database. The list is emptied before the statement runs.
    ///
    /// An image that can't be read whole is added with the members that were read; `Unread` lists it, and its
    /// `LoadCompletion` names the column. Its key is "K0" if the reading ended before the key. Raises 457 for
    /// a second image of one key, such as "K0", as `cImage::GetFromRecord` for a `RootId` that can't be read,
    /// and what the database raises; the images before it stay in the list.
    Long LoadAll4Object(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                        const String& SQLWhereClause = {});

    /// Loads as `LoadAll4Object` does, but omits the images that can't be read whole: only `Unread` lists
    /// them. Raises 457 for a second image of one key and what the statement raises. Not part of the
    /// interface.
    Long LoadReadable(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                      const String& SQLWhereClause = {});

    /// Returns the rows that the last load of either kind could not read whole, in their order. The reference
    /// is valid until the next load. Not part of the interface.
    const std::vector<UnreadRow>& Unread() const noexcept { return unread_; }

    // ---- members -----------------------------------------------------------------------------------

    /// Returns the image at a position or under a key, or null if there is none. Raises nothing.
    Ref<cImage> Item(Variant vntIndexKey) const { return Find(vntIndexKey); }

    /// Creates an image with these values, adds it at the end, under `sKey` unless that is empty, and returns
    /// it. Stores nothing in the database.
    ///
    /// Each argument becomes the property of its name; the other properties keep their initial values, `Key`
    /// too. The image refers to the given comments and doesn't copy them; if they are null, it gets an empty
    /// list. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cImage> Add(const String& URL, const Long& ID, const xigImageTypes& ImageType, const String& sTeeth,
                    const bool& Approved, const Long& PatID, const Date& dateTime, const Long& MirrRotStatus,
                    const Long& DPIY, const Long& DPIX, const Long& RootId, const Long& Pregnant,
                    const Long& ImageNumberInSeries, const Integer& DicomStatus, const Long& studyID,
                    const Long& FrameNumber, const Long& seriesID, const String& instanceUID, const String& Laterality,
                    const String& AnaRegion, const String& AnaRegionMod, const Ref<cComments>& Comments,
                    const String& Root_RootDirectory, const String& HWSourceTxt, const Long& ApprGamma,
                    const Long& ApprBrightness, const Long& ApprContrast, const bool& ApprInvert,
                    const String& CapturePerson, const String& RespPerson, const String& sKey = {});

    /// Adds an existing image at the end, under `sKey` unless that is empty, which also becomes the image's
    /// `Key`. Returns the image, and sets the caller's variable to null. Raises 457 if the key exists; the
    /// list and the variable stay unchanged then, but the image's `Key` is set.
    Ref<cImage> AddObject(Ref<cImage>& oImage, const String& sKey = {});

    const Interface& Describe() const override;

private:
    Long Load(const Ref<Connection>& con, const String& statement, bool partlyReadToo);

    std::vector<UnreadRow> unread_;
};

}  // namespace OXClass

/// The names and numbers of `ImageOwnerOjectTypes`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::ImageOwnerOjectTypes> {
    static constexpr const char* Name = "ImageOwnerOjectTypes";
    static constexpr EnumerationValue Values[] = {{"iootUnknown", OXClass::iootUnknown},
                                                  {"iootPatient", OXClass::iootPatient},
                                                  {"iootImageCard", OXClass::iootImageCard},
                                                  {"iootSeries", OXClass::iootSeries}};
};
