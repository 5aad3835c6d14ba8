#include "frame/cGlobalList.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

bool cGlobalList::Save(Ref<Connection> sConn) {
    if (GLSaved) {
        sConn->Execute(sql("Update GlobalList_T ", "Set ListID=", ListID, ",", "ListText='", FixSqlString(ListText),
                           "' WHERE GlobalListID=", GlobalListID));
        return false;
    }
    sConn->BeginTrans();
    sConn->Execute(sql("INSERT INTO GlobalList_T ", "(ListID, ListText) ", "VALUES (", " ", ListID, ", ", "'",
                       FixSqlString(ListText), "');"));
    const Ref<Recordset> counter = sConn->Execute("SELECT @@IDENTITY");
    GlobalListID = CLng(counter->Fields(0).Value());
    counter->Close();
    sConn->CommitTrans();
    GLSaved = true;
    return false;
}

bool cGlobalList::Delete(Ref<Connection> sConn) {
    if (GLSaved) sConn->Execute(sql("Delete FROM GlobalList_T WHERE GlobalListID=", GlobalListID));
    return true;
}

bool cGlobalList::GetGL(Ref<Connection> sConn, Long ID) {
    const Ref<Recordset> rs = OpenClient(sConn, sql("SELECT * FROM GlobalList_T WHERE GlobalListID = ", ID));
    if (rs->Eof()) return false;
    GlobalListID = ID;
    ListID = Required<gGlobalListIDs>(rs, "ListID");
    ListText = TextOrEmpty(rs, "ListText");
    GLSaved = true;
    return true;
}

const Interface& cGlobalList::Describe() const {
    static const Interface& self = InterfaceOf<cGlobalList>(
        "One text of a list in the database; a setting is the first text of its list.",
        {
            Property<&cGlobalList::GLSaved>(
                "GLSaved", "True if the row is in the database; Save then updates it, and inserts it otherwise."),
            Property<&cGlobalList::GlobalListID>(
                "GlobalListID", "The key of the row, which the database assigns; 0 before the first save."),
            Property<&cGlobalList::ListID>("ListID",
                                           "The number of the list that the text belongs to; 0 in a new object."),
            Property<&cGlobalList::ListText>("ListText", "The text itself, or the value of the setting."),
            Operation<&cGlobalList::Save>("Save",
                                          "Writes the row. Always returns false; GLSaved is true if the row is stored.",
                                          {{"sConn", Help::Connection}}),
            Operation<&cGlobalList::Delete>(
                "Delete", "Deletes the row if GLSaved is true. Always returns true and keeps the members.",
                {{"sConn", Help::Connection}}),
            Operation<&cGlobalList::GetGL>("GetGL",
                                           "Loads a row by its key and returns true; returns false if there is none.",
                                           {{"sConn", Help::Connection}, {"GlobalListID", "The key of the row."}}),
        });
    return self;
}

}  // namespace OXClass
