#include "console/Commands.h"

#include "console/WriteTransaction.h"
#include "console/import/StorageRoot.h"
#include "frame/Class1.h"
#include "frame/Statement.h"

#include <fmt/format.h>
#include <regex>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

constexpr std::string_view Prefix = "gglID_";

void ListRoots(const Options& options) {
    const Database database(options);
    database
        .ListOf(
            "SELECT RootID AS Root, CASE WHEN Status <> 0 THEN 1 WHEN Status = 0 THEN 0 END AS Active, "
            "RootDirectory AS Directory FROM Root_T ORDER BY RootID")
        .Print(options, "There are no storage roots; add one with: oxclass roots --add DIR");
}

/// Adds a root and makes it the active one, where new files go.
void AddRoot(const Options& options, const std::string& directory) {
    const Database database(options);
    const fs::path root = fs::absolute(directory);
    StorageRoots(database.Con()).Create(root);
    Write(database.Con(), [&] {
        database.Con()->Execute("UPDATE Root_T SET Status = 0");
        database.Con()->Execute(
            sql("INSERT INTO Root_T (RootDirectory, Status) VALUES ('", FixSqlString(root.string()), "', 1)"));
    });
    ListRoots(options);
}

/// Returns a list by its name, with or without the prefix that all names have, or by its number.
gGlobalListIDs ListNamed(const std::string& name) {
    for (const EnumerationValue& value : EnumerationOf<gGlobalListIDs>::Values) {
        const std::string_view known = value.Name;
        if (EqualsIgnoringCase(known, name) || EqualsIgnoringCase(known.substr(Prefix.size()), name) ||
            std::to_string(value.Value) == name)
            return static_cast<gGlobalListIDs>(value.Value);
    }
    throw UserError(fmt::format("there is no setting \"{}\"; see: oxclass setting list", name));
}

void PrintSettings(const Options& options, const std::vector<gGlobalListIDs>& lists, bool onlyFilled) {
    const Database database(options);
    List shown({{"name", "Name"}, {"number", "Number"}, {"row", "Row"}, {"text", "Text"}});
    for (const gGlobalListIDs id : lists) {
        const Ref<cGlobalLists> rows = New<cGlobalLists>();
        rows->GetAllGLs(database.Con(), id);
        const std::string name(
            std::string_view(EnumerationOf<gGlobalListIDs>::Values[id - 1].Name).substr(Prefix.size()));
        for (const cGlobalList& row : *rows) shown.Add({name, Long{id}, row.GlobalListID, row.ListText});
        if (rows->Count() == 0 && !onlyFilled) shown.Add({name, Long{id}, nullptr, nullptr});
    }
    shown.Print(options, "Nothing is set.");
}

void ListSettings(const Options& options, const std::string& name) {
    if (!name.empty()) return PrintSettings(options, {ListNamed(name)}, true);
    std::vector<gGlobalListIDs> all;
    for (const EnumerationValue& value : EnumerationOf<gGlobalListIDs>::Values)
        all.push_back(static_cast<gGlobalListIDs>(value.Value));
    PrintSettings(options, all, false);
}

void GetSetting(const Options& options, const std::string& name) {
    const Database database(options);
    Ref<cGlobalLists> rows;
    String text;
    New<Class1>()->GetGLSetting(database.Con(), ListNamed(name), text, rows);
    if (options.json) return PrintJson({{"name", name}, {"text", text}, {"set", rows->Count() > 0}});
    fmt::print("{}\n", Printable(text));
}

/// Rejects a root that is not the beginning of a valid identifier. The components must be whole numbers without leading
/// zeros, and the first must be 0, 1 or 2.
void RequireUidRoot(const std::string& root) {
    constexpr std::size_t longest = 62;  // leaves a dot and one digit
    static const std::regex form(R"([0-2](\.(0|[1-9][0-9]*))+)");
    if (root.size() > longest || !std::regex_match(root, form))
        throw UserError(
            fmt::format("\"{}\" can't be a root of DICOM identifiers; write numbers separated by dots, as "
                        "1.2.826.0.1, at "
                        "most {} characters",
                        root, longest));
}

void SetSetting(const Options& options, const std::string& name, const std::string& text, bool add) {
    if (ListNamed(name) == gglID_DicomRootUID) RequireUidRoot(text);
    const Database database(options);
    Write(database.Con(), [&] { New<Class1>()->SaveGLSetting(database.Con(), ListNamed(name), text, !add); });
}

void PrintIdentifiers(const Options& options, int count) {
    const Database database(options);
    const Ref<Class1> services = New<Class1>();
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (int i = 0; i < count; ++i) all.push_back(services->GetInstanceUID(database.Con()));
    if (options.json) return PrintJson(all);
    for (const auto& uid : all) fmt::print("{}\n", uid.get<std::string>());
}

void AddSetting(Program& program) {
    struct Arguments {
        std::string name, text;
        bool add = false;
    };
    const auto given = std::make_shared<Arguments>();
    auto* setting = program.app.add_subcommand("setting", "get, set and list the settings of the suite");
    setting->require_subcommand(1);
    setting->footer("Example: oxclass setting set DicomRootUID 1.2.826.0.1");
    auto* get = setting->add_subcommand("get", "print the first text of a setting");
    get->add_option("NAME", given->name, "name of the setting")->required();
    get->callback([&program, given] { GetSetting(program.options, given->name); });
    auto* set = setting->add_subcommand("set", "store a text, which replaces the texts of the setting");
    set->add_option("NAME", given->name, "name of the setting")->required();
    set->add_option("TEXT", given->text, "the text to store")->required();
    set->add_flag("--add", given->add, "keep the stored texts, and add the text as another row");
    set->callback([&program, given] { SetSetting(program.options, given->name, given->text, given->add); });
    auto* list = setting->add_subcommand("list", "list all settings, or the rows of one");
    list->add_option("NAME", given->name, "name of the setting");
    AddListOptions(program, list);
    list->callback([&program, given] { ListSettings(program.options, given->name); });
}

}  // namespace

void AddSettings(Program& program) {
    const auto directory = std::make_shared<std::string>();
    auto* roots = program.app.add_subcommand("roots", "list the storage roots, or add one");
    roots->add_option("--add", *directory, "make this folder the active root")->type_name("DIR");
    AddListOptions(program, roots);
    roots->footer("Example: oxclass roots --add /srv/images2");
    roots->callback([&program, directory] {
        if (directory->empty()) return ListRoots(program.options);
        AddRoot(program.options, *directory);
    });
    AddSetting(program);
    const auto count = std::make_shared<int>(1);
    auto* uid = program.app.add_subcommand("uid", "make new DICOM identifiers under the database's root");
    uid->add_option("--count", *count, "how many")->type_name("N")->check(CLI::Range(1, 1'000'000));
    uid->footer("Example: oxclass uid --count 3");
    uid->callback([&program, count] { PrintIdentifiers(program.options, *count); });
}

}  // namespace Console
