#pragma once

#include "platform/adodb/providers/Provider.h"
#include "platform/component/dispatch/ByName.h"

namespace ADODB {

/// Returns a session that passes its calls on to `connection`, an object with the members of a connection: one of the
/// system's database layer, of another copy of this platform, or of a client's program. Its state is asked for only
/// once, by the caller: an object without the member `State` is open.
///
/// A statement without rows, and one whose rows are only read by the caller of `Execute`, is run by `Execute`, with one
/// argument unless the number of changed rows is asked for. Rows for a recordset come from the recordset that the
/// member `NewRecordset` of the connection returns, which is opened in the modes of the request; without this member
/// from a new recordset of the system's database layer for a connection of that layer, and for any other one from
/// `Execute`, whose recordset then has to take the edits, too. Transactions are `BeginTrans`,
/// `CommitTrans` and `RollbackTrans`. `CursorLocation` is passed on if the object has it.
///
/// A failure has the number, source and description of the other side, and if that has `Errors`, the SQLSTATE and the
/// native code of its first entry. Raises 438 for an object without members.
std::unique_ptr<Session> OpenByName(const Ref<Platform::Object>& connection);

/// Returns true for a connection or a recordset whose member `State` says that it is closed.
bool IsClosed(const Platform::ByName& object);

/// Returns the rows of `recordset`, an object with the members of a recordset.
std::unique_ptr<Cursor> CursorByName(const Ref<Platform::Object>& recordset);

}  // namespace ADODB
