// Connections and recordsets of other components, where those of this layer are required.

#include "platform/adodb/Recordset.h"
#include "platform/adodb/providers/byname/ByNameSession.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/ByName.h"

namespace ADODB {

using namespace Platform;

Ref<Connection> Connection::Adapt(const Ref<Object>& connection) {
    const ByName other(connection);
    if (!other.Has("Execute")) return nullptr;
    Ref<Connection> adapter = New<Connection>();
    adapter->adapted_ = connection;
    if (other.Has("CursorLocation"))
        adapter->CursorLocation = adapter->usedLocation_ =
            static_cast<CursorLocationEnum>(CLng(other.Call("CursorLocation")));
    if (other.Has("ConnectionString")) adapter->text_ = CStr(other.Call("ConnectionString"));
    if (!IsClosed(other)) adapter->session_ = OpenByName(connection);
    return adapter;
}

Ref<Recordset> Recordset::Adapt(const Ref<Object>& recordset) {
    const ByName other(recordset);
    if (!other.Has("Fields")) return nullptr;
    Ref<Recordset> adapter = New<Recordset>();
    if (!IsClosed(other)) adapter->TakeCursor(nullptr, CursorByName(recordset));
    return adapter;
}

namespace {

[[maybe_unused]] const bool adaptersRegistered = [] {
    RegisterAdapter(Connection::ClassName,
                    [](const Ref<Object>& foreign) -> Ref<Object> { return Connection::Adapt(foreign); });
    RegisterAdapter(Recordset::ClassName,
                    [](const Ref<Object>& foreign) -> Ref<Object> { return Recordset::Adapt(foreign); });
    return true;
}();

}  // namespace

}  // namespace ADODB
