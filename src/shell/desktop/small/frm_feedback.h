// A comment or question to the program's makers, sent through the operator's browser.
#pragma once

#include "shell/desktop/small/web_form_dialog.h"

namespace korvane {

class frmFeedback : public WebFormDialog {
public:
    /// `version` is "major.minor.revision" of this program.
    frmFeedback(const WebFormPorts& ports, std::string version, QWidget* parent);

protected:
    void changeEvent(QEvent* event) override;

private:
    WebForm Form() override;
    void MarkInput(const QString& refusal) override;
    bool CanSend() override;

    std::string version_;
    QLineEdit* txtEmail_ = nullptr;
    QPlainTextEdit* txtComment_ = nullptr;
    ReadingText* lblNoBrowser_ = nullptr;
};

}  // namespace korvane
