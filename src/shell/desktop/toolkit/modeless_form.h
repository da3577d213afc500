// A modeless window of which only one exists: created on request, destroyed when the operator closes it or its parent window is
// destroyed.
#pragma once

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace korvane {

/// Form must be a window that is deleted when it is closed and has its parent as its only constructor argument.
template <class Form>
class ModelessForm {
public:
    ModelessForm() = default;
    ~ModelessForm() { delete form_.data(); }
    ModelessForm(const ModelessForm&) = delete;
    ModelessForm& operator=(const ModelessForm&) = delete;

    /// Sets the parent for the next Show that creates the window; null: none.
    void SetParent(QWidget* parent) { parent_ = parent; }

    /// Brings it to the front, over the open dialog if there is one, else over the parent. Its content stays.
    void Show() {
        // A window beside an open modal dialog could not be used; a child of the dialog can.
        QWidget* dialog = QApplication::activeModalWidget();
        QWidget* const parent = dialog != nullptr ? dialog : parent_.data();
        if (form_ == nullptr) form_ = new Form(parent);
        if (form_->parentWidget() != parent) form_->setParent(parent, form_->windowFlags());
        form_->show();
        form_->raise();
        form_->activateWindow();
    }

    /// The same as SetParent; an open window moves with it, without taking the keyboard.
    void MoveTo(QWidget* parent) {
        parent_ = parent;
        if (!Visible()) return;
        form_->setAttribute(Qt::WA_ShowWithoutActivating);
        form_->setParent(parent, form_->windowFlags());
        form_->show();
        form_->setAttribute(Qt::WA_ShowWithoutActivating, false);
    }

    bool Visible() const { return form_ != nullptr && form_->isVisible(); }

    /// Returns null when it is not open.
    Form* TheForm() const { return form_; }

private:
    QPointer<QWidget> parent_;
    QPointer<Form> form_;
};

}  // namespace korvane
