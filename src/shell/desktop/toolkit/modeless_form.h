// One window of its kind that stands beside the others: made when it is asked for, gone when the operator closes it, and when
// the window goes over which it stands.
#pragma once

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace korvane {

/// Form is a window that is deleted when it is closed and takes its parent as its only argument.
template <class Form>
class ModelessForm {
public:
    ModelessForm() = default;
    ~ModelessForm() { delete form_.data(); }
    ModelessForm(const ModelessForm&) = delete;
    ModelessForm& operator=(const ModelessForm&) = delete;

    /// The window over which the next Show makes it; null: none.
    void SetParent(QWidget* parent) { parent_ = parent; }

    /// Brings it to the front, over the dialog that is open, or else over the parent. What it shows stays.
    void Show() {
        // A window beside a dialog that is open could not be reached; one over it can.
        QWidget* dialog = QApplication::activeModalWidget();
        QWidget* const parent = dialog != nullptr ? dialog : parent_.data();
        if (form_ == nullptr) form_ = new Form(parent);
        if (form_->parentWidget() != parent) form_->setParent(parent, form_->windowFlags());
        form_->show();
        form_->raise();
        form_->activateWindow();
    }

    /// On the screen.
    bool Visible() const { return form_ != nullptr && form_->isVisible(); }

    /// Null when it is not open.
    Form* TheForm() const { return form_; }

private:
    QPointer<QWidget> parent_;
    QPointer<Form> form_;
};

}  // namespace korvane
