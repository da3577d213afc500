// What the cycle and the accounts call and do not know.
#pragma once

#include <string>

#include "platform/connection.h"

namespace korvane {

/// What follows from an outage and from its end: mail, traceroute, commands.
class FailureActions {
public:
    virtual ~FailureActions() = default;

    /// The entry has just reached nTries failures in a row. `rs` stands on its row, not yet updated. Returns `strAction`,
    /// the HTML of what was done, for the `Failures` row. Handles its own errors; waits through the event pump.
    virtual std::string DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) = 0;

    /// The entry answered again after having been DOWN.
    virtual void DoUpAgainStuff(Recordset& rs) = 0;

    /// Tells the operator that the program has started, if the settings ask for it.
    virtual void SendStartupNotice() = 0;
};

/// The static pages.
class ReportPublisher {
public:
    virtual ~ReportPublisher() = default;

    /// Publishes everything and returns the error text, blank when all went well.
    virtual std::string PublishReports() = 0;
};

/// The window that shows a conversation with a server line by line, when the operator has it open.
class ConversationWindow {
public:
    virtual ~ConversationWindow() = default;
    virtual bool Visible() const = 0;
    /// The operator wants to see it; without a display nothing happens.
    virtual void Show() {}
    virtual void setRequest(const std::string& text) = 0;
    virtual void setResponse(const std::string& text) = 0;
};

/// Nobody looks on.
class NoConversationWindow : public ConversationWindow {
public:
    bool Visible() const override { return false; }
    void setRequest(const std::string&) override {}
    void setResponse(const std::string&) override {}
};

}  // namespace korvane
