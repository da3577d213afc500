// The dialogs that send texts to the website through the browser: boxes with labels, a box for a longer text, and one command that
// sends.
#pragma once

#include <QDialog>
#include <QString>
#include <array>
#include <string>

#include "shell/run/desk.h"
#include "shell/web/web_forms.h"

class QFormLayout;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace korvane {

class ReadingText;

/// Window-modal, made with open(); deleted when it is closed.
class WebFormDialog : public QDialog {
protected:
    WebFormDialog(const Desk& desk, const char* name, const QString& title, QWidget* parent);

    // Add controls from top to bottom. A "&" in a label defines a key.
    ReadingText* AddNote(const char* name, const QString& text);
    QLineEdit* AddBox(const char* name, const QString& label);
    QPlainTextEdit* AddTextBox(const char* name, const QString& label);
    void AddButtons(const QString& send);
    void accept() override { cmdSend_Click(); }

    /// Returns the address for the entered texts, or why there is none. May let the pump run.
    virtual WebForm Form() = 0;
    /// Called after the operator has seen the refusal: marks the input and gives it the focus.
    virtual void MarkInput(const QString& refusal) = 0;
    /// Called before each attempt; an implementation that returns false shows why.
    virtual bool CanSend() { return true; }

    Desk desk_;
    QPushButton* cmdSend_ = nullptr;

private:
    void cmdSend_Click();
    void TakeMarksAway();
    void Refuse(const std::string& refusal);

    QFormLayout* form_ = nullptr;
    bool sending_ = false;
};

/// A comment or question to the program's makers.
class frmFeedback : public WebFormDialog {
public:
    frmFeedback(const Desk& desk, QWidget* parent);

protected:
    void changeEvent(QEvent* event) override;

private:
    WebForm Form() override;
    void MarkInput(const QString& refusal) override;
    bool CanSend() override;

    QLineEdit* txtEmail_ = nullptr;
    QPlainTextEdit* txtComment_ = nullptr;
    ReadingText* lblNoBrowser_ = nullptr;
};

/// A recommendation of this program to up to three friends.
class frmTellFriend : public WebFormDialog {
public:
    frmTellFriend(const Desk& desk, QWidget* parent);

private:
    WebForm Form() override;
    void MarkInput(const QString& refusal) override;

    std::array<QLineEdit*, 3> txtEmails_{};
    QLineEdit* txtFromEmail_ = nullptr;
    QLineEdit* txtFromName_ = nullptr;
    QPlainTextEdit* txtMessage_ = nullptr;
};

}  // namespace korvane
