#include "frame/SchemaVersion.h"

#include "platform/adodb/Recordset.h"

namespace OXClass {

using namespace Platform;

namespace {

constexpr Long ApplicationMark = 0x4F58434C;  // "OXCL"

Long NumberOf(const Ref<ADODB::Connection>& con, const char* pragma) {
    const Ref<ADODB::Recordset> row = con->Execute(pragma);
    return row->Eof() ? 0 : row->Fields(0).As<Long>();
}

/// Returns the version in the header of a file; 0 for a file of another program, and for an engine without this header.
Long VersionInHeader(const Ref<ADODB::Connection>& con) {
    try {
        return NumberOf(con, "PRAGMA application_id") == ApplicationMark ? NumberOf(con, "PRAGMA user_version") : 0;
    } catch (const Error& failure) {
        if (failure.Number != ADODB::ErrorsInCommand) throw;
        return 0;
    }
}

}  // namespace

Long SchemaVersionOf(const Ref<ADODB::Connection>& con) {
    try {
        const Ref<ADODB::Recordset> mark =
            con->Execute("SELECT Version FROM SchemaVersion_T WHERE Application = 'OXClass'");
        return mark->Eof() ? 0 : mark->Fields(0).As<Long>();
    } catch (const Error& failure) {
        if (failure.Number != ADODB::NoTable) throw;
    }
    return VersionInHeader(con);
}

void RequireKnownSchema(const Ref<ADODB::Connection>& con) {
    const Long version = SchemaVersionOf(con);
    if (version > KnownSchemaVersion)
        Raise(ADODB::NoPermission, "The database has tables of version " + CStr(version) +
                                       ", and this library knows versions up to " + CStr(KnownSchemaVersion) +
                                       ". Use a newer library.");
}

}  // namespace OXClass
