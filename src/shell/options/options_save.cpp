#include "shell/options/options_save.h"

#include <cstdint>
#include <string_view>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kReportFolder = "/reports";

struct StoredMark {
    std::string_view key;
    bool OptionsFields::*field;
};
constexpr StoredMark kStoredMarks[] = {{"Service", &OptionsFields::Service},
                                       {"Reboot", &OptionsFields::Reboot},
                                       {"RebootAny", &OptionsFields::RebootAny},
                                       {"bYellowAlert", &OptionsFields::bYellowAlert},
                                       {"bRedAlert", &OptionsFields::bRedAlert}};

enum class Stored { AsTyped, Trimmed };

struct StoredText {
    std::string_view key;
    std::string OptionsFields::*field;
    Stored stored = Stored::AsTyped;
};
constexpr StoredText kBeforeReportPath[] = {{"YellowAlertWav", &OptionsFields::YellowAlertWav},
                                            {"RedAlertWav", &OptionsFields::RedAlertWav},
                                            {"ServiceName", &OptionsFields::ServiceName},
                                            {"ProxyName", &OptionsFields::ProxyName},
                                            {"ProxyPort", &OptionsFields::ProxyPort},
                                            {"Zone", &OptionsFields::Zone},
                                            {"SMTPPass1", &OptionsFields::SMTPPass1, Stored::Trimmed},
                                            {"SMTPPass2", &OptionsFields::SMTPPass2, Stored::Trimmed},
                                            {"SMTPUser1", &OptionsFields::SMTPUser1, Stored::Trimmed},
                                            {"SMTPUser2", &OptionsFields::SMTPUser2, Stored::Trimmed},
                                            {"SMTPPopHost1", &OptionsFields::SMTPPopHost1, Stored::Trimmed},
                                            {"SMTPPopHost2", &OptionsFields::SMTPPopHost2, Stored::Trimmed}};

struct Number {
    StoredText text;
    std::int64_t least;
    std::int64_t most;
    const char* refusal;
};
constexpr Number kNumbers[] = {
    {{"Begin", &OptionsFields::Begin, Stored::Trimmed},
     0,
     10,
     "The valid range for the 'Monitor activity begins...' field is 0 .. 10 minutes.   You typed in "},
    {{"GlobalRetryDuration", &OptionsFields::GlobalRetryDuration, Stored::Trimmed},
     5,
     32400,
     "The valid range for the 'Server Retry interval...' field is 5 .. 32400(9 hours) seconds.   You typed in "},
    {{"SuccessLT", &OptionsFields::SuccessLT},
     0,
     50,
     "The valid range for the 'Slow Response Timeout...' field is 0 .. 50 seconds.  You typed in "},
};

constexpr StoredText kBehindNumbers[] = {{"Server", &OptionsFields::Server}, {"ServerBackup", &OptionsFields::ServerBackup}};

void Set(const Desk& desk, const StoredText& text, const OptionsFields& fields) {
    const std::string& typed = fields.*text.field;
    desk.collection.setKvSettingsColValue(text.key, text.stored == Stored::Trimmed ? Trim(typed) : typed);
}

void SetReportPath(const Desk& desk, const OptionsFields& fields) {
    std::string path = Trim(fields.ReportPath);
    if (path.empty()) path = desk.dir + kReportFolder;
    if (path.size() > 1 && (path.ends_with('/') || path.ends_with('\\'))) path.pop_back();
    IgnoreErrors([&] { desk.files.CreateFolder(path); });
    desk.collection.setKvSettingsColValue("ReportPath", path);
}

bool IsBetween(const std::string& typed, std::int64_t least, std::int64_t most) {
    bool isBetween = false;
    IgnoreErrors([&] {
        const std::int64_t number = ParseWhole(typed);
        isBetween = number >= least && number <= most;
    });
    return isBetween;
}

// This dialog does not change the entries of older settings files.
void WriteToFile(const Desk& desk) {
    desk.legacyLog.setLogTimer();
    desk.entries.setServerEntryChangedIndex(kNoServerEntry);
    desk.settings.Save();
}

}  // namespace

std::optional<OptionsRefusal> SaveOptions(const Desk& desk, const OptionsFields& fields) {
    for (const StoredMark& mark : kStoredMarks)
        desk.collection.setKvSettingsColValue(mark.key, fields.*mark.field ? "True" : "False");
    for (const StoredText& text : kBeforeReportPath)
        Set(desk, text, fields);
    SetReportPath(desk, fields);
    for (const Number& number : kNumbers) {
        const std::string& typed = fields.*number.text.field;
        if (!IsBetween(typed, number.least, number.most)) return OptionsRefusal{number.text.field, number.refusal + typed};
        Set(desk, number.text, fields);
    }
    for (const StoredText& text : kBehindNumbers)
        Set(desk, text, fields);
    WriteToFile(desk);
    return std::nullopt;
}

}  // namespace korvane
