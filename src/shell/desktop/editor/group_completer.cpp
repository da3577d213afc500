#include "shell/desktop/editor/group_completer.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>

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
        return QCompleter::eventFilter(watched, event);
    }

private:
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
