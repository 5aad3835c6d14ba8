#include "Check.h"
#include "console/Output.h"
#include "console/patients/PatientIdentity.h"
#include "console/patients/TypedDate.h"

/// Dates that people type and names that files hold: every text is read or refused, and comparing two people
/// doesn't depend on their order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Console;
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const Platform::Date date = TypedDate(text);
        CHECK(TypedDate(DateText(date)) == date);
    } catch (const UserError&) {
    }
    const auto half = text.find('=');
    const auto personOf = [](const std::string& name) {
        const auto caret = name.find('^');
        const std::string given = caret == std::string::npos ? "" : name.substr(caret + 1);
        return PatientIdentity{.patientID = "1", .names = {{name.substr(0, caret), given}}};
    };
    const PatientIdentity a = personOf(text.substr(0, half));
    const PatientIdentity b = personOf(half == std::string::npos ? text : text.substr(half + 1));
    CHECK(Contradictions(a, a).empty());
    CHECK(Contradictions(a, b) == Contradictions(b, a));
    SideBySide(a, "one", b, "other");
    return 0;
}
