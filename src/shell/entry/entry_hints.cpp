#include "shell/entry/entry_hints.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_type.h"

namespace korvane {
namespace {

std::string ExplainConversation(const EntryFields& fields) {
    std::string text =
        "The case sensitive request, response sequence must be as follows: Connect to '" + fields.strAddress_IP + "'.";
    if (fields.strExpectedText.empty()) return text;
    bool returned = true;  // items alternate
    for (const std::string& item : Split(fields.strExpectedText, ',')) {
        text += returned ? " Response '" + item + "' must be returned." : " Request '" + item + "' sent.";
        returned = !returned;
    }
    return text;
}

constexpr std::size_t kShownOfNumber = 12;
constexpr std::pair<std::string EntryFields::*, const char*> kNumberInputs[] = {{&EntryFields::nIntervalSeconds, "Check every"},
                                                                                {&EntryFields::nTries, "Times to try"}};

/// What the rules about odd numbers look at. A text that is no number is none of them.
struct NumbersOfEntry {
    NumbersOfEntry(const EntryFields& fields, int mostWebPort)
        : isPing(IsPingType(fields.strType)), highestPort(IsWebType(fields.strType) ? mostWebPort : kHighestPort) {
        IgnoreErrors([&] { tries = ParseWhole(fields.nTries); });
        IgnoreErrors([&] { interval = ParseWhole(fields.nIntervalSeconds); });
        if (!isPing) timeout = WholeOrZero(fields.nTimeout);
        port = WholeOrZero(fields.strPort);
        limit = fields.strExpectedText.empty() ? 1 : WholeOrZero(fields.strExpectedText);
    }

    bool isPing;
    std::int64_t highestPort, tries = 1, interval = 1, timeout = 0, port = 0, limit = 1;
};

struct OddNumber {
    bool (*is)(const NumbersOfEntry& numbers);
    const char* consequence;
};

/// The worst first.
constexpr OddNumber kOddNumbers[] = {
    {[](const NumbersOfEntry& of) { return of.tries < 1; }, "Times to try: below 1 it counts as DOWN, but nobody is notified."},
    {[](const NumbersOfEntry& of) { return of.port > of.highestPort; },
     "Port: it is too high to be checked, and the entry stays due."},
    {[](const NumbersOfEntry& of) { return of.isPing && (of.limit < 1 || of.limit > 32767); },
     "PING timeout: write 1 to 32767, otherwise no ping succeeds."},
    {[](const NumbersOfEntry& of) { return of.interval < 1; },
     "Check every: below 1 second the other servers wait for this one."},
    {[](const NumbersOfEntry& of) { return of.interval < of.timeout; },
     "Check every: shorter than the time-out, so others may have to wait."},
};

}  // namespace

std::string ExplainExpectedText(const EntryFields& fields) {
    const std::string consequence = " If this fails " + fields.nTries + " times in a row, it's considered a Server failure. ";
    if (IsWebType(fields.strType)) {
        return "The " + fields.strType + " request to '" + fields.strAddress_IP + "'must return the case sensitive response '" +
               fields.strExpectedText + "'." + consequence;
    }
    if (IsPingType(fields.strType)) {
        return "This ping request must return a response within " + fields.strExpectedText + " ms." + consequence;
    }
    return ExplainConversation(fields) + consequence;
}

std::string ExplainDisplayName(const EntryFields& fields) {
    const std::string& name = fields.strAddress_IP;
    const std::string blankOut = "Blank out this field to have just the server name (" + name + ")displayed instead.";
    if (Trim(fields.strDesc).empty()) {
        return "Value is blank so now Korvane will display the Server Name '" + name + "' only. " + blankOut;
    }
    return "The server '" + name + "' will be displayed as '" + fields.strDesc + "'. " + blankOut;
}

std::string ExplainDownTime(const std::string& time, const std::string& minutes) {
    if (Trim(time).empty()) return "Without a time there is no change: a time that was saved before stays.";
    if (Trim(minutes).empty()) return "This server is not checked from " + time + " on, each day: say for how many minutes.";
    return "This server is not checked for " + minutes + " minutes from " + time + " on, each day.";
}

std::string ExplainRecipients(const EntryFields& fields, bool outboxIsOn) {
    if (!Trim(fields.strEmailList1).empty()) return "";
    if (Trim(fields.strEmailList2).empty()) return "Nobody is notified: neither list has an address.";
    return outboxIsOn ? "" : "Nobody is notified: without an address in #1 no mail is sent to those in #2.";
}

std::string ExplainNumbers(const EntryFields& fields, int highestWebPort) {
    for (const auto& [field, name] : kNumberInputs)
        if (!NumberRefusal(InputOf(field), fields.*field).empty())
            return std::string(name) + ": '" + Left(fields.*field, kShownOfNumber) + "' is no such number; the saved one stays.";
    const NumbersOfEntry numbers(fields, highestWebPort);
    const auto* const odd = std::ranges::find_if(kOddNumbers, [&](const OddNumber& each) { return each.is(numbers); });
    return odd == std::end(kOddNumbers) ? "" : odd->consequence;
}

std::string IntervalInMinutes(const std::string& seconds) {
    std::string minutes;
    IgnoreErrors([&] { minutes = FormatFixed(ParseNumber(seconds) / 60, 1); });
    return minutes.empty() ? "Seconds." : "Seconds.  (" + minutes + " minutes).";
}

std::string TextToFindHeading(const std::string& server) {
    return "Type in Text the MUST APPEAR in the response from " + server;
}

std::string TextToFindHelp(const std::string& text, const std::string& upperCase) {
    return "If the text '" + text +
           "' does not appear in the response returned from the server, it will be considered a URL Failure.\r\n\r\n"
           "1) Text is case sensitive!  For Example: '" +
           text + "' is treated differently than '" + upperCase +
           "'.\r\n2) This text must be found in the first 500 characters of the result.";
}

std::string TestCommandQuestion(const std::string& question, const std::string& command) {
    return question + command + "'\r\n\r\nDo you want to test this command now?";
}

std::string NoTraceMessage(const std::string& name) {
    return "When a server failure occurs, a traceroute command is run and the output is saved to a file.\r\n\r\n"
           "No traceroute has yet been run for " +
           name +
           "."
           "Once a URL failure occurs, you will be able to see the last traceroute that was run.  "
           "This information will also be sent to you when the server comes back up. ";
}

std::string ResetQuestion(const std::string& name) {
    return "This will delete all failure records, response time records, and reset the server statistics  for this server (" +
           name + ").\r\n\r\nThere is no way to UNDO this if you click yes.\r\n\r\nClick YES to Reset and Continue, NO to cancel";
}

}  // namespace korvane
