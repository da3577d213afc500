// The common part of the dialogs that send texts to the website through the browser: boxes with labels, a box for a longer text,
// and one command that sends.
#pragma once

#include <QDialog>
#include <QString>
#include <string>

#include "platform/events.h"
#include "platform/operator.h"
#include "shell/web/web_forms.h"
#include "shell/web/web_pages.h"

class QFormLayout;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace korvane {

class ReadingText;

/// The dialogs hold references; the objects must outlive them.
struct WebFormPorts {
    WebPages& pages;
    Events& events;
    Operator& person;
};

/// Window-modal, made with open(); deleted when it is closed.
class WebFormDialog : public QDialog {
protected:
    WebFormDialog(const WebFormPorts& ports, const char* name, const QString& title, QWidget* parent);

    // Add controls from top to bottom. A "&" in a label defines a key.
    ReadingText* AddNote(const char* name, const QString& text);
    QLineEdit* AddBox(const char* name, const QString& label);
    QPlainTextEdit* AddTextBox(const char* name, const QString& label);
    void AddButtons(const QString& send);

    /// Returns the address for the entered texts, or why there is none. May let the pump run.
    virtual WebForm Form() = 0;
    /// Called after the operator has seen the refusal: marks the input and gives it the focus.
    virtual void MarkInput(const QString& refusal) = 0;
    /// Called before each attempt; an implementation that returns false shows why.
    virtual bool CanSend() { return true; }

    WebFormPorts ports_;
    QPushButton* cmdSend_ = nullptr;

private:
    void cmdSend_Click();
    void TakeMarksAway();
    void Refuse(const std::string& refusal);

    QFormLayout* form_ = nullptr;
    bool sending_ = false;
};

}  // namespace korvane
