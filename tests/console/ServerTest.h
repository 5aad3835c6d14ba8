#pragma once

#include "ProgramTest.h"

#include <cstdlib>
#include <fstream>
#include <unistd.h>

/// The environment of the tests of the program on a database server.
namespace ServerTest {

using namespace ProgramTest;
using Platform::New;
using Platform::Ref;

/// The program on the server that OXCLASS_TEST_SERVER describes, with an empty database for each test.
class OnServer : public Program {
public:
    static Ref<ADODB::Connection> Open(const std::string& settings) {
        Ref<ADODB::Connection> con = New<ADODB::Connection>();
        con->Open(settings);
        return con;
    }

protected:
    void SetUp() override {
        const char* const server = std::getenv("OXCLASS_TEST_SERVER");
        if (!server) GTEST_SKIP() << "OXCLASS_TEST_SERVER is not set";
        server_ = server;
        administrator_ = Open(server_ + (OnMariaDb() ? "" : ";Database=postgres"));
        static int count = 0;
        name_ = "console_" + std::to_string(getpid()) + "_" + std::to_string(++count);
        administrator_->Execute(
            "CREATE DATABASE " + name_ +
            (OnMariaDb() ? " CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin" : " TEMPLATE template0"));
    }
    void TearDown() override {
        if (administrator_) administrator_->Execute("DROP DATABASE " + name_ + (OnMariaDb() ? "" : " WITH (FORCE)"));
    }

    static bool OnMariaDb() { return TestKit::TestedEngine() == TestKit::Engine::MariaDB; }

    std::string Clinic() const { return server_ + ";Database=" + name_; }
    fs::path Root() const { return folder.Path() / "server"; }
    void InitServer() {
        const Result run = Try({"init", Clinic(), "--root", Root().string()});
        ASSERT_EQ(run.code, 0) << run.err;
    }
    Result On(const std::string& database, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", database});
        return Try(arguments);
    }
    Result OnClinic(std::vector<std::string> arguments) { return On(Clinic(), std::move(arguments)); }

    static std::string ContentOf(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::size_t RowsOnServer(const std::string& table) const {
        return static_cast<std::size_t>(
            Open(Clinic())->Execute("SELECT count(*) FROM " + table)->Fields(0).As<Platform::Long>());
    }

    std::string server_, name_;
    Ref<ADODB::Connection> administrator_;
};

}  // namespace ServerTest
