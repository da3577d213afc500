// What the cycle and the accounting use through interfaces alone.
#pragma once

#include <string>

#include "platform/connection.h"

namespace korvane {

/// The consequences of an outage and of its end: mail, traceroute, commands.
class FailureActions {
public:
    virtual ~FailureActions() = default;

    /// Called when the entry has just reached nTries failures in a row. `rs` is at its row, not yet updated. Returns `strAction`,
    /// the HTML of what was done, for the `Failures` row. Handles its own errors; waits through the event pump.
    virtual std::string DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) = 0;

    /// Called when the entry answered again after it was DOWN.
    virtual void DoUpAgainStuff(Recordset& rs) = 0;

    /// Called where instances share the list, when it is known whether the store has the outcome of the check. What was put off
    /// until then is done now, or not at all: the check is then made again, perhaps by another instance.
    virtual void Settle(bool /*stored*/) {}
};

/// The static pages.
class ReportPublisher {
public:
    virtual ~ReportPublisher() = default;

    /// Publishes everything and returns the error text, empty on success.
    virtual std::string PublishReports() = 0;
};

/// The window that shows a server conversation line by line, if the operator has opened it.
class ConversationWindow {
public:
    virtual ~ConversationWindow() = default;
    virtual bool Visible() const = 0;
    /// Called when the operator wants to see it; without a display nothing happens.
    virtual void Show() {}
    virtual void setRequest(const std::string& text) = 0;
    virtual void setResponse(const std::string& text) = 0;
};

/// For a program without such a window.
class NoConversationWindow : public ConversationWindow {
public:
    bool Visible() const override { return false; }
    void setRequest(const std::string&) override {}
    void setResponse(const std::string&) override {}
};

}  // namespace korvane
