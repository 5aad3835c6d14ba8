#pragma once

#include "console/worklist/WorklistData.h"

#include <optional>

namespace Console {

/// What a worklist is asked for; empty means any.
struct WorklistKeys {
    std::string firstDay, lastDay;  ///< "YYYYMMDD"; of the scheduled start
    std::string modality;
    std::string station;  ///< AE title of the scheduled station
    std::string patient;  ///< patient ID
};

/// Where a worklist server listens: "AE@HOST:PORT", a title of at most 16 characters, a host name or an
/// address of version 4.
struct WorklistAddress {
    std::string title, host;
    int port = 0;

    /// The address that a text spells, if it does.
    static std::optional<WorklistAddress> Of(const std::string& text);
    std::string Text() const;
};

/// What a server answered.
struct WorklistAnswer {
    WorklistItems items;
    std::size_t broken = 0;  ///< data sets that are no worklist items
    std::string reason;      ///< why the first of them is none
};

/// Asks a server for worklist items, as the station `callingTitle`. Waits about ten seconds at most for
/// each message. Throws `std::runtime_error` with one clause that names the server and tells why there is no
/// answer: it isn't there, refuses the association, keeps no worklist, breaks off, reports a failure.
WorklistAnswer AskWorklist(const WorklistAddress& server, const std::string& callingTitle,
                           const WorklistKeys& keys);

}  // namespace Console
