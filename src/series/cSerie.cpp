#include "series/cSerie.h"

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
        const Ref<Recordset> rs = OpenPlain(
            Con, Contains(Series, ".")
                     ? sql("SELECT * FROM Series_T  ", " WHERE seriesInstanceUID ='", AsItStands(Series), "';")
                     : sql("SELECT * FROM Series_T  ", " WHERE series_id =", AsItStands(Series), ";"));
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
                     : sql("SELECT * FROM Series_T WHERE SeriesInstanceUID ='", AsItStands(instanceUID), "';"));
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
    static const Interface& self = InterfaceOf<cSerie>({
        Property<&cSerie::SeriesDateTime>("SeriesDateTime"),
        Property<&cSerie::SeriesDerived>("SeriesDerived"),
        Property<&cSerie::SeriesDescription>("SeriesDescription"),
        Property<&cSerie::InstanceAv>("InstanceAv"),
        Property<&cSerie::OrgServer>("OrgServer"),
        PropertyGetFirst<&cSerie::Key>("Key", PutForm::ByReference),
        Property<&cSerie::location>("location"),
        Property<&cSerie::SeriesName>("SeriesName"),
        Property<&cSerie::ImgCount>("ImgCount"),
        Operation<&cSerie::adjustLocationStatus>("adjustLocationStatus"),
        Operation<&cSerie::loadSeries>("loadSeries", {"Series", "Con"}),
        Operation<&cSerie::SaveSeries>("SaveSeries", {"CheckExistOnID", "Con"}),
        Property<&cSerie::studyID>("studyID"),
        Property<&cSerie::TemplateID>("TemplateID"),
        Property<&cSerie::ID>("ID"),
        Property<&cSerie::seriesNumber>("seriesNumber"),
        Property<&cSerie::Modality>("Modality"),
        Property<&cSerie::instanceUID>("instanceUID"),
        PropertyGetFirst<&cSerie::Approved>("Approved"),
        PropertyGetFirst<&cSerie::Changed>("Changed"),
        Operation<&cSerie::Delete>("Delete", {"Con"}),
        Operation<&cSerie::SaveAsIC>("SaveAsIC", {"Con", "colImages"}),
        Operation<&cSerie::HangSeries>("HangSeries", {"colImgs", "conn"}),
    });
    return self;
}

}  // namespace OXClass
