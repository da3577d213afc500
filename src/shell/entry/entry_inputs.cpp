#include "shell/entry/entry_inputs.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kDefaultPort = "80";
constexpr std::string_view kNameMark = "XXX";  // in a mail subject: replaced by the server name
constexpr std::string_view kDefaultExtension = ".exe";
constexpr std::string_view kSchemes[] = {"http://", "https://", "ftp://"};

std::optional<std::string> IfFilled(const std::string& text, const EntryFields& /*fields*/) {
    return Trim(text).empty() ? std::nullopt : std::optional(text);
}

std::optional<std::string> IfAboveZero(const std::string& text, const EntryFields& /*fields*/) {
    double number = 0;
    IgnoreErrors([&] { number = ParseNumber(text); });
    return number > 0 ? std::optional(text) : std::nullopt;
}

// The group becomes the name of a report folder.
std::optional<std::string> AsGroup(const std::string& text, const EntryFields& /*fields*/) {
    std::string group = ReplaceAll(Trim(text), " ", "_");
    for (const std::string_view sign : {".", ",", ";"})
        group = ReplaceAll(group, sign, "");
    return group;
}

std::optional<std::string> AsSubject(const std::string& text, const EntryFields& fields) {
    return ReplaceAll(text, kNameMark, fields.strAddress_IP);
}

std::optional<std::string> AsPort(const std::string& text, const EntryFields& /*fields*/) {
    return WholeOrZero(text) < 1 ? std::string(kDefaultPort) : text;
}

constexpr EntryInput kEntryInputs[] = {
    {"strDownTime1", &EntryFields::strDownTime1, IfFilled, "txtDownTime1",
     "Down time &1 at:", "The time of day at which the first pause begins, such as 3:00am or 15:30.", "Down time 1", "for"},
    {"strDownTime2", &EntryFields::strDownTime2, IfFilled, "txtDownTime2",
     "Down time &2 at:", "The time of day at which the second pause begins, such as 3:00am or 15:30.", "Down time 2", "for"},
    {"nDownDuration1", &EntryFields::nDownDuration1, IfAboveZero, "txtDownDuration1", "",
     "How many minutes the first pause lasts.", "Minutes of down time 1", "minutes"},
    {"nDownDuration2", &EntryFields::nDownDuration2, IfAboveZero, "txtDownDuration2", "",
     "How many minutes the second pause lasts.", "Minutes of down time 2", "minutes"},
    {"nIntervalSeconds", &EntryFields::nIntervalSeconds, AsTyped, "txtIntervalSeconds",
     "Check e&very:", "How many seconds pass from one check to the next.", "Check every, in seconds", "Seconds."},
    {"strAddress_IP", &EntryFields::strAddress_IP, AsTyped, "txtAddress_IP", "Server Name or IP:",
     "The name or IP address of the server, without http:// or ftp://. A web page may have a path behind it.", "Server name"},
    {"strDesc", &EntryFields::strDesc, Trimmed, "txtDesc",
     "&Display name:", "A short name for the list and for mail subjects. Leave it blank to see the server name instead."},
    {"strGroup", &EntryFields::strGroup, AsGroup, "txtGroup",
     "&Group:", "The report in which this server appears. Blanks become '_'; '.', ',' and ';' are left out."},
    {"strEmailList1", &EntryFields::strEmailList1, AsTyped, "txtEmailList1",
     "Email Notify #&1:", "The addresses that are told first, with ';' between them.", "Email Notify 1"},
    {"strEmailList2", &EntryFields::strEmailList2, AsTyped, "txtEmailList2",
     "Email Notify #&2:", "More addresses to be told, with ';' between them.", "Email Notify 2"},
    {"strEmailFrom", &EntryFields::strEmailFrom, AsTyped, "txtEmailFrom", "&From:", "The address that the mail comes from."},
    {"nTries", &EntryFields::nTries, AsTyped, "txtTries",
     "T&imes to try:", "How many checks in a row must fail before the server counts as down and you are told.", "",
     "failures in a row until the server counts as down"},
    {"strEmailText", &EntryFields::strEmailText, AsSubject, "txtEmailText",
     "&Subject:", "The subject of the mail. XXX becomes the server name when you save."},
    {"strEmailBody", &EntryFields::strEmailBody, AsTyped, "txtEmailBody",
     "&Body (Line 1):", "A line at the beginning of the mail."},
    {.key = "bIsMonitoring",
     .control = {"ckIsMonitoring", "&Monitor this server", "Without the mark this server stays in the list and is not checked."},
     .mark = &EntryFields::bIsMonitoring},
    {.key = "bNotSendBody",
     .control = {"ckNotSendBody", "Do &not use the default Korvane Email Body Text. Use only what's on 'Body (Line 1)'",
                 "Keeps the mail short, for pagers and phones."},
     .mark = &EntryFields::bNotSendBody},
    {.key = "bSendUpNotify",
     .control = {"ckSendUpNotify", "Send mail when the server comes back &up",
                 "Sends another mail when the server answers again."},
     .mark = &EntryFields::bSendUpNotify},
    {"strCMDUP", &EntryFields::strCMDUP, AsTyped, "txtCMDUP",
     "R&un:", "The program that is started when the server answers again. Leave it blank to start none.",
     "Command when the server comes back up"},
    {"strCMD", &EntryFields::strCMD, AsTyped, "txtCMD", "Ru&n:",
     "The program that is started when the server goes down. Leave it blank to start none.", "Command when the server goes down"},
    {"strUserName", &EntryFields::strUserName, AsTyped, "txtUserName",
     "&User name:", "The user name for the web page. Leave it blank for a page that asks for none."},
    {"strPassword", &EntryFields::strPassword, AsTyped, "txtPassword",
     "&Password:", "The password that goes with the user name."},
    {"strExpectedText", &EntryFields::strExpectedText, Trimmed, "txtExpectedText",
     "Expected Response Text:", "What the answer must hold. Upper and lower case are told apart.", "Expected response"},
    {"nTimeout", &EntryFields::nTimeout, AsTyped, "txtTimeout", "Time-o&ut:", "How many seconds the server has for its answer.",
     "Time-out, in seconds", "seconds"},
    {"strType", &EntryFields::strType, IfFilled, "cmbType", "Server t&ype:",
     "The type of server decides how it is checked. Choose 'Other Port' for a port and a conversation of your own.",
     "Server type"},
    {"strPort", &EntryFields::strPort, AsPort, "txtPort",
     "&Port:", "The port to connect to. Most server types have a port of their own."},
    {"strRequestText", &EntryFields::strRequestText, AsTyped, "txtRequestText",
     "Request:", "The request that goes with this type of server."},
    {"", &EntryFields::HTTPStatusGood, AsTyped, "txtHTTPStatusGood",
     "Good &statuses:", "The HTTP statuses from 400 on that count as good for this server, such as 401,403.", "HTTPStatusGood"},
};

// Case-insensitive: people type "Http://" where the keyboard capitalises.
std::string WithoutAnyCase(std::string text, std::string_view part) {
    for (auto at = ToLower(text).find(part); at != std::string::npos; at = ToLower(text).find(part))
        text.erase(at, part.size());
    return text;
}

}  // namespace

std::span<const EntryInput> EntryInputs() {
    return kEntryInputs;
}

const EntryInput& InputOf(std::string EntryFields::*field) {
    return *std::ranges::find(EntryInputs(), field, &EntryInput::text);
}

std::int64_t WholeOrZero(const std::string& text) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = ParseWhole(text); });
    return number;
}

std::string CleanTypedName(const std::string& typed) {
    std::string name = typed;
    if (BeginsWithScheme(ToLower(Left(typed, 4)))) {
        for (const std::string_view scheme : kSchemes)
            name = WithoutAnyCase(std::move(name), scheme);
    }
    return Trim(name);
}

bool BeginsWithScheme(const std::string& name) {
    return name.starts_with("http") || name.starts_with("ftp:");
}

std::string WithoutSchemes(std::string name) {
    for (const std::string_view scheme : kSchemes)
        name = ReplaceAll(name, scheme, "");
    return name;
}

std::optional<std::string> RepairedTimeout(const std::string& typed) {
    if (WholeOrZero(typed) >= 1) return std::nullopt;
    return "1";
}

std::string CommandOfFile(Files& files, const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    bool isThere = false;
    IgnoreErrors([&] { isThere = files.Exists(path); });
    std::string file = path;
    if (!isThere && !Holds(name, ".")) file += kDefaultExtension;
    return Holds(file, " ") ? '"' + file + '"' : file;
}

}  // namespace korvane
