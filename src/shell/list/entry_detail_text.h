// The details of an entry in sentences for the operator. They depend on the time: "next check in 40 s".
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "shell/list/entry_detail.h"

namespace korvane {

struct EntrySentences {
    std::string title = {};     ///< "Core switch 25 · host25.example.org"
    std::string state = {};     ///< its word: "DOWN"
    std::string since = {};     ///< what follows the word: " since 11/21/2026 4:12:00 PM (1 h 19 min), 33 failures in a row"
    std::string reason = {};    ///< of the failure; empty for an entry that does not fail
    std::string done = {};      ///< what followed from the newest failure that had consequences; empty when nothing did
    std::string notified = {};  ///< "Nobody is notified."
    std::string figures = {};   ///< up-time, next check, and how soon an outage is noticed
    std::string measured = {};  ///< "Last check: connect 0.2 ms · first byte 31 ms · whole 31.3 ms"; empty when it is not kept
    std::string certificate = {};  ///< "Certificate ends in 20 d 3 h, on 12/11/2026 6:00:00 PM"; empty when none is known
    std::vector<std::string> failures = {};  ///< "5:29:00 PM  3 of 3  Connection timed out  Mail sent to a@x", the newest first
};

/// Returns each phase with its name: "name" and "12 ms", the wait for a text of a conversation as "'220'", what is in no phase as
/// "left over". What did not run is left out.
std::vector<std::pair<std::string, std::string>> PhasesInWords(const CheckPhases& phases);

/// Returns "ends in 20 d 3 h, on 12/11/2026 6:00:00 PM", or "has ended ..."; empty without a certificate.
std::string CertificateInWords(const CheckPhases& phases, DateTime now);

/// `monitoring` is false while monitoring is stopped.
EntrySentences InSentences(const EntryDetail& detail, DateTime now, bool monitoring = true);

/// Returns "1 h 19 min", "3 d 4 h", "2 min" or "45 s", without the sign.
std::string LengthInWords(std::chrono::seconds length);

/// Returns "11/21/2026 4:00:00 PM: 310 ms, failures" for each time that has something to tell, with "; " between.
std::string InWords(const std::vector<EntryDetail::ResponseTime>& times);

/// Returns "310 ms" or "1,234 ms"; without a number "no data".
std::string MillisecondsInWords(const std::optional<double>& ms);

}  // namespace korvane
