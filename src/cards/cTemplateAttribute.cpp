#include "cards/cTemplateAttribute.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns a measure: the column `fullView`, or the column `preview` if that is 0 or null.
double Measure(const Ref<Recordset>& rs, const ColumnName& fullView, const ColumnName& preview) {
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
    static const Interface& self = InterfaceOf<Self>(
        "An image slot of a template: its position, size, order of filling and anatomic group.",
        {
            Property<&Self::TANumberInTemplate>(
                "TANumberInTemplate", "The number of the slot; it shows the image whose FrameNumber is equal."),
            Property<&Self::TAHeight>("TAHeight", "The height, as a fraction of the canvas height."),
            Property<&Self::TAWidth>("TAWidth", "The width, as a fraction of the canvas width."),
            Property<&Self::TAPosY>("TAPosY", "The distance from the top of the canvas, as a fraction of its height."),
            Property<&Self::TAPosX>("TAPosX", "The distance from the left of the canvas, as a fraction of its width."),
            Property<&Self::TARotation>("TARotation",
                                        "The rotation, as a number that the client defines; 0 for an upright image."),
            Property<&Self::TASequence>("TASequence", "The order in which the slots are filled, from 1."),
            Property<&Self::AIID>(
                "AIID", "The number of the expected anatomic group; an update also searches its row by this number."),
            Property<&Self::TCID>("TCID", "The key of the template."),
            Property<&Self::ID>("ID", "The key of the slot in the database; 0 if the slot is not stored."),
            Operation<&Self::Save>(
                "Save",
                "Inserts the slot if ID is 0; otherwise updates the row whose key is AIID, not ID. Returns true.",
                {{"Con", Help::Connection}}),
            Property<&Self::TAADName>("TAADName", "The name of the expected anatomic group, at most 255 characters."),
            Property<&Self::TAAnatomicRegion>("TAAnatomicRegion", "A text of the client; neither loaded nor stored."),
            Property<&Self::TAImagepath>("TAImagepath",
                                         "A path of the client, at most 512 characters; stored, but never loaded."),
            Property<&Self::TAComments>("TAComments", "Free text."),
            Property<&Self::TAProportions>("TAProportions",
                                           "The height divided by the width; a null or 0 is loaded as 0.7."),
        });
    return self;
}

}  // namespace OXClass
