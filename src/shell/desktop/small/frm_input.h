// The general question for one line of text.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLineEdit;

namespace korvane {

/// Made with open(); deleted when it is closed.
class frmInput : public QDialog {
public:
    /// `answered` is called when it is closed, with the text as typed, or a blank one when that was not with OK; it is not when
    /// the dialog goes together with its parent. Texts may have CR LF or LF at their line ends.
    frmInput(const std::string& title, const std::string& prompt, std::function<void(const std::string& text)> answered,
             QWidget* parent);

    void done(int result) override;

private:
    QWidget* Buttons();

    std::function<void(const std::string& text)> answered_;
    QLineEdit* txtInput_ = nullptr;
};

}  // namespace korvane
