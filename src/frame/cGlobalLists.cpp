#include "frame/cGlobalLists.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Waits until the clock has advanced by a second; the program handles its pending messages meanwhile. The
/// clock restarts at midnight: a wait that starts in the last second of a day can end only when the clock
/// reaches the same time of the next day.
void WaitASecond() {
    constexpr double step = 0.01;
    constexpr float midnight = 86400;
    const float noted = Timer(), end = noted + 1.0F;
    bool newDay = false;
    for (float now = noted; now < end && !(newDay && end >= midnight && now >= noted); now = Timer()) {
        newDay = newDay || now < noted;
        DoEvents();
        Sleep(step);
    }
}

Ref<Recordset> OpenWhenTableIsThere(const Ref<Connection>& con, const String& statement) {
    constexpr Integer mostRetries = 10;
    for (Integer retries = 0;; ++retries) {
        try {
            return OpenClient(con, statement);
        } catch (const Error& failure) {
            if (failure.Number != ADODB::NoTable || retries == mostRetries) throw;
        }
        WaitASecond();
    }
}

}  // namespace

Long cGlobalLists::GetAllGLs(Ref<Connection> sConn, const gGlobalListIDs& ListID) {
    const Ref<Recordset> rs = OpenWhenTableIsThere(sConn, sql("SELECT * FROM GlobalList_T WHERE ListID=", ListID, ";"));
    Clear();
    for (; !rs->Eof(); rs->MoveNext()) {
        const Ref<cGlobalList> row = New<cGlobalList>();
        row->GlobalListID = Required<Long>(rs, "GlobalListID");
        row->ListID = Required<gGlobalListIDs>(rs, "ListID");
        row->ListText = TextOrEmpty(rs, "ListText");
        row->GLSaved = true;
        AddMember(row, "K" + CStr(row->GlobalListID));
    }
    return Count();
}

Ref<cGlobalList> cGlobalLists::Add(String sKey) {
    return AddMember(New<cGlobalList>(), sKey, Count() == 0 ? Variant() : Variant(Long{1}));
}

void cGlobalLists::DeleteAllOnListID(Ref<Connection> cnconn, const gGlobalListIDs& lID) {
    cnconn->Execute(sql("DELETE FROM globalList_T WHERE ListID = ", lID, ";"));
}

void cGlobalLists::DeleteAll(Ref<Connection> cnconn) {
    if (Count() == 0) return;
    String statement = "DELETE FROM GlobalList_T WHERE ";
    for (const cGlobalList& row : *this) statement += sql("GlobalListID=", row.GlobalListID, " OR ");
    statement.resize(statement.size() - 4);
    cnconn->Execute(statement + ";");
    for (Integer position = CInt(Count()); position >= 1; --position) Remove(position);
}

const Interface& cGlobalLists::Describe() const {
    static const Interface& self = InterfaceOf<cGlobalLists>(
        "The rows of one list of settings or texts, counted from 1.",
        {
            Operation<&cGlobalLists::GetAllGLs>("GetAllGLs",
                                                "Replaces the members by all rows of a list and returns their number.",
                                                {{"sConn", Help::Connection}, {"ListID", "The number of the list."}}),
            Operation<&cGlobalLists::Add>(
                "Add", "Creates a row, inserts it before all other members and returns it; stores nothing.",
                {Optional("sKey", Help::NewKey)}),
            ReadOnly<&cGlobalLists::Item>("Item",
                                          "Returns a row; raises 9 for a position and 5 for a key that doesn't exist.",
                                          {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cGlobalLists::Count>("Count", "The number of members; 0 before a list is loaded."),
            Operation<&cGlobalLists::Remove>("Remove",
                                             "Removes a member from this collection; its row stays in the database.",
                                             {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cGlobalLists::NewEnum>("NewEnum", "An enumerator over the rows, for a For Each loop.", {},
                                             EnumeratorMember),
            Operation<&cGlobalLists::DeleteAllOnListID>(
                "DeleteAllOnListID",
                "Deletes all rows of a list from the database; the members of this collection stay.",
                {{"cnconn", Help::Connection}, {"lID", "The number of the list."}}),
            Operation<&cGlobalLists::DeleteAll>(
                "DeleteAll", "Deletes the rows of all members from the database and removes the members.",
                {{"cnconn", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
