// Takes passwords out of the texts that people and other programs see (HidePasswords): status lines, log, conversations, mails,
// pages, figures, list, command line, the environment of commands.
#pragma once

#include <string>
#include <string_view>

#include "notify/mail_trace.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"

namespace korvane {

inline constexpr const char* kHidesPasswords = "HidePasswords";

class HiddenPasswords {
public:
    HiddenPasswords(Safeguards& safeguards, const SettingsCollection& settings) : safeguards_(safeguards), settings_(settings) {}

    /// Returns the text with each password replaced: the passwords of the settings, unless they are shorter than 4 characters and
    /// could be any part of a word; what follows "Password="; what follows a login command such as PASS at the beginning of the
    /// text or after a quote or a comma; the answers to AUTH LOGIN and AUTH PLAIN in a list between commas; and the password in a
    /// URL. While the safeguard is off the text stays as it is.
    std::string In(std::string_view text) const;
    /// The same for names, mails and reasons, in which a line may begin with "Pass" or "Login": a login command counts only after a
    /// quote or a comma.
    std::string InWords(std::string_view text) const;
    /// The same, but not counted, for what is read again each second.
    std::string Shown(std::string_view text) const;
    bool IsOn() const { return safeguards_.IsOn(kHidesPasswords); }
    /// Returns what is shown in place of an answer to a login.
    std::string Secret(const std::string& answer) const;

private:
    std::string Hidden(std::string_view text, std::string_view before) const;
    std::string Counted(std::string_view text, std::string hidden) const;
    void Count() const { safeguards_.Acted(kHidesPasswords, "A password was taken out of a text."); }

    Safeguards& safeguards_;
    const SettingsCollection& settings_;
};

/// Returns how many texts a client sends in answer to the server's questions after this command: after "AUTH LOGIN" its name and its
/// password.
int AnswersToLogin(std::string_view command);

/// Passes a mail conversation on without passwords, also those that a server repeats.
class HidingTrace : public MailTrace {
public:
    /// `trace` may be null: nothing is passed on then.
    HidingTrace(MailTrace* trace, const HiddenPasswords& hidden) : trace_(trace), hidden_(hidden) {}
    void setMsg(const std::string& sent) override {
        if (trace_ != nullptr) trace_->setMsg(hidden_.In(sent));
    }
    void setReceiveMsg(const std::string& received) override {
        if (trace_ != nullptr) trace_->setReceiveMsg(hidden_.In(received));
    }

private:
    MailTrace* trace_;
    const HiddenPasswords& hidden_;
};

}  // namespace korvane
