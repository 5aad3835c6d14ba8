#include "cards/cImagecard.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

#include <cmath>

namespace OXClass {

using namespace Platform;

namespace {

/// Returns one side of the card without its sign: the column `fullView`, or the column `preview` if that is
/// null, empty or 0. Raises as `GetImageCard`.
Long Side(const Ref<Recordset>& rs, const ColumnName& fullView, const ColumnName& preview) {
    const auto text = [&](const ColumnName& column) { return "0" + CStr(std::abs(Nz<double>(rs, column))); };
    const auto whole = [](const ColumnName& column, const String& side) {
        return WithColumnName(column.Text(), [&] { return CLng(side); });
    };
    const String side = text(fullView);
    return CDbl(side) != 0 ? whole(fullView, side) : whole(preview, text(preview));
}

}  // namespace

Variant cImagecard::GetImageCard(const Ref<Connection>& conn, const Long& lICID) {
    const Ref<Recordset> rs = OpenClient(conn, sql("SELECT * FROM ImageCard_T WHERE ImageCardID = ", lICID, ";"));
    if (rs->Eof()) return {};
    ICCreateDate = Required<Date>(rs, "ICDateCreated");
    ICDescription = Required<String>(rs, "ICDescription");
    ICHeight = Side(rs, "ICFullViewHeight", "ICPreviewHeight");
    ICWidth = Side(rs, "ICFullViewWidth", "ICPreviewWidth");
    ICLastUpdate = Required<Date>(rs, "ICLastUpdate");
    ICName = Required<String>(rs, "ICName");
    ICID = Required<Long>(rs, "ImageCardID");
    ICPID = Required<Long>(rs, "PatientID");
    LoadImageAttributes(conn);
    return {};
}

Long cImagecard::LoadImageAttributes(const Ref<Connection>& conn) {
    loadCompletion_.Begin();
    return Boxed(
        [&] {
            const Ref<Recordset> rs =
                OpenClient(conn, sql("SELECT * FROM ImageAttribute_T WHERE ImageCardID = ", ICID, ";"));
            rs->SetActiveConnection(nullptr);
            ImagecardAttributes = New<Collection>();
            for (; !rs->Eof(); rs->MoveNext()) {
                const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
                placed->ReadRow(rs);
                placed->LoadImageManipulations(conn);
                ImagecardAttributes->Add(placed, "K" + CStr(placed->ID));
            }
            const Long count = ImagecardAttributes->Count();
            rs->Close();
            return count;
        },
        [&](const Error& failure) {
            loadCompletion_.EndedBy(failure);
            return "cImageCard.LoadImageAttribues: (" + CStr(Now()) + ") " + CStr(failure.Number) + " " +
                   failure.Description;
        });
}

String cImagecard::UpdateStatement() const {
    return sql("UPDATE ImageCard_T ", "SET ", "PatientID = ", ICPID, ", ", "ICName = '", FixSqlString(ICName), "', ",
               "ICLastUpdate = '", Stamp(ICLastUpdate), "', ", "ICDescription = '", FixSqlString(ICDescription), "', ",
               "ICFullViewWidth = ", ICWidth, ", ", "ICFullViewHeight = ", ICHeight, ", ", "ICMaximized = 0",
               " WHERE ImageCardId = ", ICID, ";");
}

String cImagecard::InsertStatement() const {
    return sql("INSERT INTO ImageCard_T ", "(PatientId, ICName, ICDateCreated, ICLastUpdate, ",
               "ICDescription, ICFullViewWidth, ICFullViewHeight, ", "ICMaximized) ", "VALUES (", ICPID, ", ", "'",
               FixSqlString(ICName), "', ", "'", Stamp(ICCreateDate), "', ", "'", Stamp(ICLastUpdate), "', ", "'",
               FixSqlString(ICDescription), "', ", ICWidth, ", ", ICHeight, ", ", "0", ");");
}

void cImagecard::Insert(const Ref<Connection>& con) {
    con->Execute(InsertStatement());
    const Ref<Recordset> key =
        con->Execute(sql("SELECT MAX(ImageCardId) FROM ImageCard_T ", "WHERE PatientId = ", ICPID, ";"));
    ICID = CLng(key->Fields(0).Value());
    key->Close();
    for (cImagecardAttribute& placed : Each<cImagecardAttribute>(*ImagecardAttributes)) placed.ICID = ICID;
}

bool cImagecard::Save(const Ref<Connection>& conn) {
    if (ICID == 0)
        Insert(conn);
    else
        conn->Execute(UpdateStatement());
    Integer sequence = 1;
    // Referenced here, because the program handles messages during a save, and may change or release this
    // card.
    const Ref<Collection> all = ImagecardAttributes;
    for (cImagecardAttribute& member : Each<cImagecardAttribute>(*all)) {
        const Ref<cImagecardAttribute> placed(&member);
        if (placed->ImageID == 0) continue;
        placed->IASequence = sequence;
        sequence = CInt(Long{sequence} + 1);
        placed->Save(conn);
    }
    return true;
}

const Interface& cImagecard::Describe() const {
    static const Interface& self = InterfaceOf<cImagecard>(
        "An image card: a named page on which images of one patient are placed.",
        {
            Property<&cImagecard::ImagecardAttributes>(
                "ImagecardAttributes",
                "The placed images, as a collection of cImagecardAttribute; the key of a loaded one is K and its ID."),
            Property<&cImagecard::ICWidth>("ICWidth", "The width of the canvas in pixels."),
            Property<&cImagecard::ICHeight>("ICHeight", "The height of the canvas in pixels."),
            Property<&cImagecard::ICDescription>("ICDescription", "The description, as free text."),
            Property<&cImagecard::ICLastUpdate>(
                "ICLastUpdate",
                "The date and time of the last change, as the client sets it; a save does not change it."),
            Property<&cImagecard::ICCreateDate>(
                "ICCreateDate",
                "The date and time of creation, as the client sets it; stored for new image cards only."),
            Property<&cImagecard::ICName>("ICName", "The name, at most 255 characters."),
            Property<&cImagecard::ICPID>("ICPID", "The key of the patient."),
            Property<&cImagecard::ICID>(
                "ICID", "The key of the image card in the database; 0 if the image card is not stored."),
            Operation<&cImagecard::Save>(
                "Save", "Stores the image card, then its placed images, numbered anew from 1. Returns true.",
                {{"conn", Help::Connection}}),
            Operation<&cImagecard::GetImageCard>(
                "GetImageCard",
                "Loads an image card; if there is none, changes nothing. Always returns an empty value.",
                {{"conn", Help::Connection}, {"lICID", "The key of the image card."}}),
            Operation<&cImagecard::LoadImageAttributes>(
                "LoadImageAttributes",
                "Loads the placed images and returns their number; on failure shows a message box and returns 0.",
                {{"conn", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
