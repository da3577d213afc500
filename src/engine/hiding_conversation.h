// Passes the conversation of a check on without the passwords in it.
#pragma once

#include <string>

#include "engine/collaborators.h"
#include "notify/hidden_passwords.h"

namespace korvane {

class HidingConversation : public ConversationWindow {
public:
    HidingConversation(ConversationWindow& window, const HiddenPasswords& hidden) : window_(window), hidden_(hidden) {}
    bool Visible() const override { return window_.Visible(); }
    void Show() override { window_.Show(); }
    void setRequest(const std::string& text) override { window_.setRequest(hidden_.In(text)); }
    void setResponse(const std::string& text) override { window_.setResponse(hidden_.In(text)); }

private:
    ConversationWindow& window_;
    const HiddenPasswords& hidden_;
};

}  // namespace korvane
