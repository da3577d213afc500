// A recommendation of this program to up to three friends, sent through the operator's browser.
#pragma once

#include <array>

#include "shell/desktop/small/web_form_dialog.h"

namespace korvane {

class frmTellFriend : public WebFormDialog {
public:
    frmTellFriend(const WebFormPorts& ports, QWidget* parent);

private:
    WebForm Form() override;
    void MarkInput(const QString& refusal) override;

    std::array<QLineEdit*, 3> txtEmails_{};
    QLineEdit* txtFromEmail_ = nullptr;
    QLineEdit* txtFromName_ = nullptr;
    QPlainTextEdit* txtMessage_ = nullptr;
};

}  // namespace korvane
