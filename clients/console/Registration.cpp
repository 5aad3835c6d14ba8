#include "console/Commands.h"
#include "console/Output.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/registry/LibraryFile.h"

#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using Platform::LibraryFile;

/// Returns the whole path of the library file that the user names, or of the one that came with this program.
std::string LibraryOf(const std::string& named) {
    const fs::path host = Platform::HostFile();
    const fs::path file = named.empty() ? host.parent_path() / "libOXClass.so" : fs::path(named);
    return fs::weakly_canonical(fs::absolute(file)).string();
}

void RequireFile(const std::string& library) {
    if (!fs::exists(library))
        throw UserError(fmt::format("there is no library {}; name it: oxclass register LIBRARY", library));
}

/// Returns the description in the error record of a failed call.
std::string FailureText(const char* otherwise) {
    IErrorInfo* record = nullptr;
    if (GetErrorInfo(0, &record) != S_OK) return otherwise;
    BSTR text = nullptr;
    record->GetDescription(&text);
    record->Release();
    const Platform::OwnedBstr description(text);
    return Platform::FromBstr(text);
}

void Register(const std::string& named) {
    const std::string library = LibraryOf(named);
    RequireFile(library);
    if (FAILED(LibraryFile(library).RegisterServer())) throw UserError(FailureText("the registration failed"));
    fmt::print("Registered {} in {}\n", library, Platform::ClassRegistry::File().string());
}

/// Removes the library with this path from the registry; the library file may have been deleted.
void Unregister(const std::string& named) {
    const std::string library = LibraryOf(named);
    if (!Platform::ClassRegistry::RemoveFile(library))
        throw UserError(fmt::format("{} is not registered; oxclass classes shows what is", library));
    fmt::print("Removed {} from {}\n", library, Platform::ClassRegistry::File().string());
}

void ListClasses(const Options& options) {
    List list({{"class", "Class"},
               {"instancing", "Instancing"},
               {"threading", "Threading"},
               {"identifier", "Identifier"},
               {"library", "Library"}});
    for (const auto& found : Platform::ClassRegistry::All())
        list.Add({found.Name, found.Instancing, found.Threading, found.Identifier, found.Library});
    list.Print(options.json, fmt::format("No classes are registered in {}. Register them: oxclass register",
                                         Platform::ClassRegistry::File().string()));
}

CLI::App* AddLibraryCommand(Program& program, const char* name, const char* description,
                            void (*run)(const std::string&)) {
    const auto library = std::make_shared<std::string>();
    auto* command = program.app.add_subcommand(name, description);
    command->add_option("library", *library, "the library file (default: the one that came with this program)")
        ->type_name("LIBRARY");
    command->callback([library, run] { run(*library); });
    return command;
}

}  // namespace

void AddRegistration(Program& program) {
    AddLibraryCommand(program, "register",
                      "make the library's classes known by name to all programs of this user; needs no database",
                      Register)
        ->footer(
            "They are written to the file that OXCLASS_REGISTRY names, else to oxclass/classes.json in the "
            "user's "
            "data folder.\nExample: oxclass register");
    AddLibraryCommand(program, "unregister", "take the library's classes out again; needs no database", Unregister)
        ->footer("Example: oxclass unregister");
    auto* classes = program.app.add_subcommand("classes", "list the classes that are registered; needs no database");
    classes->footer("Example: oxclass classes --json");
    classes->callback([&program] { ListClasses(program.options); });
}

}  // namespace Console
