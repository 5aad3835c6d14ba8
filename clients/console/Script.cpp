#include "console/Script.h"

namespace Console {

std::vector<std::string> StatementsOf(std::string_view script) {
    std::vector<std::string> statements;
    std::string statement;
    bool quoted = false, comment = false;
    for (std::size_t at = 0; at < script.size(); ++at) {
        const char c = script[at];
        if (c == '\'' && !comment) quoted = !quoted;
        if (!quoted && script.substr(at, 2) == "--") comment = true;
        if (c == '\n') comment = false;
        const bool leading = statement.empty() && (c == '\n' || c == ' ');
        if (!comment && !leading) statement += c;
        if (c == ';' && !quoted && !comment) statements.push_back(std::exchange(statement, {}));
    }
    return statements;
}

void RunScript(const Ref<Connection>& con, std::string_view script) {
    for (const std::string& statement : StatementsOf(script)) con->Execute(statement);
}

}  // namespace Console
