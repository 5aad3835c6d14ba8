#include "anatomy/cAnatomicDescription.h"

#include "anatomy/ToothString.h"
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
    if (UCase(Trim(ADAnaRegion)) == "T-D1217") ADAnaRegion = "T-D1213";
    if (ADName.empty()) ADName = TextOrEmpty(rs, "Name");
    rs->Close();
}

String cAnatomicDescription::UpdateStatement() const {
    return sql("UPDATE StandardGroupName ", "SET ", "Name='", FixSqlString(ADName), "', Comments='",
               FixSqlString(ADComments), "', OrderNo=", ADOrderNo, ", TGId=", ADId, ", ", "ADType =", ADType, ", ",
               "ADLaterality ='", AsItStands(ADLaterality), "', ", "ADAnaRegion ='", AsItStands(ADAnaRegion), "', ",
               "ADAnaRegionMod ='", AsItStands(ADAnaRegionMod), "', ", "ADPriStructure ='", AsItStands(ADPriStructure),
               "'", " WHERE StandardNameID=", ID, ";");
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
               ", ", ADType, ", '", AsItStands(ADLaterality), "', '", AsItStands(ADAnaRegion), "', '",
               AsItStands(ADAnaRegionMod), "', '", AsItStands(ADPriStructure), "'") +
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
    static const Interface& self = InterfaceOf<Self>({
        Operation<&Self::InitCollection>("InitCollection"),
        Operation<&Self::LoadSGN>("LoadSGN", {"Con", "lADId"}),
        Operation<&Self::SaveSGN>("SaveSGN", {"Con"}),
        Property<&Self::ADName>("ADName"),
        Property<&Self::ADLaterality>("ADLaterality"),
        Property<&Self::ADAnaRegion>("ADAnaRegion"),
        Property<&Self::ADAnaRegionMod>("ADAnaRegionMod"),
        Property<&Self::ADPriStructure>("ADPriStructure"),
        Property<&Self::ADType>("ADType"),
        Property<&Self::ID>("ID"),
        Property<&Self::ADOrderNo>("ADOrderNo"),
        Property<&Self::ADComments>("ADComments"),
        ObjectProperty<&Self::cTeeth, &Self::SetcTeeth>("cTeeth"),
        PropertyGetFirst<&Self::ADId>("ADId", PutForm::ByReference),
        Operation<&Self::DeleteSGN>("DeleteSGN", {"Con"}),
        Operation<&Self::DeleteSGNOnTGId>("DeleteSGNOnTGId", {"Con"}),
        Operation<&Self::GetAsString>("GetAsString", {Optional("bComm", true)}),
        Operation<&Self::SetTeethFromString>("SetTeethFromString", {"sIOstring", "oTeeth"}),
    });
    return self;
}

}  // namespace OXClass
