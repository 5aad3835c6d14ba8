#include "frame/Reading.h"

namespace OXClass {

using namespace Platform;

Ref<Recordset> OpenPlain(const Ref<Connection>& con, const String& statement, Long options) {
    Ref<Recordset> rs = New<Recordset>();
    rs->Open(statement, con, ADODB::adOpenForwardOnly, ADODB::adLockReadOnly, options);
    return rs;
}

Ref<Recordset> OpenClient(const Ref<Connection>& con, const String& statement, Long options) {
    Ref<Recordset> rs = New<Recordset>();
    rs->SetCursorLocation(ADODB::adUseClient);
    rs->Open(statement, con, ADODB::adOpenForwardOnly, ADODB::adLockReadOnly, options);
    return rs;
}

Ref<Recordset> OpenUnbuffered(const Ref<Connection>& con, const String& statement) {
    Ref<Recordset> rs = New<Recordset>();
    rs->SetCursorLocation(ADODB::adUseClient);
    rs->OpenUnbuffered(statement, con);
    return rs;
}

Ref<Recordset> OpenUpdatable(const Ref<Connection>& con, const String& statement) {
    Ref<Recordset> rs = New<Recordset>();
    rs->SetCursorLocation(ADODB::adUseClient);
    rs->Open(statement, con, ADODB::adOpenKeyset, ADODB::adLockOptimistic, ADODB::adCmdText);
    return rs;
}

Ref<Recordset> OpenKeyset(const Ref<Connection>& con, const String& statement) {
    Ref<Recordset> rs = New<Recordset>();
    rs->Open(statement, con, ADODB::adOpenKeyset, ADODB::adLockOptimistic, ADODB::adCmdText);
    return rs;
}

}  // namespace OXClass
