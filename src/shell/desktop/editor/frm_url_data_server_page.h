// The first page of the server entry editor: what is watched and how.
#pragma once

#include <QWidget>

#include "shell/desktop/editor/frm_url_data_inputs.h"
#include "shell/entry/entry_type.h"

class QComboBox;
class QFormLayout;
class QPushButton;
class QToolButton;

namespace korvane {

class ServerPage : public QWidget {
public:
    ServerPage(EntryInputs& inputs, QWidget* parent);

    /// Shows and enables the inputs that this type allows.
    void SetScreen(const EntryTypeScreen& screen);

    QComboBox* cmbType = nullptr;
    QLabel* lblAddress = nullptr;
    QLabel* lblPrefix = nullptr;
    QLineEdit* txtAddress_IP = nullptr;
    QLineEdit* txtDesc = nullptr;
    QLabel* lblPort = nullptr;
    QLineEdit* txtPort = nullptr;
    QLabel* lblRequest = nullptr;
    QLineEdit* txtRequestText = nullptr;
    QLineEdit* txtIntervalSeconds = nullptr;
    QLabel* lblInterval = nullptr;
    QLineEdit* txtTries = nullptr;
    QLineEdit* txtTimeout = nullptr;
    QLabel* lblExpected = nullptr;
    QLineEdit* txtExpectedText = nullptr;
    QToolButton* cmdTextToFind = nullptr;
    QPushButton* cmdTraceRoute = nullptr;
    QPushButton* cmdLastResponse = nullptr;
    QPushButton* cmdReport = nullptr;
    QPushButton* cmdReset = nullptr;

private:
    void AddIdentity(EntryInputs& inputs);
    void AddCheck(EntryInputs& inputs);
    void AddTimes(EntryInputs& inputs);
    void AddExpectedText(EntryInputs& inputs);
    QLayout* History();

    QFormLayout* form_ = nullptr;
    QLayout* timeoutRow_ = nullptr;
};

}  // namespace korvane
