#include "shell/entry/entry_hints.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/entry/entry_type.h"
#include "shell/options/help_table.h"

namespace korvane {
namespace {

constexpr Help kEntryPages[] = {
    {"Server", "What is watched, how often, and what it must answer."},
    {"E-Mail", "Who is told by mail when this server goes down and when it comes back."},
    {"Down Times", "Up to two times of the day at which this server is not checked, for backups or maintenance."},
    {"Authentication", "The user name and password that a protected web page asks for."},
    {"Scan Text", "Texts in the response that mean failure although the server answered."},
    {"Commands", "Programs that are started when this server goes down and when it comes back."},
};

constexpr Help kEntryInputs[] = {
    {"cmbType", "The type of server decides how it is checked. Choose 'Other Port' for a port and a conversation of your own."},
    {"txtAddress_IP", "The name or IP address of the server, without http:// or ftp://. A web page may have a path behind it."},
    {"txtDesc", "A short name for the list and for mail subjects. Leave it blank to see the server name instead."},
    {"txtGroup", "The report in which this server appears. Blanks become '_'; '.', ',' and ';' are left out."},
    {"ckIsMonitoring", "Without the mark this server stays in the list and is not checked."},
    {"txtPort", "The port to connect to. Most server types have a port of their own."},
    {"txtRequestText", "The request that goes with this type of server."},
    {"txtIntervalSeconds", "How many seconds pass from one check to the next."},
    {"txtTries", "How many checks in a row must fail before the server counts as down and you are told."},
    {"txtTimeout", "How many seconds the server has for its answer."},
    {"txtExpectedText", "What the answer must hold. Upper and lower case are told apart."},
    {"cmdTextToFind", "Opens a larger window for the expected text, in which you can try it out."},
    {"cmdTestURL", "Checks the server once with what is on these pages. Nothing is saved."},
    {"cmdTraceRoute", "Shows the route to this server as it was traced at its last failure."},
    {"cmdLastResponse", "Shows what this server answered last."},
    {"cmdReport", "Opens the report of this server's group in your browser."},
    {"cmdReset", "Deletes the failures and response times of this server and begins its statistics anew."},
    {"txtEmailList1", "The addresses that are told first, with ';' between them."},
    {"txtEmailList2", "More addresses to be told, with ';' between them."},
    {"txtEmailFrom", "The address that the mail comes from."},
    {"txtEmailText", "The subject of the mail. XXX becomes the server name when you save."},
    {"txtEmailBody", "A line at the beginning of the mail."},
    {"ckNotSendBody", "Keeps the mail short, for pagers and phones."},
    {"ckSendUpNotify", "Sends another mail when the server answers again."},
    {"cmdTestEmail", "Sends a test mail with what is on this page."},
    {"txtDownTime1", "The time of day at which the first pause begins, such as 3:00am or 15:30."},
    {"txtDownTime2", "The time of day at which the second pause begins, such as 3:00am or 15:30."},
    {"txtDownDuration1", "How many minutes the first pause lasts."},
    {"txtDownDuration2", "How many minutes the second pause lasts."},
    {"txtUserName", "The user name for the web page. Leave it blank for a page that asks for none."},
    {"txtPassword", "The password that goes with the user name."},
    {"cmdShowPassword", "Shows the password while it is pressed in."},
    {"cmdCommands", "Opens the list of texts that mean failure, each with a command to run."},
    {"cmdHelpRules", "Opens the help on failure texts in your browser."},
    {"txtCMD", "The program that is started when the server goes down. Leave it blank to start none."},
    {"cmdChooseCMD", "Looks for the program on your disk."},
    {"cmdTestCMD", "Starts the program now."},
    {"ckRestart", "Puts in the command that shuts down and restarts this computer."},
    {"txtCMDUP", "The program that is started when the server answers again. Leave it blank to start none."},
    {"cmdChooseCMDUP", "Looks for the program on your disk."},
    {"cmdTestCMDUP", "Starts the program now."},
};

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

}  // namespace

constexpr std::string_view kNewEntryHint =
    "Please fill in all the appropriate settings and check each of the settings tabs before saving.";

constexpr std::string_view kFixedPortMessage =
    "The port of a pre-defined server type is fixed.\r\n\r\n"
    "Choose the server type \"Other Port\" if you want to use a port of your own.";
constexpr std::string_view kFixedRequestMessage =
    "The request of a pre-defined server type is fixed.\r\n\r\n"
    "Choose the server type \"Other Port\" if you want to use a request of your own.";
constexpr std::string_view kFixedExpectedTextMessage =
    "The expected response of a pre-defined server type is fixed.\r\n\r\n"
    "Choose the server type \"Other Port\", \"HTTP\" or \"HTTPS\" if you want to expect a text of your own.";

std::string_view HelpOnPage(std::string_view page) {
    return FindHelp(kEntryPages, page);
}

std::string_view HelpOnInput(std::string_view control) {
    return FindHelp(kEntryInputs, control);
}

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

std::string IntervalInMinutes(const std::string& seconds) {
    std::string minutes;
    IgnoreErrors([&] { minutes = FormatFixed(ParseNumber(seconds) / 60, 1); });
    return minutes.empty() ? "Seconds." : "Seconds.  (" + minutes + " minutes).";
}

}  // namespace korvane
