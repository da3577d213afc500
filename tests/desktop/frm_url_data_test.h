// The base of the tests of the server entry editor: one editor at a time, and its controls by name.
#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <string>

#include "desktop/desktop_test.h"
#include "shell/desktop/frm_url_data.h"

namespace korvane {

class FrmURLData : public DesktopTest {
protected:
    ~FrmURLData() override { delete editor_; }

    void Open(bool isAddUrl, std::int64_t id) {
        delete editor_;
        editor_ = new frmURLData(
            TheDesk(), isAddUrl, isAddUrl ? "" : std::to_string(id), [this] { ++savedCalls; }, nullptr);
        editor_->open();
    }

    frmURLData& Editor() { return *editor_; }
    /// Closed, and deleted as soon as its events come through.
    bool IsGone() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return editor_ == nullptr;
    }
    void Destroy() { delete editor_; }

    template <class Control>
    Control& Get(const char* name) {
        auto* const control = editor_->findChild<Control*>(name);
        if (control == nullptr) throw std::logic_error(std::string("no ") + name);
        return *control;
    }
    QLineEdit& Box(const char* name) { return Get<QLineEdit>(name); }
    std::string Status() { return Get<QPlainTextEdit>("txtStatus").toPlainText().toStdString(); }
    void Click(const char* name) { QTest::mouseClick(&Get<QPushButton>(name), Qt::LeftButton); }
    void Type(const char* name, const char* text) {
        Box(name).selectAll();
        QTest::keyClick(&Box(name), Qt::Key_Delete);
        QTest::keyClicks(&Box(name), text);
    }
    void Pick(const char* type) { Get<QComboBox>("cmbType").setCurrentText(type); }
    std::string LastMessage() { return Person().messages.empty() ? "" : Person().messages.back().text; }

    int savedCalls = 0;

private:
    QPointer<frmURLData> editor_;
};

}  // namespace korvane
