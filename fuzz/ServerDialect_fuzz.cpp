#include "Check.h"

#include "platform/adodb/providers/postgresql/PostgresDialect.h"
#include "platform/runtime/Convert.h"

using namespace ADODB;
using namespace Platform;

namespace {

std::vector<String> KeysOf(const String& table) {
    if (table == "a") return {"id"};
    if (table == "b") return {"x", "y"};
    return {};
}

/// Returns how many of "$1" up to "$count" a text contains in this order.
std::size_t ParametersIn(const String& text, std::size_t count) {
    std::size_t at = 0, found = 0;
    while (found < count) {
        at = text.find("$" + std::to_string(found + 1), at);
        if (at == String::npos) break;
        ++at;
        ++found;
    }
    return found;
}

}  // namespace

/// The translation for a server contains each literal's parameter, in the order of the literals, and without parameters
/// the body of each literal.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String statement(reinterpret_cast<const char*>(data), size);
    Shape shape;
    shape.reals = true;
    std::vector<Literal> literals;
    if (CutAtLiterals(statement, shape, literals)) {
        const PostgresText prepared = ForPostgres(statement, literals, KeysOf);
        CHECK(prepared.negative.size() == literals.size());
        CHECK(ParametersIn(prepared.text, literals.size()) == literals.size());
    } else {
        literals.clear();
    }
    const String text = ForPostgres(statement, {}, KeysOf).text;
    for (const Literal& literal : literals) CHECK(Contains(text, literal.body));
    return 0;
}
