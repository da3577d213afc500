// Room `trace`: the windows that show conversations as they happen.
//
// Read-only windows to which text is added while they are open, in a fixed-width font, with a limit that no ordinary session
// reaches, so that one may stay open for a year. The viewers are what the lower rooms write to; nothing happens while the
// operator has not opened the window.
#pragma once

#include <QDialog>
#include <string>

#include "engine/collaborators.h"
#include "notify/mail_trace.h"
#include "shell/desktop/toolkit/modeless_form.h"

namespace korvane {

/// Characters that are kept. The oldest lines are dropped first, and a line at the top says so.
constexpr int kMostOfATrace = 10'000'000;

class TraceBox;

/// The text with a Copy and a Close command; modeless, deleted when it is closed.
class TraceWindow : public QDialog {
public:
    TraceWindow(const char* name, const QString& title, QWidget* parent);

    /// Follows the end if it shows the end, and otherwise stays on the same lines. A selection stays. Line ends are "\n"; lines of
    /// more than 1000 characters are broken.
    void Append(const QString& text);

private:
    void cmdCopy_Click();

    TraceBox* txtTrace_;
};

/// What a test sent to a server and what came back. It opens beside the editor, narrower if there is less space, and over the
/// editor only if there is less than half of the space that it needs.
class frmReqRes : public TraceWindow {
public:
    explicit frmReqRes(QWidget* parent);

protected:
    /// An open window moves beside the editor over which it would be.
    void changeEvent(QEvent* event) override;

private:
    void PlaceBeside(const QWidget& editor);
};

/// The conversations with mail servers, line by line.
class frmDebug : public TraceWindow {
public:
    explicit frmDebug(QWidget* parent) : TraceWindow("frmDebug", "Conversation with Mail Servers", parent) {}
};

/// SetParent sets the window over which Show puts it; when that is destroyed, the window is too.
class ConversationViewer : public ConversationWindow, public ModelessForm<frmReqRes> {
public:
    bool Visible() const override { return ModelessForm::Visible(); }
    void Show() override { ModelessForm::Show(); }
    void setRequest(const std::string& text) override;
    void setResponse(const std::string& text) override;
};

class MailTraceViewer : public MailTrace, public ModelessForm<frmDebug> {
public:
    void setMsg(const std::string& sent) override;
    void setReceiveMsg(const std::string& received) override;
};

}  // namespace korvane
