// The dialog for the text that must appear in a server's answer. It works on the editor's own box, and can run the editor's test.
#pragma once

#include "shell/desktop/toolkit/tabbed_dialog.h"

class QLabel;
class QLineEdit;

namespace korvane {

class frmURLData;

/// Nothing is written to the database before the editor saves.
class frmTextToFind : public FormDialog {
public:
    explicit frmTextToFind(frmURLData& editor);

private:
    QLabel* Heading();
    QDialogButtonBox* Buttons();
    void Explain();
    void WriteBack();
    void cmdOk_Click();
    void cmdTest_Click();

    frmURLData& editor_;
    QLineEdit* txtExpected_;
    ReadingText* lblStatus_;
    QPushButton* cmdTest_ = nullptr;
};

}  // namespace korvane
