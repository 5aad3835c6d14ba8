#include "platform/component/registry/ClassRegistry.h"

#include "kit/Database.h"
#include "kit/Files.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Platform;
using namespace Platform::ClassRegistry;
namespace fs = std::filesystem;
using ::testing::HasSubstr;
using TestKit::Content;
using TestKit::FailureOf;
using TestKit::NamesIn;
using TestKit::TemporaryFolder;

// ---- helpers ----------------------------------------------------------------------------------------

/// A variable of the environment has another value while this object lives; none for null.
class InEnvironment {
public:
    InEnvironment(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        Set(value);
    }
    ~InEnvironment() { Set(before_ ? before_->c_str() : nullptr); }
    InEnvironment(const InEnvironment&) = delete;

private:
    void Set(const char* value) const { value ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* name_;
    std::optional<String> before_;
};

/// The identifier whose last digit is `digit`.
String Id(char digit) { return String("11111111-2222-3333-4444-55555555555") + digit; }

/// A library with one class for each name.
LibraryRecord Library(const String& name, char digit, const std::vector<String>& classes) {
    LibraryRecord library{name, Id(digit), "1.0", 9, name + " classes", {}};
    for (const String& found : classes)
        library.Classes.push_back({name + "." + found, Id('f'), "/opt/" + name + ".so", "Apartment", "multi-use"});
    return library;
}

/// A registry file for one test, in a folder of its own.
class ClassRegistryFile : public ::testing::Test {
protected:
    String NamesOf(const std::vector<LibraryRecord>& libraries) const {
        String names;
        for (const LibraryRecord& library : libraries) names += library.Name + " " + library.Version + ";";
        return names;
    }
    String Registered() const { return NamesOf(Parse(Content(file))); }

    void Write(const String& text) const {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }

    /// Expects that every function that reads or changes the file raises this reason and leaves the file unchanged.
    void ExpectRefused(const String& reason) const {
        const auto refused = [&](const Error& failure) {
            EXPECT_EQ(failure.Number, err::PathFileAccess);
            EXPECT_EQ(failure.Source, "Runtime");
            EXPECT_THAT(failure.Description, HasSubstr(file.string()));
            EXPECT_THAT(failure.Description, HasSubstr(reason));
        };
        refused(FailureOf([] { Enter(Library("Refused", '1', {"A"})); }));
        refused(FailureOf([] { Remove(Library("One", '1', {})); }));
        refused(FailureOf([] { Find("Refused.A"); }));
        refused(FailureOf([] { All(); }));
    }

    TemporaryFolder folder;
    const fs::path file = folder.Path() / "some" / "folders" / "classes.json";
    const InEnvironment variable{"OXCLASS_REGISTRY", file.c_str()};
};

// ---- entering and removing --------------------------------------------------------------------------

TEST_F(ClassRegistryFile, IsCreatedWithItsFoldersByTheFirstLibrary) {
    const LibraryRecord library = Library("First", '1', {"A", "B"});
    Enter(library);
    EXPECT_EQ(Parse(Content(file)), std::vector<LibraryRecord>{library});
    EXPECT_EQ(NamesIn(file.parent_path()), std::vector<String>{"classes.json"});
}

TEST_F(ClassRegistryFile, HoldsLibrariesInTheOrderOfTheirEntering) {
    for (const char digit : {'3', '1', '2'}) Enter(Library(String("L") + digit, digit, {"A"}));
    EXPECT_EQ(Registered(), "L3 1.0;L1 1.0;L2 1.0;");
}

TEST_F(ClassRegistryFile, ALibraryReplacesTheOneWithItsIdentifier) {
    Enter(Library("Old", '1', {"A", "B"}));
    Enter(Library("Other", '2', {"A"}));
    Enter(Library("New", '1', {"C"}));
    EXPECT_EQ(Registered(), "New 1.0;Other 1.0;");
    EXPECT_FALSE(Find("Old.A"));
    EXPECT_TRUE(Find("New.C"));
}

TEST_F(ClassRegistryFile, ALibraryIsRemovedAndTheFileWithTheLastLibrary) {
    Enter(Library("One", '1', {"A"}));
    Enter(Library("Two", '2', {"A"}));
    Remove(Library("One", '1', {}));
    EXPECT_EQ(Registered(), "Two 1.0;");
    EXPECT_FALSE(Find("One.A"));
    Remove(Library("Two", '2', {}));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_FALSE(Find("Two.A"));
}

TEST_F(ClassRegistryFile, ALibraryIsRemovedByItsFile) {
    Enter(Library("One", '1', {"A"}));
    Enter(Library("Two", '2', {"A"}));
    EXPECT_TRUE(RemoveFile("/opt/One.so"));
    EXPECT_EQ(Registered(), "Two 1.0;");
    EXPECT_FALSE(RemoveFile("/opt/One.so"));
    EXPECT_EQ(Registered(), "Two 1.0;");
    EXPECT_TRUE(RemoveFile("/opt/Two.so"));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_FALSE(RemoveFile("/opt/Two.so"));
}

TEST_F(ClassRegistryFile, ALinkStaysALinkAndTheFileKeepsItsRights) {
    const fs::path real = folder.Path() / "real.json";
    fs::create_directories(file.parent_path());
    std::ofstream(real) << R"({"libraries": []})";
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(real, file);
    Enter(Library("Linked", '1', {"A"}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(Registered(), "Linked 1.0;");
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    Remove(Library("One", '1', {}));
    EXPECT_FALSE(fs::exists(real));
    EXPECT_TRUE(fs::is_symlink(file)) << "it leads to nothing now";
    Enter(Library("Again", '1', {"A"}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(Registered(), "Again 1.0;");
}

TEST_F(ClassRegistryFile, APathThatIsNotUtf8IsRejected) {
    LibraryRecord library = Library("Broken", 'b', {"A"});
    library.Classes[0].Library = "/opt/b\xE9/libBroken.so";
    const Error failure = FailureOf([&] { Enter(library); });
    EXPECT_EQ(failure.Number, err::PathFileAccess);
    EXPECT_THAT(failure.Description, HasSubstr("not UTF-8"));
    EXPECT_FALSE(fs::exists(file));
    const RegisterInProcess here;
    Enter(library);
    EXPECT_EQ(Find("Broken.A")->Library, library.Classes[0].Library) << "this process can use it";
}

TEST_F(ClassRegistryFile, RemovingAMissingLibraryChangesNothing) {
    Remove(Library("One", '1', {}));
    EXPECT_TRUE(NamesIn(folder.Path()).empty());
    const String text = "{\"libraries\":[" + String(R"({"name":"N","identifier":")") + Id('2') +
                        R"(","version":"1","locale":0,"help":"","classes":[]}]})";
    Write(text);
    Remove(Library("One", '1', {}));
    EXPECT_EQ(Content(file), text) << "byte for byte";
}

// ---- finding ----------------------------------------------------------------------------------------

TEST_F(ClassRegistryFile, ClassesAreFoundWithoutRegardToCase) {
    const LibraryRecord library = Library("Lib", '1', {"Größe", "Other"});
    Enter(library);
    for (const char* name : {"Lib.Größe", "lib.größe", "LIB.GRÖßE"}) EXPECT_EQ(Find(name), library.Classes[0]) << name;
    for (const char* name : {"", "Lib", "Lib.", "Größe", "Lib.Größe2", "Lib.Gr"}) EXPECT_FALSE(Find(name)) << name;
}

TEST_F(ClassRegistryFile, WithoutAFileNoClassIsFoundAndNoFileIsCreated) {
    EXPECT_FALSE(Find("Nowhere.A"));
    EXPECT_TRUE(NamesIn(folder.Path()).empty());
}

TEST_F(ClassRegistryFile, AllHasEachClassOnce) {
    {
        const RegisterInProcess here;
        Enter(Library("AllHere", '1', {"Both", "Mine"}));
    }
    LibraryRecord same = Library("AllHere", '2', {"BOTH", "Filed"});
    same.Classes[0].Library = "/another/file";
    Enter(same);
    std::vector<String> names;
    for (const ClassRecord& found : All())
        if (found.Name.starts_with("AllHere.")) names.push_back(found.Name + " " + found.Library);
    EXPECT_THAT(names, ::testing::ElementsAre("AllHere.Both /opt/AllHere.so", "AllHere.Mine /opt/AllHere.so",
                                              "AllHere.Filed /opt/AllHere.so"));
}

TEST_F(ClassRegistryFile, RegistrationForThisProcessChangesNoFileAndHasPrecedence) {
    Enter(Library("Here", '7', {"A"}));
    const String before = Content(file);
    LibraryRecord mine = Library("Here", '8', {"A"});
    mine.Classes[0].Library = "/mine.so";
    {
        const RegisterInProcess here;
        Enter(mine);
    }
    EXPECT_EQ(Content(file), before);
    EXPECT_EQ(Find("here.a")->Library, "/mine.so");
    Write("damaged");
    EXPECT_EQ(Find("here.a")->Library, "/mine.so") << "the file isn't asked";
}

TEST_F(ClassRegistryFile, ALibraryThatThisProcessKnowsIsNotReplaced) {
    const RegisterInProcess here;
    Enter(Library("Stays", '5', {"A"}));
    LibraryRecord copy = Library("Stays", '5', {"A"});
    copy.Classes[0].Library = "/another/copy.so";
    Enter(copy);
    EXPECT_EQ(Find("Stays.A")->Library, "/opt/Stays.so");
}

TEST_F(ClassRegistryFile, EnteringHereEndsWithTheLastOfThem) {
    {
        const RegisterInProcess outer;
        { const RegisterInProcess inner; }
        Enter(Library("Nested", '9', {"A"}));
        EXPECT_FALSE(fs::exists(file));
    }
    Enter(Library("Nested", '9', {"A"}));
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(ClassRegistryFile, RegistrationForThisProcessAppliesToItsThreadOnly) {
    const RegisterInProcess here;
    std::thread([] { Enter(Library("OtherThread", '6', {"A"})); }).join();
    EXPECT_EQ(Registered(), "OtherThread 1.0;");
}

// ---- files that aren't what they should be ----------------------------------------------------------

TEST_F(ClassRegistryFile, ADamagedFileIsReportedAndUnchanged) {
    const String whole = Print({Library("Whole", '1', {"A"})});
    for (const String& text : {String(), String("{"), String("no JSON \xFF"), whole.substr(0, whole.size() / 2),
                               whole + "}", String("[]"), String(3, '\0')}) {
        Write(text);
        ExpectRefused("damaged");
        EXPECT_EQ(Content(file), text);
        EXPECT_EQ(NamesIn(file.parent_path()), std::vector<String>{"classes.json"});
    }
}

TEST_F(ClassRegistryFile, AFolderInItsPlaceIsReportedAndUnchanged) {
    fs::create_directories(file);
    ExpectRefused("can't be read");
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(ClassRegistryFile, AFolderThatCannotBeCreatedIsReported) {
    std::ofstream(folder.Path() / "some") << "a file in the way";
    const Error failure = FailureOf([] { Enter(Library("Refused", '1', {"A"})); });
    EXPECT_EQ(failure.Number, err::PathFileAccess);
    EXPECT_THAT(failure.Description, HasSubstr("can't be written"));
    EXPECT_EQ(Content(folder.Path() / "some"), "a file in the way");
}

TEST_F(ClassRegistryFile, AFullDiskIsReportedAndLeavesNoTemporaryFile) {
    Enter(Library("First", '1', {"A"}));
    const String before = Content(file);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit smaller{before.size() + 10, limit.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &smaller);
    const Error failure = FailureOf([] { Enter(Library("Second", '2', {"A"})); });
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(failure.Number, err::PathFileAccess);
    EXPECT_THAT(failure.Description, HasSubstr("can't be written"));
    EXPECT_EQ(Content(file), before);
    EXPECT_EQ(NamesIn(file.parent_path()), std::vector<String>{"classes.json"});
}

// ---- where the file is ------------------------------------------------------------------------------

TEST(ClassRegistryPath, IsTheVariablesElseInTheDataFolder) {
    const InEnvironment home("HOME", "/home/somebody");
    const InEnvironment data("XDG_DATA_HOME", "/data");
    {
        const InEnvironment named("OXCLASS_REGISTRY", "/etc/my.json");
        EXPECT_EQ(File(), "/etc/my.json");
    }
    {
        const InEnvironment named("OXCLASS_REGISTRY", "my.json");
        EXPECT_EQ(File(), fs::current_path() / "my.json");
    }
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        const InEnvironment named("OXCLASS_REGISTRY", none);
        EXPECT_EQ(File(), "/data/oxclass/classes.json");
    }
}

TEST(ClassRegistryPath, IsBelowTheHomeFolderWithoutADataFolder) {
    const InEnvironment named("OXCLASS_REGISTRY", nullptr);
    for (const char* none : {static_cast<const char*>(nullptr), "", "relative/folder"}) {
        const InEnvironment data("XDG_DATA_HOME", none);
        const InEnvironment home("HOME", "/home/somebody");
        EXPECT_EQ(File(), "/home/somebody/.local/share/oxclass/classes.json");
        for (const char* noHome : {static_cast<const char*>(nullptr), ""}) {
            const InEnvironment nobody("HOME", noHome);
            EXPECT_EQ(File(), "/.local/share/oxclass/classes.json");
        }
    }
}

// ---- the text ---------------------------------------------------------------------------------------

TEST(ClassRegistryText, IsReadAsItWasPrinted) {
    LibraryRecord quoted = Library("\"quoted\" \\ \n \x01", '1', {"Größe 😀", "", "{\"a\": [1]}"});
    quoted.Locale = 0xFFFFFFFF;
    quoted.Classes[0].Instancing = "global";
    quoted.Classes[0].Library = "/päth with 'all' \"kinds\"/of.so";
    const std::vector<LibraryRecord> libraries{quoted, Library("Empty", '2', {}), Library("", '3', {"B"})};
    const String text = Print(libraries);
    EXPECT_EQ(Parse(text), libraries);
    EXPECT_EQ(Print(Parse(text)), text);
    EXPECT_TRUE(Parse(Print({})).empty());
}

TEST(ClassRegistryText, HasNoBrokenCharacters) {
    EXPECT_EQ(Parse(Print({Library("a\xFF", '1', {})})).at(0).Name, "a\xEF\xBF\xBD");
}

/// A registry file's text with one library, in which one part was replaced.
String With(const String& part, const String& by) {
    const String text = R"({"libraries": [{"name": "N", "identifier": "ID1", "version": "1", "locale": 9, )"
                        R"("help": "", "classes": [{"name": "N.A", "identifier": "ID2", "library": "/l", )"
                        R"("threading": "Apartment", "instancing": "multi-use"}]}]})";
    return Replace(Replace(Replace(text, part, by), "ID1", Id('1')), "ID2", Id('2'));
}

TEST(ClassRegistryText, OfTheWrongShapeIsRejected) {
    ASSERT_EQ(Parse(With("", "")).at(0).Classes.at(0).Name, "N.A");
    const std::pair<String, String> changes[] = {
        {R"("libraries")", R"("Libraries")"},
        {R"("locale": 9)", R"("locale": "9")"},
        {R"("locale": 9)", R"("locale": -1)"},
        {R"("locale": 9)", R"("locale": 1.5)"},
        {R"("locale": 9)", R"("locale": true)"},
        {R"("locale": 9)", R"("locale": 4294967296)"},
        {R"("locale": 9, )", ""},
        {R"("version": "1")", R"("version": 1)"},
        {R"("version": "1", )", ""},
        {R"("name": "N")", R"("name": null)"},
        {R"("name": "N", )", ""},
        {R"("help": "")", R"("help": [])"},
        {R"("help": "", )", ""},
        {R"("classes")", R"("Classes")"},
        {R"("name": "N.A", )", ""},
        {R"("library": "/l")", R"("library": {})"},
        {R"("library": "/l", )", ""},
        {R"("threading": "Apartment")", R"("threading": 1)"},
        {R"("threading": "Apartment", )", ""},
        {R"("instancing": "multi-use")", R"("instancing": false)"},
        {R"(, "instancing": "multi-use")", ""},
        {"ID1", ""},
        {"ID1", "{ID1}"},
        {"ID2", "zzzzzzzz-2222-3333-4444-555555555555"},
        {R"("identifier": "ID1", )", ""},
        {R"("identifier": "ID2", )", ""},
    };
    for (const auto& [part, by] : changes)
        EXPECT_EQ(FailureOf([&, &from = part, &to = by] { Parse(With(from, to)); }).Number, err::PathFileAccess)
            << part << " -> " << by;
}

TEST(ClassRegistryText, HasListsOfLibrariesAndClasses) {
    for (const char* list : {"null", "{}", "5", "\"x\"", "[5]", "[[]]", "[null]", "[{}]"}) {
        EXPECT_EQ(FailureOf([&] { Parse(String("{\"libraries\": ") + list + "}"); }).Number, err::PathFileAccess)
            << list;
        const String text = R"({"libraries": [{"name": "N", "identifier": ")" + Id('1') +
                            R"(", "version": "1", "locale": 9, "help": "", "classes": )" + list + "}]}";
        EXPECT_EQ(FailureOf([&] { Parse(text); }).Number, err::PathFileAccess) << text;
    }
    EXPECT_THAT(FailureOf([] { Parse(With("ID1", "none")); }).Description, HasSubstr("\"none\""));
}

// ---- many processes ---------------------------------------------------------------------------------

/// A process that runs `body` and ends. The destructor kills it and waits for its end.
class Process {
public:
    template <class Body>
    explicit Process(Body body) : id_(fork()) {
        if (id_ != 0) return;
        try {
            body();
        } catch (...) {
            _exit(1);
        }
        _exit(0);
    }
    ~Process() { Kill(); }
    Process(const Process&) = delete;

    void Kill() {
        if (id_ <= 0) return;
        kill(id_, SIGKILL);
        waitpid(std::exchange(id_, 0), nullptr, 0);
    }
    /// True once it ended by itself, without a failure.
    bool HasEnded() {
        int status = 0;
        if (id_ <= 0 || waitpid(id_, &status, WNOHANG) != id_) return id_ == 0;
        id_ = 0;
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        return true;
    }

private:
    pid_t id_;
};

constexpr std::size_t Classes = 40;

/// A library with so many classes that reading and writing it takes a noticeable time.
LibraryRecord Large(const String& name, char digit, int version) {
    LibraryRecord library = Library(name, digit, {});
    for (std::size_t i = 0; i < Classes; ++i)
        library.Classes.push_back({name + "." + std::to_string(i), Id('f'), "/l.so", "Apartment", "multi-use"});
    library.Version = CStr(version);
    return library;
}

void EnterTimes(const String& name, char digit, int times) {
    for (int i = 1; i <= times; ++i) Enter(Large(name, digit, i));
}

TEST_F(ClassRegistryFile, TwoProcessesEnterTheirLibrariesAndReadersSeeAWholeFile) {
    constexpr int times = 40;
    Process first([] { EnterTimes("First", '1', times); });
    Process second([] { EnterTimes("Second", '2', times); });
    int wholeFiles = 0;
    for (bool firstEnded = false, secondEnded = false; !firstEnded || !secondEnded;) {
        firstEnded = firstEnded || first.HasEnded();
        secondEnded = secondEnded || second.HasEnded();
        if (!fs::exists(file)) continue;
        for (const LibraryRecord& library : Parse(Content(file))) EXPECT_EQ(library.Classes.size(), Classes);
        ++wholeFiles;
    }
    EXPECT_GT(wholeFiles, 10);
    std::vector<LibraryRecord> libraries = Parse(Content(file));
    std::ranges::sort(libraries, {}, &LibraryRecord::Name);
    EXPECT_EQ(NamesOf(libraries), "First 40;Second 40;");
    EXPECT_EQ(NamesIn(file.parent_path()), std::vector<String>{"classes.json"});
}

TEST_F(ClassRegistryFile, AProcessThatIsKilledLeavesAWholeFile) {
    Enter(Large("Before", '1', 0));
    int changed = 0;
    for (int round = 1; round <= 20; ++round) {
        Process writer([] { EnterTimes("Killed", '2', 1000000); });
        usleep(static_cast<useconds_t>(10000 + round * 10000));
        writer.Kill();
        const std::vector<LibraryRecord> libraries = Parse(Content(file));
        ASSERT_FALSE(libraries.empty());
        EXPECT_EQ(libraries[0], Large("Before", '1', 0));
        for (const LibraryRecord& library : libraries) EXPECT_EQ(library.Classes.size(), Classes);
        changed += libraries.size() == 2;
    }
    EXPECT_GT(changed, 0) << "the processes were killed at their work";
    Enter(Library("After", '3', {"A"}));
    EXPECT_TRUE(Find("After.A")) << "and hold no lock";
}

}  // namespace
