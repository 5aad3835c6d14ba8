#include "series/cSerie.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

void cSerie::adjustLocationStatus() {
    if (InstanceAv == "ONLINE" || InstanceAv == "NEARLINE") {
        if (location == gdcmObjectLocUnknown) location = gdcmObjectLocServer;
        if (location == gdcmObjectLocLocal) location = gdcmObjectLocBoth;
    } else {
        if (location == gdcmObjectLocBoth) location = gdcmObjectLocLocal;
        if (location == gdcmObjectLocServer) location = gdcmObjectLocUnknown;
    }
}

bool cSerie::loadSeries(String Series, const Ref<Connection>& Con) {
    return Prefixed("cSerie.loadseries, ", [&] {
        const Ref<Recordset> rs =
            OpenPlain(Con, Contains(Series, ".")
                               ? sql("SELECT * FROM Series_T  ", " WHERE seriesInstanceUID ='", Verbatim(Series), "';")
                               : sql("SELECT * FROM Series_T  ", " WHERE series_id =", Verbatim(Series), ";"));
        const bool found = !rs->Eof();
        if (found) ReadRow(rs);
        rs->Close();
        return found;
    });
}

void cSerie::ReadRow(const Ref<Recordset>& rs) {
    ID = Required<Long>(rs, "Series_ID");
    instanceUID = TextOrEmpty(rs, "SeriesInstanceUID");
    Modality = TextOrEmpty(rs, "Modality");
    seriesNumber = Nz<String>(rs, "seriesNumber");
    TemplateID = Nz<Long>(rs, "template_ID");
    studyID = Nz<Long>(rs, "Study_ID");
    OrgServer = Nz<Long>(rs, "orgServerID");
    SeriesDescription = TextOrEmpty(rs, "SeriesDescription");
    SeriesDateTime = NzWholeSeconds(rs, "SeriesDateTime");
    SeriesDerived = Nz<double>(rs, "Derived_BT") != 0;
    location = Nz<gdcmObjectLocation>(rs, "location");
    if (ImgCount == 0) ImgCount = Nz<Long>(rs, "NumberOfImages");
}

bool cSerie::SaveSeries(const bool& CheckExistOnID, const Ref<Connection>& Con) {
    return Prefixed("cSerie.SaveSeries, ", [&] {
        if (instanceUID.empty() || studyID == 0) return false;
        const Ref<Recordset> rs = OpenUpdatable(
            Con, CheckExistOnID
                     ? sql("SELECT * FROM Series_T WHERE series_id =", ID, ";")
                     : sql("SELECT * FROM Series_T WHERE SeriesInstanceUID ='", Verbatim(instanceUID), "';"));
        if (rs->Eof()) rs->AddNew();
        WriteRow(rs);
        rs->Update();
        ID = Required<Long>(rs, "Series_ID");
        if (ID == 0) MsgBox("FEL");
        rs->Close();
        return true;
    });
}

void cSerie::WriteRow(const Ref<Recordset>& rs) const {
    constexpr Long descriptionWidth = 64;
    rs->Collect("SeriesInstanceUID", instanceUID);
    rs->Collect("Modality", Modality);
    rs->Collect("template_ID", TemplateID);
    rs->Collect("Study_ID", studyID);
    rs->Collect("NumberOfImages", ImgCount);
    rs->Collect("orgServerID", OrgServer);
    rs->Collect("SeriesDescription", Left(FixSqlString(SeriesDescription).Text(), descriptionWidth));
    rs->Collect("SeriesDateTime", Stamp(SeriesDateTime).text);
    rs->Collect("Derived_BT", Long{SeriesDerived});
    rs->Collect("location", location);
    if (!seriesNumber.empty()) rs->Collect("seriesNumber", seriesNumber);
}

void cSerie::Delete(const Ref<Connection>& Con) {
    const Ref<Recordset> rs = OpenUpdatable(Con, sql("select * from Series_T where Series_T.Series_ID=", ID));
    if (rs->Eof() && rs->Bof()) return;
    rs->Delete(ADODB::adAffectCurrent);
    rs->Close();
}

const Interface& cSerie::Describe() const {
    static const Interface& self = InterfaceOf<cSerie>(
        "A DICOM series of images of a study.",
        {
            Property<&cSerie::SeriesDateTime>("SeriesDateTime", "The date and time of the series, in whole seconds."),
            Property<&cSerie::SeriesDerived>("SeriesDerived", "True if the images are derived from others."),
            Property<&cSerie::SeriesDescription>(
                "SeriesDescription", "The description; 64 characters are stored, a single quote counts as two."),
            Property<&cSerie::InstanceAv>(
                "InstanceAv", "The availability on the server, ONLINE, NEARLINE or another text; not stored."),
            Property<&cSerie::OrgServer>(
                "OrgServer", "The number of the DICOM server that the series comes from; 0 if it was captured here."),
            PropertyGetFirst<&cSerie::Key>("Key", "The key of the series in a collection of the client; not stored.",
                                           PutForm::ByReference),
            Property<&cSerie::location>(
                "location", "Where the images of the series are: unknown, local, on a DICOM server, or both."),
            Property<&cSerie::SeriesName>(
                "SeriesName", "The name for the image card that SaveAsIC stores; not stored with the series."),
            Property<&cSerie::ImgCount>(
                "ImgCount",
                "The number of images; HangSeries selects the layout by it. A load changes it only if it is 0."),
            Operation<&cSerie::adjustLocationStatus>(
                "adjustLocationStatus",
                "Adds the server to location if InstanceAv is ONLINE or NEARLINE, removes it for any other text."),
            Operation<&cSerie::loadSeries>(
                "loadSeries", "Loads a series. Returns false if there is none and changes nothing then.",
                {{"Series", "The series instance UID, or a text without a point: the key in decimal."},
                 {"Con", Help::Connection}}),
            Operation<&cSerie::SaveSeries>(
                "SaveSeries",
                "Stores the series. Returns false and does nothing if instanceUID is empty or studyID is 0.",
                {{"CheckExistOnID",
                  "True searches the row by ID, false by instanceUID; without a row, one is inserted."},
                 {"Con", Help::Connection}}),
            Property<&cSerie::studyID>("studyID", "The key of the study; a series with 0 is not saved."),
            Property<&cSerie::TemplateID>(
                "TemplateID", "The layout, as the TCDicomID of a template, not its key; 0 if there is none."),
            Property<&cSerie::ID>("ID", "The key of the series in the database; 0 if the series is not stored."),
            Property<&cSerie::seriesNumber>(
                "seriesNumber", "The DICOM series number, at most 16 characters; a save does not write an empty one."),
            Property<&cSerie::Modality>("Modality", "The DICOM modality, such as PX or DX, at most 16 characters."),
            Property<&cSerie::instanceUID>(
                "instanceUID",
                "The DICOM series instance UID, at most 64 characters; a series without one is not saved."),
            PropertyGetFirst<&cSerie::Approved>(
                "Approved", "True if the card list found all images approved or none captured yet; not stored."),
            PropertyGetFirst<&cSerie::Changed>(
                "Changed",
                "True if the client marks the series as changed; not stored, and the library never uses it."),
            Operation<&cSerie::Delete>("Delete", "Deletes the row of the series; its images stay in the database.",
                                       {{"Con", Help::Connection}}),
            Operation<&cSerie::SaveAsIC>("SaveAsIC",
                                         "Stores the series as a new image card; does nothing if there are no images.",
                                         {{"Con", Help::Connection},
                                          {"colImages", "The images of the series; the first one names the patient."}}),
            Operation<&cSerie::HangSeries>(
                "HangSeries",
                "Sets TemplateID and the FrameNumber of each image, and returns TemplateID; stores nothing.",
                {{"colImgs", "The images of the series."}, {"conn", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
