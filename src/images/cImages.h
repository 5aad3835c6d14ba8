#pragma once

#include "images/cImage.h"

namespace OXClass {

/// Whose images `cImages::LoadAll4Object` loads.
enum ImageOwnerOjectTypes : Long { iootUnknown = 0, iootPatient = 1, iootImageCard = 2, iootSeries = 3 };

/// The images that a client works on: all of a patient, of a series, or of a condition that the caller
/// words. An object belongs to one thread.
class cImages final : public Keyed<cImage> {
public:
    static constexpr const char* ClassName = "cImages";

    /// Loads images, oldest capture first and by counter among equal dates, under the keys "K" + their
    /// counter, and gives their number. Comments are not loaded.
    ///
    /// A condition that isn't empty is used as it stands, its own "where" included, and type and `ID`
    /// are not looked at; otherwise the patient's or the series' images are loaded, and any other type
    /// raises the database's statement error. The list starts empty, even if the statement fails. Raises
    /// 457 for two rows whose counter couldn't be read, and what the database raises; those read before
    /// stay.
    Long LoadAll4Object(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                        const String& SQLWhereClause = {});

    /// The same without the rows that can't be read whole; only `Unread` has them, and none raises. No part
    /// of the interface.
    Long LoadReadable(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                      const String& SQLWhereClause = {});

    /// The rows that the last load of either kind could not read whole, in their order. No part of the
    /// interface.
    const std::vector<UnreadRow>& Unread() const noexcept { return unread_; }

    /// Makes an image of these values, adds it at the end, under `sKey` if that is not empty, and gives
    /// it. The given comments are shared, not copied. Raises 457 for a key that is present.
    Ref<cImage> Add(const String& URL, const Long& ID, const xigImageTypes& ImageType, const String& sTeeth,
                    const bool& Approved, const Long& PatID, const Date& dateTime, const Long& MirrRotStatus,
                    const Long& DPIY, const Long& DPIX, const Long& RootId, const Long& Pregnant,
                    const Long& ImageNumberInSeries, const Integer& DicomStatus, const Long& studyID,
                    const Long& FrameNumber, const Long& seriesID, const String& instanceUID,
                    const String& Laterality, const String& AnaRegion, const String& AnaRegionMod,
                    const Ref<cComments>& Comments, const String& Root_RootDirectory,
                    const String& HWSourceTxt, const Long& ApprGamma, const Long& ApprBrightness,
                    const Long& ApprContrast, const bool& ApprInvert, const String& CapturePerson,
                    const String& RespPerson, const String& sKey = {});

    /// The image at a position or under a key; nothing where there is none. Never raises.
    Ref<cImage> Item(const Variant& vntIndexKey) const { return Find(vntIndexKey); }

    /// Adds an image at the end, under `sKey` if that is not empty, which then becomes the image's `Key`
    /// too. Gives the image, and sets the caller's variable to nothing. Raises 457 for a key that is
    /// present; the image's `Key` is set by then.
    Ref<cImage> AddObject(Ref<cImage>& oImage, const String& sKey = {});

    const Interface& Describe() const override;

private:
    Long Load(const Ref<Connection>& con, const String& statement, bool partlyReadToo);

    std::vector<UnreadRow> unread_;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::ImageOwnerOjectTypes> {
    static constexpr const char* Name = "ImageOwnerOjectTypes";
    static constexpr EnumerationValue Values[] = {
        {"iootUnknown", 0}, {"iootPatient", 1}, {"iootImageCard", 2}, {"iootSeries", 3}};
};
