#pragma once

#include "ServerTest.h"

#include "kit/Files.h"

/// The environment of the tests of the program that run on each engine: on a file, and on the server that
/// OXCLASS_TEST_SERVER describes.
namespace AnyEngine {

using namespace ServerTest;

/// The program with a clinic on the tested engine, whose image files are below `Root()`.
class Clinic : public OnServer {
protected:
    void SetUp() override {
        if (!std::getenv("OXCLASS_TEST_SERVER")) {
            settings_ = "Provider=SQLite;Data Source=" + Database();
            ASSERT_EQ(Try({"init", Database(), "--root", Root().string()}).code, 0);
            return;
        }
        OnServer::SetUp();
        settings_ = OnServer::Clinic();
        InitServer();
    }

    const std::string& Settings() const { return settings_; }

    /// Tests that interrupt the program at each of its calls do so at every seventh one on a server, which takes
    /// longer.
    static int CallStep() { return std::getenv("OXCLASS_TEST_SERVER") ? 20 : 1; }

    /// Runs the program on the clinic.
    Result Run(std::vector<std::string> arguments) { return On(Settings(), std::move(arguments)); }

    /// Runs the program on the clinic; it must succeed without a message. Returns its output.
    std::string Ok(std::vector<std::string> arguments) {
        const Result run = Run(std::move(arguments));
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.err, "");
        return run.out;
    }

    json OkJson(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        return json::parse(Ok(std::move(arguments)));
    }

    /// Runs the program on the clinic; it must fail with one line. Returns the line.
    std::string Refused(std::vector<std::string> arguments) {
        const Result run = Run(std::move(arguments));
        EXPECT_EQ(run.code, 1) << run.out << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        return run.err;
    }

    /// Runs a statement of the test's own on the clinic.
    void Execute(const std::string& statement) const { Open(Settings())->Execute(statement); }

    Platform::Long RowCount(const std::string& table) const {
        return Open(Settings())->Execute("SELECT count(*) FROM " + table)->Fields(0).As<Platform::Long>();
    }

    /// Returns all values of a select, separated by blanks and line breaks.
    std::string All(const std::string& select) const {
        std::string text;
        const auto rows = Open(Settings())->Execute(select);
        for (; !rows->Eof(); rows->MoveNext()) {
            for (Platform::Long i = 0; i < rows->FieldCount(); ++i) {
                const Platform::Variant value = rows->Fields(i).Value();
                text += (i == 0 ? "" : " ") + (value.Is<Platform::Null>() ? "null" : Platform::CStr(value));
            }
            text += "\n";
        }
        return text;
    }

private:
    std::string settings_;
};

}  // namespace AnyEngine
