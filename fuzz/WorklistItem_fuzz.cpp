#include "Check.h"

#include "console/worklist/WorklistData.h"

#include <fstream>
#include <stdexcept>
#include <unistd.h>

/// Any bytes are read as worklist items or refused with a reason; nothing else may happen.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto path = std::filesystem::temp_directory_path() / ("worklist-" + std::to_string(getpid()) + ".wl");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const auto items = Console::ReadWorklistFile(path);
        CHECK(!items.empty());
        for (const auto& entry : items) {
            CHECK(!entry.item->PatientID.empty() || !entry.item->PatientName.empty());
            CHECK(entry.item->OtherPatIDs()->Count() >= 0 && entry.item->IntendedRecipients()->Count() >= 0);
        }
    } catch (const std::runtime_error& refused) {
        CHECK(*refused.what() != '\0');
    }
    return 0;
}
