#include "frame/SchemaVersion.h"

#include "kit/Database.h"

namespace OXClass {
namespace {

using namespace TestKit;

class SchemaVersions : public WithDatabase {
protected:
    void SetUp() override { Mark(KnownSchemaVersion); }
    void Mark(Long version) {
        if (IsFile()) return Run("PRAGMA user_version = " + CStr(version));
        Run("DELETE FROM SchemaVersion_T");
        Run("INSERT INTO SchemaVersion_T (Application, Version) VALUES ('OXClass', " + CStr(version) + ")");
    }
    ~SchemaVersions() override { Mark(KnownSchemaVersion); }
};

TEST_F(SchemaVersions, ADatabaseHasTheVersionOfItsMark) {
    EXPECT_EQ(SchemaVersionOf(con), KnownSchemaVersion);
    RequireKnownSchema(con);
    Mark(1);
    EXPECT_EQ(SchemaVersionOf(con), 1);
    RequireKnownSchema(con);
}

TEST_F(SchemaVersions, ANewerDatabaseIsRefusedWithBothVersions) {
    Mark(99);
    try {
        RequireKnownSchema(con);
        FAIL();
    } catch (const Error& failure) {
        EXPECT_EQ(failure.Number, ADODB::NoPermission);
        EXPECT_EQ(
            failure.Description,
            "The database has tables of version 99, and this library knows versions up to 2. Use a newer library.");
    }
}

TEST_F(SchemaVersions, ADatabaseWithoutAMarkHasVersion0AndIsAccepted) {
    OXCLASS_ONLY_IF(IsFile());
    const Ref<Connection> other = New<Connection>();
    other->Open("Provider=SQLite;Mode=Create;Data Source=" + (folder.Path() / "other.db").string());
    EXPECT_EQ(SchemaVersionOf(other), 0);
    RequireKnownSchema(other);
}

}  // namespace
}  // namespace OXClass
