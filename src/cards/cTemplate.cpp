#include "cards/cTemplate.h"

#include "cards/CanvasSide.h"
#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<cTemplate>(
        "A template: a named page layout with a canvas and image slots.",
        {
            Property<&cTemplate::TemplateAttributes>(
                "TemplateAttributes",
                "The slots, as a collection of cTemplateAttribute; the key of a loaded slot is K and its ID."),
            Property<&cTemplate::TCForcedImageType>(
                "TCForcedImageType", "The image type forced on images that the template places; -1 if none is forced."),
            Property<&cTemplate::TCDicomID>(
                "TCDicomID", "The number by which a series names the template; up to 999 for the standard layouts."),
            Property<&cTemplate::TCComments>("TCComments", "Free text."),
            Property<&cTemplate::TCHeight>("TCHeight", "The height of the canvas in pixels."),
            Property<&cTemplate::TCWidth>("TCWidth", "The width of the canvas in pixels."),
            Property<&cTemplate::TCDate>("TCDate",
                                         "The date of the template; a save stores it for new templates only."),
            Property<&cTemplate::TCName>("TCName", "The name, at most 255 characters."),
            Property<&cTemplate::TCID>(
                "TCID", "The key of the template in the database; 0 or below if the template is not stored."),
            Operation<&cTemplate::GetTemplate>(
                "GetTemplate", "Loads a template and its slots; if there is none, only sets TCID to 0.",
                {{"Con", Help::Connection},
                 Optional("TID", "The key of the template; ignored if DicomID is not 0.", Long{0}),
                 Optional("DicomID", "The TCDicomID of the template; 0 searches by TID instead.", Long{0})}),
            Operation<&cTemplate::LoadTemplateAttributes>(
                "LoadTemplateAttributes",
                "Replaces the slots by the stored ones in the order of their numbers; returns how many there are.",
                {{"Con", Help::Connection}}),
            Property<&cTemplate::TCHidden>("TCHidden",
                                           "True if the client hides the template; stored in the column TCMaximized."),
            Property<&cTemplate::TCChecksum>(
                "TCChecksum", "A number of the client; the library stores it and neither computes nor compares it."),
            Operation<&cTemplate::Save>(
                "Save", "Stores the template and its slots; a removed slot stays in the database. Returns true.",
                {{"Con", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
