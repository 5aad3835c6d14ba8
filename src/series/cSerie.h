#pragma once

#include "frame/SharedTypes.h"

namespace OXClass {

/// One series of images of a study: a row of Series_T, and the placing of its images in a layout. An
/// object belongs to one thread.
class cSerie final : public Object {
public:
    static constexpr const char* ClassName = "cSerie";
    static constexpr bool IsGlobal = true;  ///< `Global<cSerie>()` gives the thread's shared instance

    Date SeriesDateTime;
    bool SeriesDerived = false;
    String SeriesDescription;
    String InstanceAv;  ///< availability on the server, "ONLINE", "NEARLINE" or other; not stored
    Long OrgServer = 0;
    String Key;  ///< the key under which a collection holds it; not stored
    gdcmObjectLocation location = gdcmObjectLocUnknown;
    String SeriesName;  ///< not stored
    Long ImgCount = 0;  ///< the number of its images; `HangSeries` goes by it

    /// Brings `location` into line with `InstanceAv`: the server's part of it is set for "ONLINE" and
    /// "NEARLINE", and taken away for anything else.
    void adjustLocationStatus();

    /// Loads the series with this UID (a text with a ".") or with this key. Returns false and changes
    /// nothing if there is none. An `ImgCount` other than 0 stays. Raises, with "cSerie.loadseries, " in
    /// front of the source, 94 for a null key, 0x80040E14 for a text that is neither a UID nor a number,
    /// and what the database raises; members read before stay new.
    bool loadSeries(String Series, const Ref<Connection>& Con);

    /// Writes the series and returns true; `ID` becomes the row's key. The row is looked for by `ID`
    /// where `CheckExistOnID` is true, else by `instanceUID`; where there is none a new one is made.
    ///
    /// Returns false, with nothing asked of the database, for an empty `instanceUID` or a `studyID` of 0.
    /// Quotes are stored doubled in the description, which is cut to 64 characters; an empty number is
    /// not written. Raises, with "cSerie.SaveSeries, " in front of the source, what the database raises;
    /// nothing is written then.
    bool SaveSeries(const bool& CheckExistOnID, const Ref<Connection>& Con);

    Long studyID = 0;
    Long TemplateID = 0;  ///< its layout: a template's `TCDicomID`, not its key
    Long ID = 0;          ///< the row's key
    String seriesNumber;
    String Modality;
    String instanceUID;
    bool Approved = false;  ///< held for the caller, not stored; so is the next
    bool Changed = false;

    /// Deletes the row, if it is there; images stay. Raises what the database raises.
    void Delete(const Ref<Connection>& Con);

    /// Stores the series as a new image card of the patient of the first image: a canvas of its layout's
    /// size, with each image in the slot of its frame, and those that hang nowhere in a grid of five
    /// columns from the top left. Name and dates are `SeriesName` and `SeriesDateTime`; the series itself
    /// stays as it is. Without images nothing happens, and no statement runs.
    ///
    /// `colImages` is a `Collection` of images or a `cImages`. Raises 13 for a member that is no image, 6
    /// for a canvas beyond 32 bits, and as `cTemplate::GetTemplate` and `cImagecard::Save`; what was
    /// written before a failure stays written.
    void SaveAsIC(const Ref<Connection>& Con, const Ref<Enumerable>& colImages) const;

    /// Lays the images out: derives their side, jaw and region where only teeth are known, chooses a
    /// standard layout into `TemplateID`, and gives each image its `FrameNumber`, 0 for none. Nothing is
    /// stored; the caller saves images and series.
    ///
    /// `colImgs` is a `Collection` of images or a `cImages`. Returns the layout; 0 where `ImgCount` is 0,
    /// and then nothing else happens, and for 21 images or more, which are numbered by capture time.
    /// `conn` is used where no image found a frame, to read the layout's own order. Raises 6 for more
    /// than 32767 images or a frame sum beyond that, 13 for a member that is no image, 91 for a tooth
    /// string of teeth that are none, and what the database raises; what was changed before stays.
    Long HangSeries(const Ref<Enumerable>& colImgs, const Ref<Connection>& conn);

    /// Fills the object from the current row of Series_T, as `loadSeries` does. Raises 13 or 6 for a value
    /// that a member can't take, and names the column; the members read before it stay new. No part of the
    /// interface.
    void ReadRow(const Ref<Recordset>& rs);

    const Interface& Describe() const override;

private:
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass
