// The editor's test: one check of the values in the inputs, not of the stored ones, and its result in words.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "engine/check_result.h"
#include "shell/entry/entry_inputs.h"
#include "shell/run/desk.h"

namespace korvane {

/// Returns "Doing HTTP request to www.example.com".
std::string TestBegins(const EntryFields& fields);

/// Runs the check with the operator's own checkers and shows the conversation. Returns nothing for a ping of something that is
/// not an IPv4 address, after notifying the operator. Waits through the event pump: the window may be gone when it returns.
/// Throws nothing.
std::optional<CheckResult> RunEntryTest(const Desk& desk, const EntryFields& fields);

struct TestVerdict {
    bool failed = false;
    std::string text;  ///< for the status line, and for a message when it failed
};

/// `findFailure` searches for texts that mean failure; it is called only for web pages.
TestVerdict JudgeEntryTest(const EntryFields& fields, const CheckResult& result, const std::function<UrlFailure()>& findFailure);

/// Applies the rules of entry `strID` to the answer, over a separate connection. Errors are ignored.
UrlFailure FindUrlFailure(const Desk& desk, const std::string& response, const std::string& strID);

/// After a failure: notes that the port is the usual one of HTTPS instead of HTTP, or the reverse. Otherwise empty.
std::string PortAdvice(const EntryFields& fields);

}  // namespace korvane
