#include "frame/StoredName.h"

#include "kit/Database.h"

#include <fstream>

/// The file that a stored name denotes, which is never outside of its root.
namespace OXClass {
namespace {

using namespace TestKit;
namespace fs = std::filesystem;

/// A root with a folder in it, and a folder beside it, each with a file.
class NameBelowARoot : public ::testing::Test {
protected:
    NameBelowARoot() {
        fs::create_directories(root / "0_");
        fs::create_directories(outside);
        Write(root / "top.dcm");
        Write(root / "0_" / "a.dcm");
        Write(outside / "secret.dcm");
    }

    static void Write(const fs::path& file) { std::ofstream(file) << "x"; }

    /// The file of a stored name below the root.
    String File(const String& name) const { return FileBelow(root.string(), name); }

    /// The file of this path below the root, as the library would spell it.
    String Path(const char* below) const { return (root / below).string(); }

    TemporaryFolder folder;
    const fs::path root = folder.Path() / "root";
    const fs::path outside = folder.Path() / "outside";
};

TEST_F(NameBelowARoot, AFileInTheRoot) { EXPECT_EQ(File("top.dcm"), Path("top.dcm")); }

TEST_F(NameBelowARoot, ABackslashPartsFolders) { EXPECT_EQ(File("0_\\a.dcm"), Path("0_/a.dcm")); }

TEST_F(NameBelowARoot, ASlashPartsFoldersToo) { EXPECT_EQ(File("0_/a.dcm"), Path("0_/a.dcm")); }

TEST_F(NameBelowARoot, TheFileNeedNotExist) { EXPECT_EQ(File("no\\such.dcm"), Path("no/such.dcm")); }

TEST_F(NameBelowARoot, TheRootNeedNotExist) {
    const String missing = (folder.Path() / "missing").string();
    EXPECT_EQ(FileBelow(missing, "a\\b.dcm"), missing + "/a/b.dcm");
}

TEST_F(NameBelowARoot, AnEmptyRootHasNoFiles) { EXPECT_EQ(FileBelow("", "top.dcm"), ""); }

TEST_F(NameBelowARoot, AnEmptyNameHasNoFile) { EXPECT_EQ(File(""), ""); }

TEST_F(NameBelowARoot, ARootMayEndInASeparator) {
    const String file = FileBelow(root.string() + "/", "0_\\a.dcm");
    EXPECT_TRUE(fs::is_regular_file(file)) << file;
}

TEST_F(NameBelowARoot, ARootMayBeARelativePath) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    EXPECT_EQ(FileBelow("root", "0_\\a.dcm"), "root/0_/a.dcm");
    EXPECT_EQ(FileBelow("root", "..\\outside\\secret.dcm"), "");
    fs::current_path(before);
}

TEST_F(NameBelowARoot, TwoDotsHaveNoFile) {
    EXPECT_EQ(File("..\\outside\\secret.dcm"), "");
    EXPECT_EQ(File("../outside/secret.dcm"), "");
    EXPECT_EQ(File("0_\\..\\top.dcm"), "") << "even where they stay in the root";
    EXPECT_EQ(File(".."), "");
    EXPECT_EQ(File("0_\\.."), "");
}

TEST_F(NameBelowARoot, OneDotHasNoFile) {
    EXPECT_EQ(File("."), "");
    EXPECT_EQ(File(".\\top.dcm"), "");
    EXPECT_EQ(File("0_\\.\\a.dcm"), "");
}

TEST_F(NameBelowARoot, DotsWithinANameAreOrdinary) {
    EXPECT_EQ(File("..."), Path("..."));
    EXPECT_EQ(File("..a"), Path("..a"));
    EXPECT_EQ(File(".hidden\\a..b"), Path(".hidden/a..b"));
}

TEST_F(NameBelowARoot, AnAbsoluteNameHasNoFile) {
    EXPECT_EQ(File("/top.dcm"), "");
    EXPECT_EQ(File("\\top.dcm"), "");
    EXPECT_EQ(File(Path("top.dcm").c_str()), "") << "not even one that leads into the root";
    EXPECT_EQ(File("\\\\server\\share\\a.dcm"), "");
}

TEST_F(NameBelowARoot, ADriveHasNoFile) {
    EXPECT_EQ(File("C:\\a.dcm"), "");
    EXPECT_EQ(File("C:a.dcm"), "");
    EXPECT_EQ(File("0_\\C:\\a.dcm"), "");
    EXPECT_EQ(File("a.dcm:stream"), "");
}

TEST_F(NameBelowARoot, AnEmptyPartHasNoFile) {
    EXPECT_EQ(File("0_\\\\a.dcm"), "");
    EXPECT_EQ(File("0_//a.dcm"), "");
    EXPECT_EQ(File("0_\\/a.dcm"), "");
    EXPECT_EQ(File("0_\\"), "");
    EXPECT_EQ(File("\\"), "");
}

TEST_F(NameBelowARoot, ANulCharacterHasNoFile) {
    using namespace std::string_literals;
    EXPECT_EQ(File("top.dcm\0.jpg"s), "");
    EXPECT_EQ(File("0_\0\\a.dcm"s), "");
    EXPECT_EQ(File("\0"s), "");
}

TEST_F(NameBelowARoot, ANulCharacterInTheRootNeverLeadsToTheRootItself) {
    using namespace std::string_literals;
    const String file = FileBelow(Path("top.dcm") + "\0"s, "a.dcm");
    EXPECT_FALSE(fs::is_regular_file(file.c_str())) << file.c_str();
}

TEST_F(NameBelowARoot, BlanksAndWildcardsAreOrdinary) {
    EXPECT_EQ(File(" a .dcm "), Path(" a .dcm "));
    EXPECT_EQ(File("*.dcm"), Path("*.dcm"));
    EXPECT_EQ(File("?"), Path("?"));
}

TEST_F(NameBelowARoot, ANameOfAnyScriptIsFound) {
    for (const char* name : {"зуб.dcm", "切歯.dcm", "🦷.dcm"}) {
        Write(root / "0_" / name);
        EXPECT_TRUE(fs::is_regular_file(File("0_\\" + String(name)))) << name;
    }
}

TEST_F(NameBelowARoot, BytesThatAreNotUtf8AreKeptUnchanged) { EXPECT_EQ(File("\xFF\xFE.dcm"), Path("\xFF\xFE.dcm")); }

TEST_F(NameBelowARoot, ANameLongerThanTheSystemTakesHasNoFile) {
    EXPECT_EQ(File(String(300, 'a')), "");
    String deep;
    for (int i = 0; i < 3000; ++i) deep += "ab\\";
    EXPECT_EQ(File(deep + "a"), "");
}

TEST_F(NameBelowARoot, ALinkToAFileInsideIsFound) {
    fs::create_symlink("0_/a.dcm", root / "link.dcm");
    EXPECT_EQ(File("link.dcm"), Path("link.dcm"));
}

TEST_F(NameBelowARoot, ALinkToAFolderInsideIsFound) {
    fs::create_directory_symlink(root / "0_", root / "again");
    EXPECT_EQ(File("again\\a.dcm"), Path("again/a.dcm"));
}

TEST_F(NameBelowARoot, ALinkToAFileOutsideHasNoFile) {
    fs::create_symlink(outside / "secret.dcm", root / "link.dcm");
    EXPECT_EQ(File("link.dcm"), "");
}

TEST_F(NameBelowARoot, ALinkToAFolderOutsideHasNoFile) {
    fs::create_directory_symlink("../outside", root / "away");
    EXPECT_EQ(File("away\\secret.dcm"), "");
    EXPECT_EQ(File("away\\not there yet.dcm"), "");
    EXPECT_EQ(File("away"), "");
}

TEST_F(NameBelowARoot, ALinkToTheFolderAboveTheRootHasNoFile) {
    fs::create_directory_symlink("..", root / "up");
    EXPECT_EQ(File("up\\outside\\secret.dcm"), "");
    EXPECT_EQ(File("up"), "");
}

TEST_F(NameBelowARoot, ALinkOutAndInAgainIsFoundWhereItEnds) {
    fs::create_directory_symlink("../root/0_", root / "around");
    EXPECT_EQ(File("around\\a.dcm"), Path("around/a.dcm"));
}

TEST_F(NameBelowARoot, AChainOfLinksCountsByItsEnd) {
    fs::create_directory_symlink(outside, root / "second");
    fs::create_directory_symlink("second", root / "first");
    EXPECT_EQ(File("first\\secret.dcm"), "");
}

TEST_F(NameBelowARoot, ALinkToAFolderWhoseNameBeginsAsTheRootsHasNoFile) {
    fs::create_directories(folder.Path() / "root of another");
    fs::create_directory_symlink("../root of another", root / "away");
    EXPECT_EQ(File("away\\a.dcm"), "");
}

TEST_F(NameBelowARoot, ALinkOutsideThatHasNoEndYetHasNoFile) {
    fs::create_symlink(outside / "not there yet.dcm", root / "link.dcm");
    EXPECT_EQ(File("link.dcm"), "");
    fs::create_directory_symlink(outside / "no folder", root / "away");
    EXPECT_EQ(File("away\\a.dcm"), "");
}

TEST_F(NameBelowARoot, ALoopOfLinksHasNoFile) {
    fs::create_symlink("b", root / "a");
    fs::create_symlink("a", root / "b");
    fs::create_symlink("self", root / "self");
    EXPECT_EQ(File("a"), "");
    EXPECT_EQ(File("a\\x.dcm"), "");
    EXPECT_EQ(File("self\\x.dcm"), "");
}

TEST_F(NameBelowARoot, ARootThatIsALinkHasItsFiles) {
    fs::create_directory_symlink(root, folder.Path() / "linked");
    const String linked = (folder.Path() / "linked").string();
    EXPECT_EQ(FileBelow(linked, "0_\\a.dcm"), linked + "/0_/a.dcm");
    EXPECT_EQ(FileBelow(linked, "..\\outside\\secret.dcm"), "");
    fs::create_directory_symlink(outside, root / "away");
    EXPECT_EQ(FileBelow(linked, "away\\secret.dcm"), "");
}

TEST_F(NameBelowARoot, ARootThatIsALoopHasNoFiles) {
    fs::create_symlink("loop", folder.Path() / "loop");
    EXPECT_EQ(FileBelow((folder.Path() / "loop").string(), "a.dcm"), "");
}

TEST_F(NameBelowARoot, AFileInPlaceOfAFolderContainsNoFiles) { EXPECT_FALSE(fs::exists(File("top.dcm\\a.dcm"))); }

}  // namespace
}  // namespace OXClass
