#include "console/Program.h"

#include "console/Commands.h"
#include "console/DatabaseFile.h"
#include "library/ClassTable.h"
#include "platform/adodb/providers/Provider.h"

#include <charconv>
#include <fmt/format.h>

namespace Console {
namespace {

void AddCommonOptions(Program& program) {
    program.app
        .add_option("--db", program.options.database, "database file, or a full connection string; default: OXCLASS_DB")
        ->type_name("FILE");
    program.app.add_flag("--json", program.options.json, "print lists as JSON, for scripts");
    program.app.add_flag("--trace", program.options.trace, "print each statement with its time to standard error");
    program.app.fallthrough();
    program.app.require_subcommand(1);
    program.app.failure_message(CLI::FailureMessage::simple);
}

/// Returns how the program was compiled.
std::string Build() {
#ifdef NDEBUG
    constexpr const char* kind = "release";
#else
    constexpr const char* kind = "debug";
#endif
#ifdef __clang__
    return fmt::format("{}, clang {}.{}", kind, __clang_major__, __clang_minor__);
#else
    return fmt::format("{}, gcc {}.{}", kind, __GNUC__, __GNUC_MINOR__);
#endif
}

int PrintError(const std::string& text) {
    fmt::print(stderr, "oxclass: {}\n", Printable(text));
    return Failed;
}

}  // namespace

CLI::Validator NotEmpty() {
    return {[](const std::string& text) { return text.empty() ? "an empty text is not a value" : ""; }, ""};
}

void AddListOptions(Program& program, CLI::App* command) {
    command->add_option("--limit", program.options.limit, "at most this many rows")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000'000}));
    command->add_option("--sort", program.options.sort, "sort by a column of --json, as date; -date: in reverse order")
        ->type_name("COLUMN")
        ->check(NotEmpty());
    command->add_flag("--csv", program.options.csv, "print comma-separated values, for spreadsheets")
        ->excludes(program.app.get_option("--json"));
}

Platform::Long NumberOf(const std::string& text, const char* what) {
    Platform::Long number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw UserError(fmt::format("\"{}\" is not the number of {}; the list shows the numbers", text, what));
    return number;
}

int RunProgram(int argc, const char* const* argv) {
    Program program;
    program.app.description(
        "Clinic databases of dental images: import radiographs, hang them in layouts, look at what is kept.\n"
        "Example: oxclass init clinic.db && oxclass --db clinic.db import ~/radiographs");
    const Platform::LibraryDescription& library = OXClass::ThisLibrary();
    program.app.set_version_flag(
        "--version", fmt::format("{} {} (type library {})\nengines: {}\nbuild: {}", library.Name, library.FileVersion,
                                 library.Version, fmt::join(ADODB::BuiltInEngines(), ", "), Build()));
    AddCommonOptions(program);
    AddInit(program);
    AddImport(program);
    AddPatients(program);
    AddRecords(program);
    AddHanging(program);
    AddCards(program);
    AddComposing(program);
    AddCorrections(program);
    AddDeletions(program);
    AddDrawing(program);
    AddLayouts(program);
    AddStaff(program);
    AddCheck(program);
    AddBackup(program);
    AddCopy(program);
    AddSchema(program);
    AddWorklist(program);
    AddSettings(program);
    AddIdl(program);
    AddRegistration(program);
    AddManual(program);
    try {
        program.app.parse(argc, argv);
        if (std::fflush(stdout) != 0 || std::ferror(stdout)) return PrintError("the output can't be written");
        return program.exitCode;
    } catch (const CLI::RequiredError& e) {
        const std::vector<std::string> rest = program.app.remaining();
        if (!rest.empty())
            PrintError(fmt::format("there is no command \"{}\"; oxclass --help lists them", rest.front()));
        else
            program.app.exit(e);
        return WrongUsage;
    } catch (const CLI::ParseError& e) {
        return program.app.exit(e) == 0 ? Done : WrongUsage;
    } catch (const Platform::Error& failure) {
        return PrintError(ExplanationOf(failure));
    } catch (const std::exception& failure) {
        return PrintError(failure.what());
    }
}

}  // namespace Console
