#include "ServerTest.h"
#include "kit/FaultyProvider.h"

#include <gmock/gmock.h>
#include <unistd.h>

/// A server that ends the connection in front of any call of an import, as a crash or an administrator does.
namespace {

using namespace ServerTest;
using ::testing::AnyOf;
using ::testing::HasSubstr;

class KilledImport : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (IsSkipped()) return;
        TestKit::InstallFaultyProvider();
        InitServer();
        Write("2.25.6", 1, FullMouth18[7], [](DcmDataset& set) {
            set.putAndInsertString(DCM_IssuerOfPatientID, "Clinic");
            set.putAndInsertString(DCM_PatientSex, "F");
        });
        WriteSeries("2.25.7", {FullMouth18[10]});
    }
    ~KilledImport() override { TestKit::BeforeEachCall({}); }

    /// Runs an import whose connection ends in front of the call with this number, from 1; 0: never.
    Result ImportKilledAt(int call) {
        calls_ = 0;
        TestKit::BeforeEachCall([this, call] {
            if (++calls_ == call) EndConnections();
        });
        Result run = On(TestKit::FaultyVersionOf(Clinic()), {"import", Films(), "--jobs", "1"});
        TestKit::BeforeEachCall({});
        return run;
    }

    /// Ends all connections to the clinic.
    void EndConnections() {
        const std::string of = OnMariaDb() ? "information_schema.processlist WHERE db = '" + name_ + "'"
                                           : "pg_stat_activity WHERE datname = '" + name_ + "'";
        if (OnMariaDb()) {
            const auto ids = administrator_->Execute("SELECT id FROM " + of);
            for (; !ids->Eof(); ids->MoveNext()) administrator_->Execute("KILL " + ids->Fields(0).As<std::string>());
        } else {
            administrator_->Execute("SELECT pg_terminate_backend(pid) FROM " + of);
        }
        while (administrator_->Execute("SELECT count(*) FROM " + of)->Fields(0).As<Platform::Long>() > 0) usleep(500);
    }

    /// Removes all that imports have stored.
    void Empty() {
        const auto con = Open(Clinic());
        for (const char* const table : {"ImageBild_T", "Series_T", "Study_T", "Patient_T", "PatientIssuer_T"})
            con->Execute(std::string("DELETE FROM ") + table);
        for (const auto& entry : fs::directory_iterator(Root()))
            if (entry.path().filename() != ".oxclass-root") fs::remove_all(entry.path());
    }

    /// Returns the names of the stored images, without the folder of the patient, which has a number.
    std::set<std::string> NamesInRows() const {
        std::set<std::string> names;
        const auto rows = Open(Clinic())->Execute("SELECT GraphicURL_NVC FROM ImageBild_T");
        for (; !rows->Eof(); rows->MoveNext()) {
            const fs::path file = Root() / Platform::Replace(rows->Fields(0).As<std::string>(), "\\", "/");
            EXPECT_TRUE(fs::exists(file)) << file << " has a row and is missing";
            EXPECT_TRUE(names.insert(file.filename()).second) << file << " has two rows";
        }
        return names;
    }

    std::set<std::string> NamesInRoot() const {
        std::set<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(Root()))
            if (entry.is_regular_file() && entry.path().filename() != ".oxclass-root")
                names.insert(fs::relative(entry.path(), Root()).filename());
        return names;
    }

    int calls_ = 0;
};

TEST_F(KilledImport, LeavesWholeSeriesAndIsCompletedByTheNextWhateverStatementItIsKilledAt) {
    ASSERT_EQ(ImportKilledAt(0).code, 0);
    const int calls = calls_;
    EXPECT_GT(calls, 40);
    const std::set<std::string> one{"2.25.6.1.dcm"}, all{"2.25.6.1.dcm", "2.25.7.1.dcm"};
    ASSERT_EQ(NamesInRows(), all);
    std::set<std::size_t> left;
    for (int call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call));
        Empty();
        const Result killed = ImportKilledAt(call);
        ASSERT_EQ(calls_ >= call, true);
        EXPECT_EQ(killed.code, 1) << killed.out << killed.err;
        EXPECT_THAT(killed.err,
                    AnyOf(HasSubstr("the connection to the server is lost; look whether the change was stored"),
                          HasSubstr("the connection to the server is lost; what was stored stays stored. "
                                    "Run the same command again")));
        const std::set<std::string> stored = NamesInRows();
        EXPECT_THAT(stored, AnyOf(std::set<std::string>{}, one, all)) << "a series is stored whole or not at all";
        left.insert(stored.size());
        const Result next = OnClinic({"import", Films(), "--jobs", "1"});
        EXPECT_EQ(next.code, 0) << next.out << next.err;
        EXPECT_EQ(NamesInRows(), all);
        EXPECT_EQ(NamesInRoot(), all) << "nothing else stays in the storage root";
        EXPECT_EQ(RowsOnServer("Patient_T"), 2U);
        EXPECT_EQ(RowsOnServer("Series_T"), 2U);
        EXPECT_EQ(RowsOnServer("Study_T"), 2U);
        EXPECT_EQ(RowsOnServer("PatientIssuer_T"), 1U);
        EXPECT_EQ(RowsOnServer("ImportedImage_T"), 2U);
        if (HasFailure()) return;
    }
    EXPECT_EQ(left, (std::set<std::size_t>{0, 1})) << "the import was killed in each of its transactions";
}

}  // namespace
