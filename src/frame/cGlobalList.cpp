#include "frame/cGlobalList.h"

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
    static const Interface& self = InterfaceOf<cGlobalList>({
        Property<&cGlobalList::GLSaved>("GLSaved"),
        Property<&cGlobalList::GlobalListID>("GlobalListID"),
        Property<&cGlobalList::ListID>("ListID"),
        Property<&cGlobalList::ListText>("ListText"),
        Operation<&cGlobalList::Save>("Save", {"sConn"}),
        Operation<&cGlobalList::Delete>("Delete", {"sConn"}),
        Operation<&cGlobalList::GetGL>("GetGL", {"sConn", "GlobalListID"}),
    });
    return self;
}

}  // namespace OXClass
