#include "cards/cTemplateAttribute.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns a measure: the column `fullView`, or the column `preview` if that is 0 or null.
double Measure(const Ref<Recordset>& rs, std::string_view fullView, std::string_view preview) {
    const double measure = Nz<double>(rs, fullView);
    return measure != 0 ? measure : Nz<double>(rs, preview);
}

}  // namespace

void cTemplateAttribute::ReadRow(const Ref<Recordset>& rs) {
    constexpr float usualProportions = 0.7F;
    TAComments = TextOrEmpty(rs, "TAComments");
    TAHeight = Measure(rs, "TAFullViewHeight", "TAPreviewHeight");
    TAPosX = Measure(rs, "TAFullViewPosX", "TAPreviewPosX");
    TAPosY = Measure(rs, "TAFullViewPosY", "TAPreviewPosY");
    TAWidth = Measure(rs, "TAFullviewWidth", "TAPreviewWidth");
    TARotation = Required<Long>(rs, "TARotation");
    TASequence = Required<Long>(rs, "TASequence");
    ID = Required<Long>(rs, "TemplateImageId");
    TCID = Required<Long>(rs, "TemplateID");
    TANumberInTemplate = CLng(HeadNumber(rs, "TANumberInTemplate"));
    if (TANumberInTemplate == 0) TANumberInTemplate = TASequence;
    TAProportions = CSng(Val(Replace("0" + TextOrEmpty(rs, "TAProportions"), ",", ".")));
    if (TAProportions == 0) TAProportions = usualProportions;
    AIID = CLng(HeadNumber(rs, "TATGId"));
    TAADName = Required<String>(rs, "TAGroupName");
}

String cTemplateAttribute::InsertStatement() const {
    return sql("INSERT INTO TemplateAttribute_T ", "(TemplateId, TAFullViewWidth, TAFullViewHeight, ",
               "TAFullViewPosX, TAFullViewPosY, ", "TARotation, ",
               "TASequence, TAComments, TAGroupname, TANumberInTemplate, TAProportions, TATGid, TAImagePath) ",
               "VALUES (", TCID, ", ", Decimal(TAWidth), ", ", Decimal(TAHeight), ", ", Decimal(TAPosX), ", ",
               Decimal(TAPosY), ", ", TARotation, ", ", TASequence, ", '", FixSqlString(TAComments), "', '",
               FixSqlString(TAADName), "', ", TANumberInTemplate, ", ", Decimal(TAProportions), ", ", AIID, ", '",
               FixSqlString(TAImagepath), "'", ");");
}

String cTemplateAttribute::UpdateStatement() const {
    return sql("UPDATE TemplateAttribute_T ", "SET ", "TemplateID = ", TCID, ", ",
               "TAFullviewWidth = ", Decimal(TAWidth), ", ", "TAFullViewHeight = ", Decimal(TAHeight), ", ",
               "TAFullViewPosX = ", Decimal(TAPosX), ", ", "TAFullViewPosY = ", Decimal(TAPosY), ", ",
               "TARotation = ", TARotation, ", ", "TASequence = ", TASequence, ", ", "TAGroupName = '",
               FixSqlString(TAADName), "', ", "TAComments = '", FixSqlString(TAComments), "', ",
               "TAProportions = ", Decimal(TAProportions), ", ", "TANumberInTemplate = ", TANumberInTemplate, ", ",
               "TATGId =", AIID, ", ", "TAImagePath ='", FixSqlString(TAImagepath), "'",
               " WHERE TemplateImageId = ", AIID, ";");
}

bool cTemplateAttribute::Save(const Ref<Connection>& Con) {
    const Ref<cTemplateAttribute> held(this);  // handlers of the connection may release it
    if (ID != 0) {
        Con->Execute(UpdateStatement());
        return true;
    }
    Con->Execute(InsertStatement());
    const Ref<Recordset> key = OpenPlain(Con, sql("SELECT Max(TemplateImageID) AS Max_ID FROM TemplateAttribute_T ",
                                                  "WHERE TemplateId = ", TCID, " AND TASequence = ", TASequence, ";"));
    ID = CLng(key->Fields(0).Value());
    key->Close();
    return true;
}

const Interface& cTemplateAttribute::Describe() const {
    using Self = cTemplateAttribute;
    static const Interface& self = InterfaceOf<Self>({
        Property<&Self::TANumberInTemplate>("TANumberInTemplate"),
        Property<&Self::TAHeight>("TAHeight"),
        Property<&Self::TAWidth>("TAWidth"),
        Property<&Self::TAPosY>("TAPosY"),
        Property<&Self::TAPosX>("TAPosX"),
        Property<&Self::TARotation>("TARotation"),
        Property<&Self::TASequence>("TASequence"),
        Property<&Self::AIID>("AIID"),
        Property<&Self::TCID>("TCID"),
        Property<&Self::ID>("ID"),
        Operation<&Self::Save>("Save", {"Con"}),
        Property<&Self::TAADName>("TAADName"),
        Property<&Self::TAAnatomicRegion>("TAAnatomicRegion"),
        Property<&Self::TAImagepath>("TAImagepath"),
        Property<&Self::TAComments>("TAComments"),
        Property<&Self::TAProportions>("TAProportions"),
    });
    return self;
}

}  // namespace OXClass
