#include "shell/desktop/editor/group_completer.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <utility>

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

class GroupCompleter : public QCompleter {
public:
    GroupCompleter(const QStringList& groups, QLineEdit& box) : QCompleter(groups, &box), box_(box) {
        setCaseSensitivity(Qt::CaseInsensitive);
        list_ = popup();
        list_->setObjectName("lstGroups");
        list_->setAccessibleName("Groups that exist");
        list_->setAttribute(Qt::WA_NoMouseReplay);  // of the click beside it, which is passed on here on every platform
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == list_ && event->type() == QEvent::KeyPress && !list_->currentIndex().isValid()) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            // These end the editor as they do without the list.
            if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
                list_->hide();
                QApplication::sendEvent(&box_, event);
                return true;
            }
        }
        if (watched == list_ && PassedOn(*event)) return true;
        return QCompleter::eventFilter(watched, event);
    }

private:
    /// A click beside the list goes where it would go without the list, which it closes. Nobody gets its release after that.
    bool PassedOn(const QEvent& event) {
        if (event.type() != QEvent::MouseButtonPress) return false;
        const auto& press = static_cast<const QMouseEvent&>(event);
        const QPointF place = press.globalPosition();
        if (list_->rect().contains(list_->mapFromGlobal(place.toPoint()))) return false;
        list_->hide();
        const QPointer<QWidget> clicked = box_.window()->childAt(box_.window()->mapFromGlobal(place.toPoint()));
        if (clicked != nullptr && (clicked->focusPolicy() & Qt::ClickFocus) == Qt::ClickFocus)
            clicked->setFocus(Qt::MouseFocusReason);
        for (const auto& [type, held] : {std::pair(QEvent::MouseButtonPress, press.buttons()),
                                         std::pair(QEvent::MouseButtonRelease, Qt::MouseButtons(Qt::NoButton))}) {
            if (clicked == nullptr) break;
            QMouseEvent same(type, clicked->mapFromGlobal(place), place, press.button(), held, press.modifiers());
            QApplication::sendEvent(clicked, &same);
        }
        return true;
    }

    QLineEdit& box_;
    QAbstractItemView* list_ = nullptr;  ///< not yet there while the base makes it
};

}  // namespace

void OfferGroups(QLineEdit& box, const std::vector<std::string>& groups) {
    QStringList texts;
    for (const std::string& group : groups)
        texts.append(Q(group));
    auto* completer = new GroupCompleter(texts, box);
    box.setCompleter(completer);
    // Nothing is left to offer for a group that is typed out.
    QObject::connect(&box, &QLineEdit::textEdited, completer, [completer](const QString& text) {
        const bool isWhole =
            completer->completionCount() == 1 && completer->currentCompletion().compare(text, Qt::CaseInsensitive) == 0;
        if (isWhole) completer->popup()->hide();
    });
}

}  // namespace korvane
