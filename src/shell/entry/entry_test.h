// The editor's test run: one check of what is in the inputs, not of what is stored, and what is said of it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "engine/check_result.h"
#include "engine/text_rules.h"
#include "shell/entry/entry_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// "Doing HTTP request to www.example.com"
std::string TestBegins(const EntryFields& fields);

/// Runs the check by the operator's own checkers and shows the conversation. Nothing for a ping of something that is no IPv4
/// address, of which the operator has been told. Waits through the event pump: anything may have happened to the window when
/// it returns. Throws nothing.
std::optional<CheckResult> RunEntryTest(const Desk& desk, const EntryFields& fields);

struct TestVerdict {
    bool failed = false;
    std::string text;  ///< for the status line, and for a message when it failed
};

/// `findFailure` looks for texts that mean failure; it is asked only for web pages.
TestVerdict JudgeEntryTest(const EntryFields& fields, const CheckResult& result, const std::function<UrlFailure()>& findFailure);

/// The rules of entry `strID` applied to the answer, over a connection of their own. What fails is passed over.
UrlFailure FindUrlFailure(const Desk& desk, const std::string& response, const std::string& strID);

/// After a failure: that the port belongs to the other of HTTP and HTTPS. Blank when it does not.
std::string PortAdvice(const EntryFields& fields);

}  // namespace korvane
