#include "cards/cTemplate.h"

#include "cards/CanvasSide.h"
#include "platform/component/dispatch/InterfaceTable.h"
#include "platform/runtime/Random.h"

#include <cmath>

namespace OXClass {

using namespace Platform;

void cTemplate::GetTemplate(const Ref<Connection>& Con, Long TID, const Long& DicomID) {
    const Ref<Recordset> rs =
        OpenClient(Con, DicomID != 0 ? sql("SELECT * FROM TemplateCard_T WHERE TCDicomId = ", DicomID)
                                     : sql("SELECT * FROM TemplateCard_T WHERE TemplateID = ", TID));
    rs->SetActiveConnection(nullptr);
    if (rs->Eof()) {
        TCID = 0;
        rs->Close();
        return;
    }
    if (!rs->Fields("TCDate").IsNull()) TCDate = Required<Date>(rs, "TCDate");
    TCComments = TextOrEmpty(rs, "TCComments");
    TCHeight = CanvasSide(rs, "TCFullViewHeight", "TCPreviewHeight");
    TCWidth = CanvasSide(rs, "TCFullViewWidth", "TCPreviewWidth");
    TCHidden = OfColumn(rs, "TCMaximized",
                        [](const ADODB::Field& field) { return !field.IsNull() && field.As<double>() != 0; });
    TCName = Required<String>(rs, "TCName");
    TCID = Required<Long>(rs, "TemplateID");
    TCChecksum = ValueOr(rs, "TCChecksum", 0);
    TCDicomID = ValueOr(rs, "TCDicomId", 0);
    TCForcedImageType = static_cast<xigImageTypes>(ValueOr(rs, "TCForcedImageType", -1));
    LoadTemplateAttributes(Con);
    rs->Close();
}

Long cTemplate::LoadTemplateAttributes(const Ref<Connection>& Con) {
    const Ref<Recordset> rs =
        OpenClient(Con, sql("SELECT ", "TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, ",
                            "TAFullViewWidth, TAFullViewHeight, TAFullViewPosX, TAFullViewPosY,",
                            "TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, TAPreviewPosY, "
                            "TANumberInTemplate , TAProportions,",
                            " TAComments, TATGId ", "FROM TemplateAttribute_T WHERE TemplateID = ", TCID,
                            " ORDER BY TANumberInTemplate"));
    TemplateAttributes = New<Collection>();
    for (; !rs->Eof(); rs->MoveNext()) {
        const Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
        slot->ReadRow(rs);
        TemplateAttributes->Add(slot, "K" + CStr(slot->ID));
    }
    const Long count = TemplateAttributes->Count();
    rs->Close();
    return count;
}

String cTemplate::UpdateStatement() const {
    return sql("UPDATE TemplateCard_T ", "SET ", "TCName = '", FixSqlString(TCName), "', ", "TCComments = '",
               FixSqlString(TCComments), "', ", "TCFullViewWidth = ", Decimal(TCWidth), ", ",
               "TCFullViewHeight = ", Decimal(TCHeight), ", ", "TCMaximized = ", Long{TCHidden}, ", ",
               "TCChecksum = ", TCChecksum, ", ", "TCDicomID = ", TCDicomID, ", ",
               "TCForcedImageType = ", TCForcedImageType, " WHERE TemplateId = ", TCID, ";");
}

String cTemplate::InsertStatement() const {
    return sql("INSERT INTO TemplateCard_T ", "(TCName, TCDate, ", "TCComments, TCFullViewWidth, TCFullViewHeight, ",
               "TCMaximized, TCCheckSum,TCDicomId, TCForcedImageType) ", "VALUES (", "'", FixSqlString(TCName), "', ",
               "'", Stamp(TCDate), "', ", "'", FixSqlString(TCComments), "', ", Decimal(TCWidth), ", ",
               Decimal(TCHeight), ", ", Long{TCHidden}, ", ", TCChecksum, ", ", TCDicomID, ", ", TCForcedImageType,
               ");");
}

void cTemplate::Insert(const Ref<Connection>& con) {
    if (TCDicomID < 1) {
        constexpr double range = 100'000'000, lowest = 1000;
        Randomize(static_cast<double>(Timer()));
        TCDicomID = CLng(std::floor(static_cast<double>(Rnd()) * range + lowest));
    }
    con->Execute(InsertStatement());
    const Ref<Recordset> key = con->Execute(
        sql("SELECT MAX(TemplateID) AS Max_DicomID FROM TemplateCard_T WHERE TCName='", FixSqlString(TCName), "';"));
    TCID = CLng(key->Fields(0).Value());
    key->Close();
    for (cTemplateAttribute& slot : Each<cTemplateAttribute>(*TemplateAttributes)) {
        slot.ID = 0;
        slot.TCID = TCID;
    }
}

bool cTemplate::Save(const Ref<Connection>& Con) {
    const Ref<cTemplate> held(this);  // handlers of the connection may release it
    if (TCID > 0)
        Con->Execute(UpdateStatement());
    else
        Insert(Con);
    const Ref<Collection> slots = TemplateAttributes;  // handlers of the connection may replace it
    for (cTemplateAttribute& slot : Each<cTemplateAttribute>(*slots)) slot.Save(Con);
    return true;
}

const Interface& cTemplate::Describe() const {
    static const Interface& self = InterfaceOf<cTemplate>({
        Property<&cTemplate::TemplateAttributes>("TemplateAttributes"),
        Property<&cTemplate::TCForcedImageType>("TCForcedImageType"),
        Property<&cTemplate::TCDicomID>("TCDicomID"),
        Property<&cTemplate::TCComments>("TCComments"),
        Property<&cTemplate::TCHeight>("TCHeight"),
        Property<&cTemplate::TCWidth>("TCWidth"),
        Property<&cTemplate::TCDate>("TCDate"),
        Property<&cTemplate::TCName>("TCName"),
        Property<&cTemplate::TCID>("TCID"),
        Operation<&cTemplate::GetTemplate>("GetTemplate",
                                           {"Con", Optional("TID", Long{0}), Optional("DicomID", Long{0})}),
        Operation<&cTemplate::LoadTemplateAttributes>("LoadTemplateAttributes", {"Con"}),
        Property<&cTemplate::TCHidden>("TCHidden"),
        Property<&cTemplate::TCChecksum>("TCChecksum"),
        Operation<&cTemplate::Save>("Save", {"Con"}),
    });
    return self;
}

}  // namespace OXClass
