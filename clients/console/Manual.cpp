#include "console/Commands.h"

#include "console/Output.h"
#include "console/WholeFile.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <fmt/format.h>

/// Man pages and the completion of shells, made from the table of the commands that the help shows too.
namespace Console {
namespace {

using Commands = std::vector<const CLI::App*>;

Commands SubcommandsOf(const CLI::App& app) {
    const auto all = app.get_subcommands([](const CLI::App*) { return true; });
    return {all.begin(), all.end()};
}

/// Returns the names of an option as the user types them: "--output", "-o"; none of a positional argument.
std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    return names;
}

/// Returns the words that may follow a command: its subcommands and the names of its options.
std::string WordsAfter(const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::App* const command : SubcommandsOf(app)) words.push_back(command->get_name());
    for (const CLI::Option* const option : app.get_options())
        for (const std::string& name : NamesOf(*option)) words.push_back(name);
    return fmt::format("{}", fmt::join(words, " "));
}

/// Calls `visit` with a command and its words, "card add", and then with all commands below it.
void Visit(const CLI::App& app, const std::string& words,
           const std::function<void(const CLI::App&, const std::string&)>& visit) {
    visit(app, words);
    for (const CLI::App* const command : SubcommandsOf(app))
        Visit(*command, words.empty() ? command->get_name() : words + " " + command->get_name(), visit);
}

// ---- completion -----------------------------------------------------------------------------------

/// Prints a script for bash, which zsh reads by bashcompinit. It completes commands and options, and else files.
void PrintCompletion(const CLI::App& app) {
    fmt::print(
        "# Completion of oxclass for bash: eval \"$(oxclass completion)\"\n"
        "_oxclass() {{\n"
        "    local word command='' words=''\n"
        "    for word in \"${{COMP_WORDS[@]:1:COMP_CWORD-1}}\"; do\n"
        "        case \"$command|$word\" in\n");
    Visit(app, {}, [](const CLI::App& command, const std::string& words) {
        if (words.empty()) return;
        const auto blank = words.rfind(' ');
        const std::string before = blank == std::string::npos ? std::string() : words.substr(0, blank);
        fmt::print("            '{}|{}') command='{}' ;;\n", before, command.get_name(), words);
    });
    fmt::print("        esac\n    done\n    case \"$command\" in\n");
    Visit(app, {}, [&](const CLI::App& command, const std::string& words) {
        fmt::print("        '{}') words='{}' ;;\n", words, WordsAfter(command));
    });
    fmt::print(
        "    esac\n"
        "    COMPREPLY=($(compgen -W \"$words {}\" -- \"${{COMP_WORDS[COMP_CWORD]}}\"))\n"
        "}}\n"
        "complete -o default -F _oxclass oxclass\n",
        "--db --json --trace");
}

// ---- man pages ------------------------------------------------------------------------------------

/// Returns a text for a man page: no character of it is taken for a request.
std::string RoffText(const std::string& text) {
    const std::string escaped = Platform::Replace(Platform::Replace(text, "\\", "\\e"), "-", "\\-");
    return Platform::Replace("\n" + escaped, "\n", "\n\\&").substr(1);
}

std::string ArgumentsOf(const CLI::App& app) {
    std::string text;
    for (const CLI::Option* const option : app.get_options())
        if (option->get_positional()) text += fmt::format(" [{}]", option->get_name(true));
    return text;
}

std::string OptionLine(const CLI::Option& option) {
    const std::vector<std::string> names = NamesOf(option);
    const std::string value = option.get_type_size() == 0 ? "" : " " + option.get_type_name();
    const std::string shown =
        names.empty() ? option.get_name(true) : fmt::format("{}{}", fmt::join(names, ", "), value);
    return fmt::format(".TP\n.B {}\n{}\n", RoffText(shown), RoffText(option.get_description()));
}

std::string SectionOf(const CLI::App& command, const std::string& words) {
    std::string text = fmt::format(".SS {}\n{}\n", RoffText("oxclass " + words + ArgumentsOf(command)),
                                   RoffText(command.get_description()));
    for (const CLI::Option* const option : command.get_options())
        if (option->get_name() != "--help") text += OptionLine(*option);
    if (!command.get_footer().empty()) text += fmt::format(".PP\n.nf\n{}\n.fi\n", RoffText(command.get_footer()));
    return text;
}

/// Returns the man page oxclass(1).
std::string ManualOf(const CLI::App& app) {
    std::string text = fmt::format(
        ".TH OXCLASS 1\n.SH NAME\noxclass \\- clinic databases of dental images\n.SH SYNOPSIS\n.B oxclass\n[options] "
        "command [arguments]\n.SH DESCRIPTION\n{}\n.SH OPTIONS\n",
        RoffText(app.get_description()));
    for (const CLI::Option* const option : app.get_options()) text += OptionLine(*option);
    text += ".SH COMMANDS\n";
    Visit(app, {}, [&](const CLI::App& command, const std::string& words) {
        if (!words.empty()) text += SectionOf(command, words);
    });
    return text +
           ".SH EXIT STATUS\n0: done. 1: failed, with one line that says what to do. 2: wrong usage. 3: done, but "
           "files or "
           "rows were skipped.\n";
}

}  // namespace

void AddManual(Program& program) {
    auto* completion = program.app.add_subcommand("completion", "print the completion of commands for bash and zsh");
    completion->footer("Example: oxclass completion > oxclass.bash");
    completion->callback([&program] { PrintCompletion(program.app); });
    const auto file = std::make_shared<std::string>();
    auto* manual = program.app.add_subcommand("man", "print the man page of all commands, or write it to a file");
    manual->add_option("-o,--output", *file, "file to write")->type_name("FILE");
    manual->footer("Example: oxclass man -o oxclass.1");
    manual->callback([&program, file] {
        const std::string text = ManualOf(program.app);
        if (file->empty()) return fmt::print("{}", text);
        WriteWholeFile(*file, text);
    });
}

}  // namespace Console
