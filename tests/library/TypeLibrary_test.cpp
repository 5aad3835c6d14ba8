#include "library/TypeLibrary.h"

#include "kit/Database.h"
#include "library/ClassTable.h"
#include "platform/HostClasses.h"
#include "platform/component/dispatch/Interface.h"

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

/// The type library as text, by itself and compiled by a standard compiler.
namespace OXClass {
namespace {

using Platform::Contains;
using Platform::MemberKind;

std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The text without the help texts of classes and members.
std::string WithoutHelp(const std::string& text) {
    return std::regex_replace(text, std::regex(R"(, helpstring\("[^"]*"\))"), "");
}

TEST(TypeLibrary, IsTheLibraryInItsVersion) {
    const std::string text = TypeLibraryText();
    EXPECT_TRUE(
        Contains(text, "    version(1.30),\n    lcid(1033),\n    helpstring(\"OX Classes\")\n]\nlibrary OXClass {"));
}

TEST(TypeLibrary, ContainsArgumentsResultsAndIdentifiersOfMembers) {
    const std::string text = WithoutHelp(TypeLibraryText());
    EXPECT_TRUE(Contains(text,
                         "[id(0x6003000a)] HRESULT LoadOnPatientIDorPDBID([in] IDispatch* Con, [in, out] BSTR* "
                         "PatientID, [in, out] long* PDBID, [out, retval] long* Result);"));
    EXPECT_TRUE(Contains(text,
                         "[id(0x00000000), propget] HRESULT Item([in] VARIANT vntIndexKey, [out, retval] "
                         "_cUniCard** Result);"));
    EXPECT_TRUE(
        Contains(text, "[id(0xfffffffc), propget, restricted] HRESULT NewEnum([out, retval] IUnknown** Result);"));
    EXPECT_TRUE(Contains(text,
                         "HRESULT AddObj([in, out] _cUniCard** oUC, [in, out, optional] BSTR* sKey, [in, out, "
                         "optional] BSTR* sBefore, [out, retval] VARIANT_BOOL* Result);"));
    EXPECT_TRUE(Contains(text, "propputref] HRESULT Study([in] _cStudy* Value);"));
    EXPECT_TRUE(Contains(text, "[id(0x60030000), propput] HRESULT ManipulationType([in] ManipulationType Value);"));
}

TEST(TypeLibrary, ContainsTheHelpTextsOfClassesAndMembers) {
    const std::string text = TypeLibraryText();
    EXPECT_TRUE(
        Contains(text,
                 "[uuid(8268d3af-f672-522a-8924-e6dd3301cf43), helpstring(\"One tooth, with the mark that it is "
                 "selected.\")]\ncoclass cTooth "));
    EXPECT_TRUE(Contains(text,
                         "    [id(0x60030000), helpstring(\"True if the row is in the database; Save then updates it, "
                         "and inserts it otherwise.\"), propput] HRESULT GLSaved([in] VARIANT_BOOL Value);"));
}

/// Behind each name that a client sees there is one line of help, with which the text of the type library is valid.
void ExpectHelp(const std::string& name, const std::string& help) {
    EXPECT_THAT(help, ::testing::MatchesRegex("[ !#-[^-~]{7,99}[.]")) << name;
}

TEST(HelpTexts, EachClassMemberAndArgumentHasOne) {
    std::vector<const Platform::Interface*> tables;
    for (const ClassEntry& entry : ClassTable()) tables.push_back(&entry.Make()->Describe());
    for (const Platform::Interface* table : Platform::HostInterfaces()) tables.push_back(table);
    std::size_t arguments = 0;
    for (const Platform::Interface* table : tables) {
        ExpectHelp(table->ClassName(), table->Help());
        for (const Platform::Member& member : table->Members()) {
            const std::string name = table->ClassName() + "." + member.Name;
            ExpectHelp(name, member.Help);
            for (const Platform::Argument& argument : member.Arguments)
                ExpectHelp(name + "(" + argument.Name + ")", argument.Help), ++arguments;
        }
    }
    EXPECT_GT(arguments, 200U);
}

TEST(TypeLibrary, ThreePutsTakeThePlaceOfTheirValue) {
    const std::string text = TypeLibraryText();
    std::size_t places = 0;
    for (std::size_t at = 0; (at = text.find(", propput] HRESULT ", at)) != std::string::npos; ++at) {
        const std::string line = text.substr(at, text.find('\n', at) - at);
        places += Contains(line, "[in, out]");
        EXPECT_EQ(Contains(line, "[in, out]"),
                  Contains(line, " Key([in, out] BSTR* Value)") || Contains(line, " ADId([in, out] long* Value)"))
            << line;
    }
    EXPECT_EQ(places, 3U) << "the keys of study and series, and the group number";
}

TEST(TypeLibrary, EnumerationsHaveTheirNumbers) {
    const std::string text = TypeLibraryText();
    EXPECT_TRUE(
        Contains(text, "typedef enum {\n    ctUnknown = 0,\n    ctImagecard = 1,\n    ctseries = 2\n} CardTypes;"));
    EXPECT_TRUE(Contains(text, "    cidtOther = 999\n} CIDTypes;"));
    EXPECT_TRUE(Contains(text, "    imggTypeGeneralObject = 32767\n} xigImageTypes;"));
}

TEST(TypeLibrary, GlobalClassesAreApplicationObjects) {
    const std::string text = WithoutHelp(TypeLibraryText());
    for (const ClassEntry& entry : ClassTable()) {
        const std::string head = std::string("[uuid(") + entry.ClassID + ")" + (entry.IsGlobal ? ", appobject]" : "]");
        EXPECT_TRUE(
            Contains(text, head + "\ncoclass " + entry.Name + " { [default] interface _" + entry.Name + "; };"));
    }
}

// ---- compiled ---------------------------------------------------------------------------------------

/// The output of the compiler: a binary type library, and a header with the slots of each interface.
class Compiled : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<TestKit::TemporaryFolder>();
        for (const char* prelude : {"oaidl.idl", "stdole2.idl"})
            std::filesystem::copy_file(std::filesystem::path(PRELUDES) / prelude, folder->Path() / prelude);
        std::ofstream(folder->Path() / "OXClass.idl") << TypeLibraryText();
        compiled = Compile("-t -o stdole2.tlb stdole2.idl") && Compile("-t -o OXClass.tlb OXClass.idl") &&
                   Compile("-h -o OXClass.h OXClass.idl");
    }
    static void TearDownTestSuite() { folder.reset(); }

    static bool Compile(const std::string& what) {
        const std::string command =
            "cd " + folder->Path().string() + " && x86_64-w64-mingw32-widl --nostdinc -I. -L. " + what;
        return std::system(command.c_str()) == 0;
    }

    /// The names of the slots of an interface behind those of the dispatch interface.
    static std::vector<std::string> SlotsOf(const std::string& header, const std::string& name) {
        std::vector<std::string> slots;
        const auto table = header.find("typedef struct " + name + "Vtbl {");
        auto at = header.find("/*** " + name + " methods ***/", table);
        const auto end = header.find("END_INTERFACE", table);
        constexpr std::string_view mark = "(STDMETHODCALLTYPE *";
        while (at < end && (at = header.find(mark, at)) < end) {
            at += mark.size();
            slots.push_back(header.substr(at, header.find(')', at) - at));
        }
        return slots;
    }

    static std::unique_ptr<TestKit::TemporaryFolder> folder;
    static bool compiled;
};
std::unique_ptr<TestKit::TemporaryFolder> Compiled::folder;
bool Compiled::compiled = false;

TEST_F(Compiled, IsATypeLibrary) {
    ASSERT_TRUE(compiled);
    EXPECT_EQ(Read(folder->Path() / "OXClass.tlb").substr(0, 4), "MSFT");
}

TEST_F(Compiled, TheSlotsAreTheTablesMembersInTheirOrder) {
    ASSERT_TRUE(compiled);
    const std::string header = Read(folder->Path() / "OXClass.h");
    std::size_t all = 0;
    for (const ClassEntry& entry : ClassTable()) {
        std::vector<std::string> members;
        for (const Platform::Member& member : entry.Make()->Describe().Members()) {
            const char* const prefix = member.Kind == MemberKind::Get      ? "get_"
                                       : member.Kind == MemberKind::Put    ? "put_"
                                       : member.Kind == MemberKind::PutRef ? "putref_"
                                                                           : "";
            members.push_back(prefix + member.Name);
        }
        EXPECT_EQ(SlotsOf(header, std::string("_") + entry.Name), members) << entry.Name;
        all += members.size();
    }
    EXPECT_EQ(all, 567U);
}

}  // namespace
}  // namespace OXClass
