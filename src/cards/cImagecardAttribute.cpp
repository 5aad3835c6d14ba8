#include "cards/cImagecardAttribute.h"

#include "cards/CosmeticFile.h"
#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

void cImagecardAttribute::ReadRow(const Ref<Recordset>& rs) {
    IAComments = TextOrEmpty(rs, "IAComments");
    IAHeight = Nz<double>(rs, "IAFullViewHeight");
    IAWidth = Nz<double>(rs, "IAFullviewWidth");
    IAPosX = Nz<double>(rs, "IAFullViewPosX");
    IAPosY = Nz<double>(rs, "IAFullViewPosY");
    IASequence = Required<Long>(rs, "IASequence");
    ID = Required<Long>(rs, "ImageAttributeID");
    ImageID = Required<Long>(rs, "ImageBildId");
    ICID = Required<Long>(rs, "ImageCardID");
    IAMirrRotStatus = Nz<Integer>(rs, "IAMirrRotStatus");
}

bool cImagecardAttribute::Save(const Ref<Connection>& conn) {
    const Ref<cImagecardAttribute> held(this);  // the program may release it while it handles messages
    if (ToBeDeleted) {
        if (ID >= 0) Delete(conn);
        return true;
    }
    if (ID > 0) {
        conn->Execute(UpdateStatement());
        DoEvents();
    } else {
        Insert(conn);
    }
    SaveManipulations(conn);
    return true;
}

String cImagecardAttribute::UpdateStatement() const {
    return sql("UPDATE ImageAttribute_T ", "SET ", "ImageCardID = ", ICID, ", ", "ImageBildID = ", ImageID, ", ",
               "IAFullviewWidth = ", Decimal(IAWidth), ", ", "IAFullViewHeight = ", Decimal(IAHeight), ", ",
               "IAFullViewPosX = ", Decimal(IAPosX), ", ", "IAFullViewPosY = ", Decimal(IAPosY), ", ",
               "IASequence = ", IASequence, ", ", "IAMirrRotStatus = ", IAMirrRotStatus, ", ", "IAComments = '",
               FixSqlString(IAComments), "'", " WHERE ImageAttributeId = ", ID, ";");
}

String cImagecardAttribute::InsertStatement() const {
    return sql("INSERT INTO ImageAttribute_T ", "(ImageCardId, ImageBildId, IAFullViewWidth, IAFullViewHeight, ",
               "IAFullViewPosX, IAFullViewPosY, IAContrast, IABrightness, ",
               "IAInvert, IARotation, IASharpen, IASoften, IAZoom, IAGamma, ",
               "IAHorizontalMirror, IAVerticalMirror, IAHistoEqualize, ",
               "IAStretchIntensity, IAHistogram, IASequence, IAComments, IAMirrRotStatus , IAColorized, "
               "IAAttCorr) ",
               "VALUES (", ICID, ", ", ImageID, ", ", Decimal(IAWidth), ", ", Decimal(IAHeight), ", ", Decimal(IAPosX),
               ", ", Decimal(IAPosY), ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0", ", ", IASequence, ", '",
               FixSqlString(IAComments), "', ", IAMirrRotStatus, ", 0, 0);");
}

void cImagecardAttribute::Insert(const Ref<Connection>& con) {
    con->Execute(InsertStatement());
    const Ref<Recordset> key =
        con->Execute(sql("SELECT MAX(ImageAttributeId) FROM ImageAttribute_T ", "WHERE ((ImageCardId = ", ICID,
                         ") AND (", "ImageBildId = ", ImageID, ") AND (", "IASequence = ", IASequence, "));"));
    ID = CLng(key->Fields(0).Value());
}

void cImagecardAttribute::Delete(const Ref<Connection>& con) const {
    con->Execute(sql("DELETE FROM ImageAttribute_T WHERE ImageattributeID = ", ID, ";"));
    const Ref<Recordset> rs =
        OpenUpdatable(con, sql("SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=", ID, ";"));
    if (!rs->Eof()) rs->MoveFirst();
    while (!rs->Eof()) {
        // A cosmetic without a text can't be deleted. The file that a cosmetic names stays.
        if (ValueOr(rs, "Type", 0) == ManCosmetic) Required<String>(rs, "StringParameter");
        rs->Delete(ADODB::adAffectCurrent);
        if (!rs->Eof()) rs->MoveFirst();
    }
}

bool cImagecardAttribute::LoadImageManipulations(const Ref<Connection>& conn) {
    return Swallowed(loadCompletion_, [&] {
        const Ref<Recordset> rs = OpenPlain(
            conn, sql("SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=", ID, " ORDER BY SequenceNo;"));
        Manipulations->Count();  // a list that was set to null raises before any row is read
        for (; !rs->Eof(); rs->MoveNext()) {
            const Ref<cImageManipulation> step = New<cImageManipulation>();
            step->ImageManipulationID = Required<Long>(rs, "ImageManipulationID");
            step->ManipulationType = Required<ManipulationType>(rs, "Type");
            step->LongParameter = Required<Long>(rs, "LongParameter");
            step->StringParameter = Trim(Required<String>(rs, "StringParameter"));
            Manipulations->Add(step);
        }
        return true;
    });
}

void cImagecardAttribute::SaveManipulations(const Ref<Connection>& conn) {
    Swallowed(saveCompletion_, [&] {
        const String oldCosmetic = DeleteStoredManipulations(conn);
        const String newCosmetic = InsertManipulations(conn);
        if (newCosmetic != oldCosmetic && !oldCosmetic.empty()) CosmeticFile::Named(oldCosmetic).DeleteIfPresent(conn);
    });
}

/// Deletes the stored manipulations and returns the text of the last cosmetic among them, or the empty text.
String cImagecardAttribute::DeleteStoredManipulations(const Ref<Connection>& con) const {
    const Ref<Recordset> rs =
        OpenKeyset(con, sql("SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=", ID, ";"));
    if (rs->Eof()) return {};
    String cosmetic;
    for (; !rs->Eof(); rs->MoveNext())
        if (ValueOr(rs, "Type", 0) == ManCosmetic) cosmetic = Trim(Required<String>(rs, "StringParameter"));
    con->Execute(sql("DELETE FROM ImageManipulation_T WHERE ImageAttributeID=", ID, ";"));
    rs->Close();
    return cosmetic;
}

/// Inserts the manipulations and returns the text of the last cosmetic among them, or the empty text.
String cImagecardAttribute::InsertManipulations(const Ref<Connection>& con) const {
    String cosmetic;
    Integer sequence = 0;
    const Ref<Collection> steps = Manipulations;  // a handler of the connection may replace the collection
    for (const cImageManipulation& step : Each<cImageManipulation>(*steps)) {
        if (step.ManipulationType == UndoStop) continue;
        sequence = CInt(Long{sequence} + 1);
        if (step.ManipulationType == ManCosmetic) cosmetic = step.StringParameter;
        con->Execute(
            sql("INSERT INTO ImageManipulation_T (SequenceNo, Type, LongParameter, "
                "StringParameter, ImageAttributeID) ",
                "VALUES('", sequence, "', '", step.ManipulationType, "', '", step.LongParameter, "', '",
                Verbatim(step.StringParameter), "', '", ID, "');"));
    }
    return cosmetic;
}

const Interface& cImagecardAttribute::Describe() const {
    using Self = cImagecardAttribute;
    static const Interface& self = InterfaceOf<Self>(
        "An image placed on an image card: its position, size, order and manipulations.",
        {
            Property<&Self::ToBeDeleted>(
                "ToBeDeleted", "True makes the next save delete the stored row and its manipulations; not stored."),
            Property<&Self::IAComments>("IAComments", "Free text."),
            Property<&Self::IASequence>(
                "IASequence", "The order on the image card, from 1; each save of the image card sets it anew."),
            Property<&Self::IAHeight>("IAHeight", "The height, as a fraction of the canvas height."),
            Property<&Self::IAWidth>("IAWidth", "The width, as a fraction of the canvas width."),
            Property<&Self::IAPosY>("IAPosY", "The distance from the top of the canvas, as a fraction of its height."),
            Property<&Self::IAPosX>("IAPosX", "The distance from the left of the canvas, as a fraction of its width."),
            Property<&Self::ImageID>("ImageID",
                                     "The key of the image; a save of the image card skips a placed image with 0."),
            Property<&Self::ICID>("ICID", "The key of the image card."),
            Property<&Self::ID>("ID", "The key of the placed image in the database; 0 or below if it is not stored."),
            Operation<&Self::Save>(
                "Save",
                "Stores the placed image and its manipulations, or deletes it if ToBeDeleted is true. Returns true.",
                {{"conn", Help::Connection}}),
            Property<&Self::Manipulations>(
                "Manipulations",
                "The manipulations, as a collection of cImageManipulation in their order, without keys."),
            Property<&Self::IAMirrRotStatus>(
                "IAMirrRotStatus",
                "Mirroring and rotation, as a number that the client defines; a null is loaded as 0."),
            Operation<&Self::LoadImageManipulations>(
                "LoadImageManipulations",
                "Appends the stored manipulations; a second call doubles them. Returns false after a failure.",
                {{"conn", Help::Connection}}),
            Operation<&Self::SaveManipulations>(
                "SaveManipulations",
                "Replaces the stored manipulations; raises no error, and a failure can lose stored ones.",
                {{"conn", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
