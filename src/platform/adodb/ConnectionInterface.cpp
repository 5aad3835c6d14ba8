#include "platform/adodb/Errors.h"
#include "platform/adodb/Recordset.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace ADODB {

using namespace Platform;

namespace {

Ref<Recordset> ExecuteText(Connection& connection, const String& commandText, Variant& recordsAffected, Long options) {
    Long affected = 0;
    Ref<Recordset> result = connection.Execute(commandText, &affected, options);
    recordsAffected = affected;
    return result;
}

CursorLocationEnum LocationOf(Connection& connection) { return connection.CursorLocation; }

void PutDefaultLocation(Connection& connection, CursorLocationEnum location) {
    connection.CursorLocation = Known(location, ConnectionSource);
}

ObjectStateEnum ConnectionState(Connection& connection) { return static_cast<ObjectStateEnum>(connection.State()); }

Ref<ErrorsObject> ErrorsOf(Connection& connection) { return New<ErrorsObject>(connection); }

Ref<Recordset> NewRecordset(Connection& connection) {
    Ref<Recordset> recordset = New<Recordset>();
    recordset->SetActiveConnection(Ref<Connection>(&connection));
    return recordset;
}

}  // namespace

const Interface& Connection::Describe() const {
    static const Interface& self = InterfaceOf<Connection>(
        "A connection to a database.",
        {
            ValueProperty<&Connection::ConnectionString, &Connection::SetConnectionString>(
                "ConnectionString", "The provider and its settings, such as Provider=SQLite;Data Source=clinic.db.",
                DefaultMember),
            ValueProperty<&LocationOf, &PutDefaultLocation>(
                "CursorLocation", "Where recordsets that are opened from now on keep their rows: 2 server, 3 client."),
            ValueProperty<&Connection::ConnectionTimeout, &Connection::SetConnectionTimeout>(
                "ConnectionTimeout",
                "After how many seconds a server that does not answer is given up when the connection is opened."),
            ValueProperty<&Connection::CommandTimeout, &Connection::SetCommandTimeout>(
                "CommandTimeout", "After how many seconds a statement of a server is cancelled; 0: never."),
            ReadOnly<&ConnectionState>("State", "The state: 0 closed, 1 open."),
            Operation<&Connection::Open>(
                "Open", "Opens the connection; raises 3705 if it is open.",
                {Optional("ConnectionString", "The connection string; if empty, the property ConnectionString is used.",
                          ""),
                 Optional("UserID", "The user; overrides the user in the connection string unless it is empty.", ""),
                 Optional("Password", "The password; overrides the one in the connection string unless it is empty.",
                          ""),
                 Optional("Options", "Ignored; the connection is always opened synchronously.", Long{-1})}),
            Operation<&Connection::Close>(
                "Close", "Closes the connection and its recordsets; raises 3246 while a transaction is open."),
            Operation<&ExecuteText>(
                "Execute", "Runs a statement and returns its rows; a closed recordset if it isn't a query.",
                {{"CommandText", "The SQL statement, or the name of a table with the option adCmdTable."},
                 Optional("RecordsAffected",
                          "Receives the number of rows that the statement changed; -1 for a SELECT."),
                 Optional("Options",
                          "How to read the text: 1 SQL, 2 table name; 128 added returns null instead of a recordset.",
                          adCmdUnspecified)}),
            Operation<&Connection::BeginTrans>(
                "BeginTrans",
                "Begins a transaction, nested if one is open, and returns its level; the outermost is 1."),
            Operation<&Connection::CommitTrans>(
                "CommitTrans", "Commits the innermost transaction; raises 0x8004D00E if none is open."),
            Operation<&Connection::RollbackTrans>(
                "RollbackTrans", "Rolls back the innermost transaction; raises 0x8004D00E if none is open."),
            ReadOnly<&ErrorsOf>("Errors",
                                "What the database engine reported at its last failure; a success doesn't clear it."),
            Operation<&NewRecordset>("NewRecordset", "Returns a closed recordset that Open opens on this connection."),
        });
    return self;
}

}  // namespace ADODB
