#include "console/Commands.h"
#include "console/WholeFile.h"
#include "library/TypeLibrary.h"

#include <fmt/format.h>

namespace Console {

void AddIdl(Program& program) {
    const auto file = std::make_shared<std::string>();
    auto* idl = program.app.add_subcommand("idl",
                                           "print the type library of the classes as interface-definition "
                                           "text, or with --json for programs that "
                                           "generate code; needs no database");
    idl->add_option("-o,--output", *file, "write it to this file")->type_name("FILE.idl");
    idl->footer("Example: oxclass idl -o OXClass.idl");
    idl->callback([file, &program] {
        const std::string text = program.options.json ? OXClass::TypeLibraryJson() : OXClass::TypeLibraryText();
        if (file->empty()) return fmt::print("{}", text);
        WriteWholeFile(*file, text);
    });
}

}  // namespace Console
