// The general dialog that asks for one line of text.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLineEdit;

namespace korvane {

/// Shown with open(); deleted when it is closed.
class frmInput : public QDialog {
public:
    /// `answered` is called when the dialog is closed, with the text as typed, or with an empty one unless OK closed it. It is
    /// not called when the dialog is destroyed together with its parent. Texts may have CR LF or LF as line ends.
    frmInput(const std::string& title, const std::string& prompt, std::function<void(const std::string& text)> answered,
             QWidget* parent);

    void done(int result) override;

private:
    std::function<void(const std::string& text)> answered_;
    QLineEdit* txtInput_ = nullptr;
};

}  // namespace korvane
