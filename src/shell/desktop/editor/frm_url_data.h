// Room `editor`: the editor of an entry and the dialogs that it opens.
//
// The editor of one server entry: six pages of inputs, a status line that explains them, and commands that test their values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/entry/entry_inputs.h"
#include "shell/run/desk.h"

class QComboBox;
class QToolButton;

namespace korvane {

struct EntryTypeScreen;

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

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Implemented in frm_url_data_pages.cpp.
    void AddServerPage();
    void AddTypeRow();
    void AddExpectedTextRow();
    void AddHistoryRow(QVBoxLayout& page);
    void AddEMailPage();
    void AddDownTimesPage();
    void AddAuthenticationPage();
    void AddScanTextPage();
    void AddCommandsPage();
    void PutLast(const QList<QWidget*>& added);

    // Implemented in frm_url_data.cpp.
    void Form_Load(bool isAddUrl);
    void InitServerTypes(const EntryFields& fields);
    void SetScreen(const EntryTypeScreen& screen);
    EntryFields Read() const;
    void cmdOk_Click();

    // Implemented in frm_url_data_typing.cpp.
    void ConnectTyping();
    void NameChanged();
    void TimeoutChanged();
    void TypeChanged();
    void RestartToggled(bool restart);
    bool ExplainFixedBox(const QObject* label);
    void ShowNotes();
    void RemoveDownTime(std::size_t which);

    // Implemented in frm_url_data_commands.cpp.
    void SetBusy(bool busy);
    void cmdTestEmail_Click();
    void MailTestEnds(bool sent);
    void TestCommand(const char* question, const QLineEdit& box);
    void ChooseCommand(const QString& title, QLineEdit& box);
    void cmdTraceRoute_Click();
    void cmdLastResponse_Click();
    void cmdReset_Click();
    void cmdCommands_Click();
    void cmdTextToFind_Click();

    const Desk desk_;
    std::string strID_;
    std::function<void()> saved_;
    bool typeChanged_ = false;  ///< during the refill after a change of type
    bool busyPointer_ = false;  ///< a test is running; stays set after a test without an IPv4 address
    bool mailing_ = false;      ///< a test mail is being sent
    bool resetting_ = false;    ///< the history is being deleted, or the question about it is open
    std::string savedExpectedText_;
    std::string savedLastResponse_;
    QString savedCommand_;  ///< the command before the restart command replaced it
    std::array<bool, std::size(kDownTimes)> removesDownTime_{};

    FormInputs<EntryFields> inputs_;
    QFormLayout* form_ = nullptr;  ///< of the first page
    int timeoutRow_ = 0;           ///< in it
    int statusRow_ = -1;           ///< the row of the good statuses; -1 while their safeguard is off
    std::vector<int> webPages_;    ///< those that only web pages need
    QComboBox* cmbType_ = nullptr;
    QLabel* lblAddress_ = nullptr;
    QLabel* lblPrefix_ = nullptr;
    QLineEdit* txtAddress_IP_ = nullptr;
    QLineEdit* txtPort_ = nullptr;
    QLineEdit* txtExpectedText_ = nullptr;
    QLineEdit* txtCMD_ = nullptr;
    QToolButton* cmdTextToFind_ = nullptr;
    QPushButton* cmdLastResponse_ = nullptr;
    QPushButton* cmdTestURL_ = nullptr;
    QList<QWidget*> removeDownTimes_;
    QFormLayout* emailForm_ = nullptr;
    QLabel* lblNobody_ = nullptr;
    QLabel* lblNumbers_ = nullptr;
    QLabel* lblFailTexts_ = nullptr;
};

}  // namespace korvane
