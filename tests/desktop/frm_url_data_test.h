// The base of the tests of the server entry editor: one editor at a time, and its controls by name.
#pragma once

#include <QComboBox>
#include <QPlainTextEdit>
#include <string>

#include "desktop/desktop_test.h"
#include "shell/desktop/editor/frm_url_data.h"

namespace korvane {

class FrmURLData : public DialogTest<frmURLData> {
protected:
    ~FrmURLData() override { Destroy(); }

    void Open(bool isAddUrl, std::int64_t id) {
        Destroy();
        Show(new frmURLData(
            TheDesk(), isAddUrl, isAddUrl ? "" : std::to_string(id), [this] { ++savedCalls; }, nullptr));
    }

    frmURLData& Editor() { return *TheDialog(); }
    std::string Status() { return Get<QPlainTextEdit>("txtStatus").toPlainText().toStdString(); }
    void Type(const char* name, const char* text) {
        Box(name).selectAll();
        QTest::keyClick(&Box(name), Qt::Key_Delete);
        QTest::keyClicks(&Box(name), text);
    }
    void Pick(const char* type) { Get<QComboBox>("cmbType").setCurrentText(type); }

    int savedCalls = 0;
};

}  // namespace korvane
