// The dialog for the text that must appear in a server's answer. It works on the editor's own box, and can run the editor's test.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace korvane {

class ReadingText;

/// The parts of the editor that this dialog uses. All of it must be set.
struct TextToFindEditor {
    std::function<std::string()> expectedText;
    std::function<void(const std::string&)> setExpectedText;
    std::function<std::string()> getURLText;
    std::function<void()> cmdTestURL_Click;  ///< may wait through the event pump; this dialog may be closed when it returns
};

/// Shown with open(); deleted when it is closed. Nothing is written to the database before the editor saves.
class frmTextToFind : public QDialog {
public:
    frmTextToFind(TextToFindEditor editor, QWidget* parent);

private:
    void AddHeading(QVBoxLayout& layout);
    QWidget* Buttons();
    void Explain();
    void WriteBack();
    void cmdOk_Click();
    void cmdTest_Click();

    TextToFindEditor editor_;
    QLineEdit* txtExpected_ = nullptr;
    ReadingText* lblStatus_ = nullptr;
    QPushButton* cmdTest_ = nullptr;
};

}  // namespace korvane
