#include "shell/options/options_open.h"

#include "base/text.h"
#include "shell/entry/fresh_entry.h"

namespace korvane {
namespace {

struct ShownText {
    std::string_view key;
    std::string OptionsFields::*field;
};
constexpr ShownText kShownTexts[] = {
    {"Zone", &OptionsFields::Zone},
    {"SMTPUser1", &OptionsFields::SMTPUser1},
    {"SMTPUser2", &OptionsFields::SMTPUser2},
    {"SMTPPass1", &OptionsFields::SMTPPass1},
    {"SMTPPass2", &OptionsFields::SMTPPass2},
    {"SMTPPopHost1", &OptionsFields::SMTPPopHost1},
    {"SMTPPopHost2", &OptionsFields::SMTPPopHost2},
    {"ReportPath", &OptionsFields::ReportPath},
    {"ServiceName", &OptionsFields::ServiceName},
    {"ProxyName", &OptionsFields::ProxyName},
    {"ProxyPort", &OptionsFields::ProxyPort},
    {"YellowAlertWav", &OptionsFields::YellowAlertWav},
    {"RedAlertWav", &OptionsFields::RedAlertWav},
    {"Begin", &OptionsFields::Begin},
    {"GlobalRetryDuration", &OptionsFields::GlobalRetryDuration},
    {"SuccessLT", &OptionsFields::SuccessLT},
    {"Server", &OptionsFields::Server},
    {"ServerBackup", &OptionsFields::ServerBackup},
};

struct ShownMark {
    std::string_view key;
    bool OptionsFields::*field;
};
constexpr ShownMark kShownMarks[] = {
    {"Reboot", &OptionsFields::Reboot},
    {"RebootAny", &OptionsFields::RebootAny},
    {"bYellowAlert", &OptionsFields::bYellowAlert},
    {"bRedAlert", &OptionsFields::bRedAlert},
    {"Service", &OptionsFields::Service},
};

constexpr const char* kShortestWait = "1";

}  // namespace

constexpr std::string_view kNoServiceHint =
    "You are Not running Windows NT/XP/2000/2003.  You can not install Korvane as a service for this reason, but you can add "
    "Korvane to the StartUp group so it starts each time Windows Starts.  "
    "Do that by Clicking on the 'Add Korvane to the Startup Group' Checkbox.";

OptionsFields OptionsFromSettings(const SettingsCollection& settings) {
    const auto setting = [&](std::string_view key) {
        const std::string* value = settings.Find(key);
        return value == nullptr ? std::string() : *value;
    };
    OptionsFields fields;
    for (const ShownText& text : kShownTexts)
        fields.*text.field = setting(text.key);
    for (const ShownMark& mark : kShownMarks)
        fields.*mark.field = setting(mark.key) == "True";
    if (Trim(fields.Begin).empty()) fields.Begin = kShortestWait;
    return fields;
}

std::string NoMailServerHint() {
    return "Please enter an STMP mail server name.  Most SMTP server names are like '" + std::string(kSampleMailHost) + "'";
}

std::string NoMailServerMessage() {
    return "You should set the SMTP server value.  "
           "If you want to get automatic email replies if a Server failure occurs, you must specify this value.  "
           "It usually is something like '" +
           std::string(kSampleMailHost) + "'";
}

}  // namespace korvane
