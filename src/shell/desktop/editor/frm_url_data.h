// Room `editor`: the editor of an entry and the dialogs that it opens.
//
// The editor of one server entry: six pages of inputs, a status line that explains them, and commands that test their values.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "shell/desktop/editor/frm_url_data_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/entry/entry_type.h"
#include "shell/run/desk.h"

class QPushButton;

namespace korvane {

class CommandsPage;
class EMailPage;
class ScanTextPage;
class ServerPage;

/// Shown with open(); deleted when it is closed. It closes after a save and on cancel, even while a test of its own waits: that
/// test then ends without a message.
class frmURLData : public TabbedDialog {
public:
    /// First adds a row if `isAddUrl`, otherwise `strID` selects it; then reads the row. Shows a message when there is no such
    /// row. `saved` is called after a save, before the dialog closes.
    frmURLData(const Desk& desk, bool isAddUrl, std::string strID, std::function<void()> saved, QWidget* parent);

    /// Checks the server once with the values in the inputs and reports the result. Does nothing while such a test is running.
    /// Waits through the event pump and shows messages: this dialog may be gone when it returns.
    void cmdTestURL_Click();

    /// Returns the server name as typed.
    std::string getURLText() const;
    /// Returns 0 for a text that is not a 16-bit number.
    std::int16_t GetAttempts() const;

    std::string ExpectedText() const;
    void SetExpectedText(const std::string& text);

    /// Asks for a file and calls back with its path; does not call back when the operator cancels. Tests replace it.
    std::function<void(const QString& title, std::function<void(const QString& path)> chosen)> askForFile;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Implemented in frm_url_data.cpp.
    void BuildPages();
    void Form_Load(bool isAddUrl);
    void InitServerTypes(const EntryFields& fields, bool fillList);
    EntryFields Read() const;
    void cmdOk_Click();

    // Implemented in frm_url_data_typing.cpp.
    void ConnectTyping();
    void NameChanged();
    void TimeoutChanged();
    void TypeChanged();
    void RestartToggled(bool restart);
    bool ExplainFixedBox(const QObject* label);
    void WatchFixedBoxes();

    // Implemented in frm_url_data_commands.cpp.
    void ConnectCommands();
    void SetBusy(bool busy);
    void cmdTestEmail_Click();
    void MailTestEnds(bool sent);
    void TestCommand(const char* question, const QLineEdit& box);
    void ChooseCommand(const QString& title, QLineEdit& box);
    void AskForFile(const QString& title, const std::function<void(const QString& path)>& chosen);
    void cmdTraceRoute_Click();
    void cmdLastResponse_Click();
    void cmdReset_Click();
    void cmdCommands_Click();
    void cmdTextToFind_Click();

    const Desk desk_;
    std::string strID_;
    std::function<void()> saved_;
    bool loading_ = true;       ///< the handlers of changes do nothing
    bool typeChanged_ = false;  ///< during the refill after a change of type
    bool busyPointer_ = false;  ///< a test is running; stays set after a test without an IPv4 address
    bool mailing_ = false;      ///< a test mail is being sent
    bool resetting_ = false;    ///< the history is being deleted, or the question about it is open
    std::string savedExpectedText_;
    std::string savedLastResponse_;
    QString savedCommand_;  ///< the command before the restart command replaced it
    std::vector<EntryTypeTexts> types_;

    EntryInputs inputs_;
    ServerPage* server_ = nullptr;
    EMailPage* eMail_ = nullptr;
    QWidget* authentication_ = nullptr;
    ScanTextPage* scanText_ = nullptr;
    CommandsPage* commands_ = nullptr;
    QPushButton* cmdTestURL_ = nullptr;
};

}  // namespace korvane
