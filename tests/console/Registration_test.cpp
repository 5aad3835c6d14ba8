#include "ProgramTest.h"

#include <cstdlib>
#include <fstream>

/// register, unregister, classes: the library known by name to all programs of the user.
namespace {

class Registration : public ProgramTest::Program {
protected:
    Registration() { setenv("OXCLASS_REGISTRY", File().c_str(), 1); }
    ~Registration() override { unsetenv("OXCLASS_REGISTRY"); }

    std::filesystem::path File() const { return folder.Path() / "data" / "classes.json"; }
};

TEST_F(Registration, RegistersAndUnregistersTheClasses) {
    EXPECT_NE(Ok({"register", LIBRARY}).find(File().string()), std::string::npos);
    const auto classes = OkJson({"classes"});
    ASSERT_EQ(classes.size(), 28U);
    EXPECT_EQ(classes[0]["class"], "OXClass.Class1");
    EXPECT_EQ(classes[12]["class"], "OXClass.cStudy");
    EXPECT_EQ(classes[12]["instancing"], "global");
    EXPECT_EQ(classes[12]["library"], std::filesystem::canonical(LIBRARY).string());

    Ok({"register", LIBRARY});
    EXPECT_EQ(OkJson({"classes"}).size(), 28U) << "once more changes nothing";

    Ok({"unregister", LIBRARY});
    EXPECT_FALSE(std::filesystem::exists(File()));
    EXPECT_NE(Ok({"classes"}).find("No classes are registered"), std::string::npos);
}

TEST_F(Registration, ADamagedFileIsReportedAndUnchanged) {
    std::filesystem::create_directories(File().parent_path());
    std::ofstream(File()) << "not a registry";
    for (const auto& command :
         std::vector<std::vector<std::string>>{{"register", LIBRARY}, {"unregister", LIBRARY}, {"classes"}}) {
        const auto run = Try(command);
        EXPECT_EQ(run.code, 1);
        EXPECT_NE(run.err.find("is damaged"), std::string::npos) << run.err;
    }
    std::string text;
    std::getline(std::ifstream(File()), text);
    EXPECT_EQ(text, "not a registry");
}

TEST_F(Registration, ADeletedLibraryCanBeUnregistered) {
    const auto copy = folder.Path() / "libOXClass.so";
    std::filesystem::copy_file(LIBRARY, copy);
    Ok({"register", copy.string()});
    std::filesystem::remove(copy);
    Ok({"unregister", copy.string()});
    EXPECT_FALSE(std::filesystem::exists(File()));
    const auto again = Try({"unregister", copy.string()});
    EXPECT_EQ(again.code, 1);
    EXPECT_NE(again.err.find("is not registered"), std::string::npos) << again.err;
}

TEST_F(Registration, ADeletedLibraryCanBeNamedThroughALink) {
    std::filesystem::create_directory(folder.Path() / "real");
    std::filesystem::create_directory_symlink(folder.Path() / "real", folder.Path() / "link");
    const auto linked = folder.Path() / "link" / "libOXClass.so";
    std::filesystem::copy_file(LIBRARY, linked);
    Ok({"register", linked.string()});
    std::filesystem::remove(linked);
    Ok({"unregister", linked.string()});
}

TEST_F(Registration, AFileOfTheCurrentFolderCanBeNamedWithoutAFolder) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(LIBRARY).parent_path());
    Ok({"register", "libOXClass.so"});
    std::filesystem::current_path(before);
    EXPECT_EQ(OkJson({"classes"})[0]["library"], std::filesystem::canonical(LIBRARY).string());
}

TEST_F(Registration, AFileThatIsNotALibraryIsReported) {
    const auto missing = Try({"register", (folder.Path() / "nothing.so").string()});
    EXPECT_EQ(missing.code, 1);
    EXPECT_NE(missing.err.find("nothing.so"), std::string::npos) << missing.err;
    const auto host = std::filesystem::path(LIBRARY).parent_path() / "liboxplatform.so";
    const auto other = Try({"register", host.string()});
    EXPECT_EQ(other.code, 1);
    EXPECT_NE(other.err.find("is not a library of classes"), std::string::npos) << other.err;
    EXPECT_FALSE(std::filesystem::exists(File()));
}

}  // namespace
