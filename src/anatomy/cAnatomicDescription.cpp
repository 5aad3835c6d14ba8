#include "anatomy/RegionCodes.h"
#include "anatomy/cAnatomicDescription.h"

#include "anatomy/ToothString.h"
#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Ref<cTeeth>& cAnatomicDescription::cTeeth() const {
    if (!teeth_) teeth_ = New<OXClass::cTeeth>();
    return teeth_;
}

void cAnatomicDescription::InitCollection() {
    teeth_ = nullptr;
    for (const Integer tooth : AllTeeth) cTeeth()->Add(false, tooth, "Tooth" + CStr(Long{tooth}));
}

void cAnatomicDescription::LoadSGN(const Ref<Connection>& Con, const Long& lADId) {
    const Ref<Recordset> rs = OpenClient(Con, sql("SELECT * ", "FROM StandardGroupName ", "Where TGId = ", lADId, ";"));
    if (rs->Eof()) return;
    ADAnaRegion = TextOrEmpty(rs, "ADAnaRegion");
    ADAnaRegionMod = TextOrEmpty(rs, "ADAnaRegionMod");
    ADLaterality = TextOrEmpty(rs, "ADLaterality");
    ID = Required<Long>(rs, "StandardNameID");
    ADComments = Required<String>(rs, "Comments");
    ADOrderNo = Required<Long>(rs, "OrderNo");
    ADId = Nz<Long>(rs, "TGId");
    ADType = Required<AnaDescType>(rs, "ADType");
    ADPriStructure = TextOrEmpty(rs, "ADPriStructure");
    if (ADType != adtIntraOral)
        InitCollection();
    else
        SetTeethFromString(ADPriStructure, cTeeth());
    if (UCase(Trim(ADAnaRegion)) == RegionCode::BothJawsOld) ADAnaRegion = RegionCode::BothJaws;
    if (ADName.empty()) ADName = TextOrEmpty(rs, "Name");
    rs->Close();
}

String cAnatomicDescription::UpdateStatement() const {
    return sql("UPDATE StandardGroupName ", "SET ", "Name='", FixSqlString(ADName), "', Comments='",
               FixSqlString(ADComments), "', OrderNo=", ADOrderNo, ", TGId=", ADId, ", ", "ADType =", ADType, ", ",
               "ADLaterality ='", Verbatim(ADLaterality), "', ", "ADAnaRegion ='", Verbatim(ADAnaRegion), "', ",
               "ADAnaRegionMod ='", Verbatim(ADAnaRegionMod), "', ", "ADPriStructure ='", Verbatim(ADPriStructure), "'",
               " WHERE StandardNameID=", ID, ";");
}

String cAnatomicDescription::InsertStatement() const {
    String columns, zeros;
    for (const Integer tooth : AllTeeth) {
        columns += ", Tooth" + CStr(Long{tooth});
        zeros += ", 0";
    }
    return sql("INSERT INTO StandardGroupName ",
               "(Name, Comments, OrderNo, TGId, ADType, ADLaterality, ADAnaRegion, ADAnaRegionMod, "
               "ADPriStructure") +
           columns +
           sql(") VALUES ('", FixSqlString(ADName), "', '", FixSqlString(ADComments), "', ", ADOrderNo, ", ", ADId,
               ", ", ADType, ", '", Verbatim(ADLaterality), "', '", Verbatim(ADAnaRegion), "', '",
               Verbatim(ADAnaRegionMod), "', '", Verbatim(ADPriStructure), "'") +
           zeros + ");";
}

bool cAnatomicDescription::Write(const Ref<Connection>& con) {
    if (ADType == adtIntraOral) ADPriStructure = GetAsString(true);
    if (ID > 0) {
        con->Execute(UpdateStatement());
        return true;
    }
    con->BeginTrans();
    con->Execute(InsertStatement());
    const Ref<Recordset> key = con->Execute(
        sql("SELECT MAX(StandardNameID) AS ID FROM StandardGroupName WHERE Name='", FixSqlString(ADName), "';"));
    ID = CLng(key->Fields("ID").Value());
    if (ADId <= 0) {
        constexpr Long firstGroup = 1000;
        Long group = 0;
        if (__builtin_add_overflow(ID, firstGroup, &group)) Raise(err::Overflow);
        ADId = group;
        con->CommitTrans();
        SaveSGN(con);
    } else {
        con->CommitTrans();
    }
    key->Close();
    return true;
}

Variant cAnatomicDescription::SaveSGN(const Ref<Connection>& Con) {
    return Swallowed([&] { return Write(Con); });
}

void cAnatomicDescription::DeleteSGN(const Ref<Connection>& Con) {
    Con->Execute(sql("DELETE FROM StandardGroupName WHERE StandardNameID=", ID, ";"));
}

void cAnatomicDescription::DeleteSGNOnTGId(const Ref<Connection>& Con) {
    Con->Execute(sql("DELETE FROM StandardGroupName WHERE TGId=", ADId, ";"));
}

String cAnatomicDescription::GetAsString(const bool& bComm) const {
    String teeth;
    if (cTeeth()->Count() == 0) return teeth;
    for (const Integer number : AllTeeth) {
        const String digits = CStr(Long{number});
        if (cTeeth()->Item("Tooth" + digits)->Selected) teeth += digits + (bComm ? "," : "");
    }
    return teeth;
}

void cAnatomicDescription::SetTeethFromString(const String& sIOstring, const Ref<OXClass::cTeeth>&) {
    InitCollection();
    ReadToothString(sIOstring, [&](Integer tooth) { cTeeth()->Item("Tooth" + CStr(Long{tooth}))->Selected = true; });
}

const Interface& cAnatomicDescription::Describe() const {
    using Self = cAnatomicDescription;
    static const Interface& self = InterfaceOf<Self>(
        "The anatomy that an image or a template slot shows: side, region, structure, teeth.",
        {
            Operation<&Self::InitCollection>("InitCollection",
                                             "Replaces cTeeth by the full set of 52 teeth, none of them selected."),
            Operation<&Self::LoadSGN>(
                "LoadSGN", "Loads the first row of a group. Changes nothing and raises nothing if there is none.",
                {{"Con", Help::Connection}, {"lADId", "The number of the group, see ADId."}}),
            Operation<&Self::SaveSGN>(
                "SaveSGN", "Writes the row. Returns false after a failure, which can leave a transaction open.",
                {{"Con", Help::Connection}}),
            Property<&Self::ADName>("ADName", "The name of the group; a load sets it only if it is empty."),
            Property<&Self::ADLaterality>("ADLaterality", "The side: R right, L left, B both, or empty."),
            Property<&Self::ADAnaRegion>(
                "ADAnaRegion", "The code of the anatomic region, such as T-11170; a load changes T-D1217 to T-D1213."),
            Property<&Self::ADAnaRegionMod>(
                "ADAnaRegionMod", "The code of the region modifier, such as T-5100B; empty if there is none."),
            Property<&Self::ADPriStructure>(
                "ADPriStructure",
                "The primary structure; in an intra-oral row the selected teeth, which a save writes here."),
            Property<&Self::ADType>("ADType", "The kind: 0 intra-oral, 1 any other X-ray image, 999 all."),
            Property<&Self::ID>("ID", "The key of the row, which the database assigns; 0 or below if it isn't stored."),
            Property<&Self::ADOrderNo>("ADOrderNo", "The position of the group in lists."),
            Property<&Self::ADComments>("ADComments", "Free text about the group."),
            ObjectProperty<&Self::cTeeth, &Self::SetcTeeth>(
                "cTeeth", "The teeth, never null; a put replaces the collection without copying it."),
            PropertyGetFirst<&Self::ADId>(
                "ADId", "The number of the group; the save of a new row replaces 0 or less by its key + 1000.",
                PutForm::ByReference),
            Operation<&Self::DeleteSGN>("DeleteSGN",
                                        "Deletes the row of ID; templates that name its group stay unchanged.",
                                        {{"Con", Help::Connection}}),
            Operation<&Self::DeleteSGNOnTGId>(
                "DeleteSGNOnTGId", "Deletes all rows of the group ADId; templates that name it stay unchanged.",
                {{"Con", Help::Connection}}),
            Operation<&Self::GetAsString>(
                "GetAsString", "Returns the selected teeth in order: for each tooth its two digits and a comma.",
                {Optional("bComm", "False omits the commas; SetTeethFromString can't read such a text.", true)}),
            Operation<&Self::SetTeethFromString>(
                "SetTeethFromString", "Replaces cTeeth by the full set and selects the teeth that a text names.",
                {{"sIOstring", "For each tooth its two digits and a comma; an empty text selects none."},
                 {"oTeeth", "Ignored; the teeth are selected in this object's own new collection."}}),
        });
    return self;
}

}  // namespace OXClass
