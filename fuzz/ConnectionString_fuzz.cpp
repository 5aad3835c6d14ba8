#include "Check.h"

#include "platform/adodb/ConnectionString.h"
#include "platform/runtime/Convert.h"

using namespace ADODB;
using namespace Platform;

/// A value in the form in which any text may stand in a connection string.
static String Quoted(const String& value) { return "'" + Replace(value, "'", "''") + "'"; }

/// Any text is read or refused with the one number for it, and a value that was written quoted comes back
/// as it was, whatever it holds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(reinterpret_cast<const char*>(data), size);
    try {
        const ConnectionString settings(text);
        settings.FirstUnknown({"Data Source"});
    } catch (const Error& failure) {
        CHECK(failure.Number == MultipleStepFailed);
    }
    const ConnectionString settings("Provider=X;Data Source=" + Quoted(text) + ";Mode=Read");
    CHECK(settings.Value("data source") == text);
    CHECK(settings.Value("MODE") == "Read");
    return 0;
}
