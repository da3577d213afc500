// Room `options`: the global settings and the addresses shared by all entries and monitors.
//
// The inputs of the settings dialog: their values, how each is loaded, checked, saved and shown.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "shell/entry/form_input.h"
#include "shell/options/safeguard_inputs.h"
#include "shell/run/desk.h"

namespace korvane {

/// Every text as typed, and the check marks. Named after the keys of the global settings.
struct OptionsFields {
    std::string Begin;                ///< minutes
    std::string GlobalRetryDuration;  ///< seconds
    std::string SuccessLT;            ///< seconds
    std::string Server;
    std::string SMTPUser1;
    std::string SMTPPass1;
    std::string SMTPPopHost1;
    std::string SMTPSecurity1;
    std::string SMTPPort1;
    std::string ServerBackup;
    std::string SMTPUser2;
    std::string SMTPPass2;
    std::string SMTPPopHost2;
    std::string SMTPSecurity2;
    std::string SMTPPort2;
    std::string Zone;
    std::string ReportPath;
    std::string YellowAlertWav;
    std::string RedAlertWav;
    std::string ServiceName;
    std::string ProxyName;
    std::string ProxyPort;
    std::string CertWarnDays;  ///< blank: off
    bool Service = false;
    bool Reboot = false;
    bool RebootAny = false;
    bool bYellowAlert = false;
    bool bRedAlert = false;
    bool DesktopNotes = true;
    bool Figures = false;
    bool KeepPhases = false;
};

using OptionsInput = FormInput<OptionsFields>;

/// All of them, in the order in which they are checked and stored.
std::span<const OptionsInput> OptionsInputs();

/// Reads the settings collection; a missing setting is empty.
OptionsFields OptionsFromSettings(const SettingsCollection& settings);

/// An input that cannot be saved.
struct OptionsRefusal {
    std::string OptionsFields::*field;  ///< the invalid text
    std::string message;
    std::string safeguard = "";  ///< its key, if that is what is refused; `field` is null then
};

/// Returns why the text of the input cannot be saved, for the operator; empty if it can.
std::string RefusalOf(const OptionsInput& input, const OptionsFields& fields);

/// Puts the inputs into the settings collection one after the other and writes the settings file. Stops at a refusal: earlier
/// inputs are then in the collection but not in the file. The safeguards are checked first. Writing may deliver events. Throws nothing; an error while writing the
/// file is not reported.
std::optional<OptionsRefusal> SaveOptions(const Desk& desk, const OptionsFields& fields, const SafeguardValues& safeguards = {});

/// Puts only the mail settings into the collection, for a test of them.
void SetMailSettings(const Desk& desk, const OptionsFields& fields);

}  // namespace korvane
