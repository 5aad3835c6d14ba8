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

void PutLocation(Connection& connection, CursorLocationEnum location) {
    connection.CursorLocation = Known(location, "ADODB.Connection");
}

ObjectStateEnum StateOf(Connection& connection) { return static_cast<ObjectStateEnum>(connection.State()); }

Ref<ErrorsObject> ErrorsOf(Connection& connection) { return New<ErrorsObject>(connection); }

}  // namespace

const Interface& Connection::Describe() const {
    static const Interface& self = InterfaceOf<Connection>({
        ValueProperty<&Connection::ConnectionString, &Connection::SetConnectionString>("ConnectionString",
                                                                                       DefaultMember),
        ValueProperty<&LocationOf, &PutLocation>("CursorLocation"),
        ReadOnly<&StateOf>("State"),
        Operation<&Connection::Open>("Open", {Optional("ConnectionString", ""), Optional("UserID", ""),
                                              Optional("Password", ""), Optional("Options", Long{-1})}),
        Operation<&Connection::Close>("Close"),
        Operation<&ExecuteText>("Execute",
                                {"CommandText", Optional("RecordsAffected"), Optional("Options", adCmdUnspecified)}),
        Operation<&Connection::BeginTrans>("BeginTrans"),
        Operation<&Connection::CommitTrans>("CommitTrans"),
        Operation<&Connection::RollbackTrans>("RollbackTrans"),
        ReadOnly<&ErrorsOf>("Errors"),
    });
    return self;
}

}  // namespace ADODB
