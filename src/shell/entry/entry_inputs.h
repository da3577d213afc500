// Room `entry`: adding, editing, saving and testing one entry, with its rules.
//
// The inputs of the entry editor: their values, how each is stored and shown, and what is corrected in a typed text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/files.h"
#include "shell/entry/form_input.h"

namespace korvane {

/// Every text as typed, and the check marks. Named after the columns of `Servers` in which they are stored.
struct EntryFields {
    std::string strDownTime1;
    std::string strDownTime2;
    std::string nDownDuration1;  ///< minutes
    std::string nDownDuration2;
    std::string nIntervalSeconds;
    std::string strAddress_IP;
    std::string strDesc;
    std::string strGroup;
    std::string strEmailList1;
    std::string strEmailList2;
    std::string strEmailFrom;
    std::string nTries;
    std::string strEmailText;
    std::string strEmailBody;
    bool bIsMonitoring = false;
    bool bNotSendBody = false;
    bool bSendUpNotify = false;
    std::string strCMDUP;
    std::string strCMD;
    std::string strUserName;
    std::string strPassword;
    std::string strExpectedText;
    std::string nTimeout;
    std::string strType;  ///< empty when none is selected
    std::string strPort;
    std::string strRequestText;
    std::string HTTPStatusGood;     ///< stored beside the row
    bool removesDownTime1 = false;  ///< the saved one is taken away; a blank time alone leaves it as it is
    bool removesDownTime2 = false;
};

using EntryInput = FormInput<EntryFields>;

/// All of them, in the order in which they are stored.
std::span<const EntryInput> EntryInputs();

/// Returns the input of the field.
const EntryInput& InputOf(std::string EntryFields::*field);

struct EntryDownTime {
    std::string EntryFields::*time;
    std::string EntryFields::*minutes;
    bool EntryFields::*removed;
};
inline constexpr EntryDownTime kDownTimes[] = {
    {&EntryFields::strDownTime1, &EntryFields::nDownDuration1, &EntryFields::removesDownTime1},
    {&EntryFields::strDownTime2, &EntryFields::nDownDuration2, &EntryFields::removesDownTime2}};

/// Returns 0 for a text that is no number.
std::int64_t WholeOrZero(const std::string& text);

/// While the user types: removes a leading http://, https:// or ftp:// in any case, and spaces around the name.
std::string CleanTypedName(const std::string& typed);

/// At saving only lower-case beginnings count: "http" and "ftp:".
bool BeginsWithScheme(const std::string& name);
/// Removes all lower-case http://, https:// and ftp://, wherever they are.
std::string WithoutSchemes(std::string name);

/// Returns the replacement for a time-out that is below one second or not a number; nothing if the time-out is valid.
std::optional<std::string> RepairedTimeout(const std::string& typed);

/// Returns the command line that starts the file at `path`. A name without an extension whose file does not exist means the
/// program with ".exe".
std::string CommandOfFile(Files& files, const std::string& path);

}  // namespace korvane
