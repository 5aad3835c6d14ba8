#pragma once

#include "frame/SharedTypes.h"

namespace OXClass {

/// One series of images of a study: a row of Series_T, and the hanging of its images in a layout.
///
/// A null column reads as 0 or the empty text, except the key. An object belongs to the thread that created
/// it.
class cSerie final : public Object {
public:
    static constexpr const char* ClassName = "cSerie";
    /// `Global<cSerie>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the series isn't stored. Column Series_ID.
    Long ID = 0;
    /// The DICOM series instance UID, at most 64 characters. Column SeriesInstanceUID.
    String instanceUID;
    /// The DICOM series number, at most 16 characters. A null reads as "0"; a save doesn't write an empty
    /// one.
    String seriesNumber;
    /// The key of the study. Column Study_ID.
    Long studyID = 0;

    // ---- load, save, delete ------------------------------------------------------------------------

    /// Loads the series that `Series` names, a UID if it contains a ".", otherwise a key in decimal. Returns
    /// true. Returns false and changes nothing if there is none. An `ImgCount` other than 0 stays unchanged.
    ///
    /// Raises, with "cSerie.loadseries, " in front of the source, 0x80040E14 for a key that isn't a whole
    /// number and for a UID with an unpaired single quote, 94 for a null key, 13 or 6 for a value that
    /// doesn't convert, and what the database raises. Members that were read before the failure keep their
    /// new values.
    bool loadSeries(String Series, const Ref<Connection>& Con);

    /// Fills the object from the current row of Series_T, as `loadSeries` does, and raises as that without
    /// the prefix; the failure names the column. Not part of the interface.
    void ReadRow(const Ref<Recordset>& rs);

    /// Writes the series and returns true. Searches the row by `ID` if `CheckExistOnID` is true, otherwise by
    /// `instanceUID`, and inserts a row if there is none. `ID` becomes the key of the row. Returns false and
    /// sends no statement if `instanceUID` is empty or `studyID` is 0.
    ///
    /// The description is stored with its single quotes doubled, and then cut to 64 characters.
    ///
    /// If the key of the row is 0, shows the message box "FEL", and still returns true: the row is written.
    /// Raises, with "cSerie.SaveSeries, " in front of the source, 0x80040E14 for an unpaired single quote in
    /// the UID that is searched, 0x80040E21 for a text that is longer than its column, 5 for a date outside
    /// the years 100 to 9999, 0x80040E38 if another program changed the row meanwhile, and what the database
    /// raises; nothing is written then. Raises 94 if the key of a new row can't be read back; the row is
    /// written then, and `ID` stays unchanged.
    bool SaveSeries(const bool& CheckExistOnID, const Ref<Connection>& Con);

    /// Deletes the row of `ID`, if it exists. Its images, and all members, stay unchanged. Raises 0x80040E38
    /// if another program deleted the row meanwhile, and what the database raises.
    void Delete(const Ref<Connection>& Con);

    // ---- hanging -----------------------------------------------------------------------------------

    /// The layout in which the series hangs: a template's `TCDicomID`, not its key. Column template_ID.
    Long TemplateID = 0;
    /// The number of images, column NumberOfImages. `HangSeries` chooses the layout by it, not by the number
    /// of images that it receives.
    Long ImgCount = 0;

    /// Hangs the images: chooses a standard layout for `ImgCount` images, stores its number in `TemplateID`,
    /// and sets the `FrameNumber` of each image, 0 if it has no frame. Returns the layout. Stores nothing in
    /// the database: the caller saves the images and the series.
    ///
    /// `colImgs` is a `Collection` of images or a `cImages`. First derives side, region and region modifier
    /// of an image from its teeth where they are empty. If no image finds a frame by its anatomy, reads the
    /// layout's own order through `conn`, which is otherwise not used. Returns 0 and does nothing if
    /// `ImgCount` is 0. Returns 0 for 21 images or more, and numbers them by their time of capture.
    ///
    /// Raises 6 for an `ImgCount` beyond 16 bits and 91 for a null collection, before anything is changed;
    /// 13 for a member that isn't an image; 91 for a tooth string that names something else than teeth, but
    /// only in the full-mouth layouts 5 and 6; 6 for more than 32767 images or a sum of frames beyond 16
    /// bits; and what the database raises. What was changed before a failure stays changed.
    Long HangSeries(const Ref<Enumerable>& colImgs, const Ref<Connection>& conn);

    /// Stores the series as a new image card of the patient of the first image, with each image in the slot
    /// of its frame, or in a grid if the layout has no such slot (`SlotPlacing`). The canvas has the size of
    /// the layout; `SeriesName` becomes the name, `SeriesDateTime` both dates. The series stays unchanged.
    ///
    /// `colImages` is a `Collection` of images or a `cImages`. Without images does nothing and runs no
    /// statement. An image whose `ID` is 0 isn't stored.
    ///
    /// Raises 91 for a null collection; 424, 91 or 438 for a first member that isn't an object, is null or
    /// has no `PatID`; 13 for any other member that isn't an image; 13 or 6 for a `FrameNumber` that isn't a
    /// number; 6 for a canvas beyond 32 bits; all these before anything is written. Raises as
    /// `cTemplate::GetTemplate` and `cImagecard::Save`; what that wrote before a failure stays written.
    void SaveAsIC(const Ref<Connection>& Con, const Ref<Enumerable>& colImages) const;

    // ---- description -------------------------------------------------------------------------------

    /// The DICOM modality, such as "PX" or "DX", at most 16 characters. It influences the layout.
    String Modality;
    /// The description. One that contains "CEPH" marks the images of a series of modality DX as cephalograms.
    String SeriesDescription;
    /// The date and time of the series, in whole seconds.
    Date SeriesDateTime;
    /// True if the images are derived from others. Column Derived_BT.
    bool SeriesDerived = false;
    /// The name of the image card that `SaveAsIC` stores. Not stored in Series_T.
    String SeriesName;

    // ---- where the images are ----------------------------------------------------------------------

    gdcmObjectLocation location = gdcmObjectLocUnknown;
    /// The number of the server that the series comes from; 0: captured here. Column orgServerID.
    Long OrgServer = 0;
    /// The availability on the server, "ONLINE", "NEARLINE" or anything else. Not stored.
    String InstanceAv;

    /// Makes `location` agree with `InstanceAv`: adds the server for "ONLINE" and "NEARLINE", removes it for
    /// any other text. Raises nothing.
    void adjustLocationStatus();

    // ---- held for the client, not stored -----------------------------------------------------------

    /// The key under which a collection contains it.
    String Key;
    /// The card list sets this true if all images are approved, or if there are none yet.
    bool Approved = false;
    bool Changed = false;

    const Interface& Describe() const override;

private:
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass
