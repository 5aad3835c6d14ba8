#pragma once

#include "console/worklist/WorklistData.h"

#include <optional>

namespace Console {

/// The matching keys of a worklist query. An empty key matches any value.
struct WorklistKeys {
    std::string firstDay, lastDay;  ///< "YYYYMMDD"; of the scheduled start
    std::string modality;
    std::string station;  ///< AE title of the scheduled station
    std::string patient;  ///< patient ID
};

/// The address of a worklist server, "AE@HOST:PORT": a title of at most 16 characters, and a host name or an IPv4
/// address.
struct WorklistAddress {
    std::string title, host;
    int port = 0;

    /// Returns the address in a text, or `std::nullopt` if the text is not an address.
    static std::optional<WorklistAddress> Of(const std::string& text);
    std::string Text() const;
};

/// The settings of a worklist query.
struct WorklistCall {
    std::string title = "OXCLASS";  ///< the AE title of this station
    double seconds = 60;            ///< for the whole query; each message has ten seconds at most
    std::size_t mostAnswers = 5000;
    bool tls = false;              ///< encrypted, with the server's certificate checked
    std::string authorities;       ///< PEM file of the trusted authorities; empty: the system's
    std::string certificate, key;  ///< PEM files of this station's own certificate; empty: none
};

/// The answer of a server.
struct WorklistAnswer {
    WorklistItems items;
    std::size_t broken = 0;   ///< data sets that aren't worklist items
    std::string reason;       ///< why the first of them isn't one
    std::size_t guessed = 0;  ///< data sets with names in an unknown character set
    bool cut = false;         ///< there were more answers than `mostAnswers`; the rest was not taken
};

/// Queries a server for worklist items, in a worker process, so that no answer can crash or block the program. Throws
/// `std::runtime_error` with one clause that names the server and the reason: it can't be reached or does not answer,
/// does not know this station or the title, has no worklist, closes the connection, needs more time than allowed, has
/// no valid certificate, or reports a failure.
WorklistAnswer AskWorklist(const WorklistAddress& server, const WorklistCall& call, const WorklistKeys& keys);

}  // namespace Console
