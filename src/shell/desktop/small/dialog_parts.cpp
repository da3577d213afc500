#include "shell/desktop/small/dialog_parts.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {

QDialogButtonBox* NewButtons(QDialog* dialog, std::initializer_list<DialogButton> all, const QString& first) {
    auto* buttons = new QDialogButtonBox(dialog);
    for (const DialogButton& each : all) {
        QPushButton* button = buttons->addButton(each.text, each.role);
        button->setObjectName(each.name);
        if (each.role == QDialogButtonBox::ActionRole) button->setAutoDefault(false);
        if (each.click) QObject::connect(button, &QPushButton::clicked, dialog, each.click);
        if (each.name != first) continue;
        button->setDefault(true);
        button->setFocus();
    }
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

QLabel* NewEmblem(int lines, QWidget* dialog) {
    auto* emblem = new QLabel(dialog);
    emblem->setObjectName("imgKorvane");
    emblem->setAccessibleName("Korvane");
    const int side = dialog->fontMetrics().height() * lines;
    emblem->setPixmap(ProgramIcon(true).pixmap(QSize(side, side), dialog->devicePixelRatioF()));
    return emblem;
}

void MakeHeading(QLabel& label, double times) {
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() * times);
    font.setBold(true);
    label.setFont(font);
}

ReadingText* NewReadingText(const char* name, const QString& accessibleName, const QString& text, int characters, int lines,
                            QWidget* dialog) {
    auto* reading = new ReadingText(dialog);
    reading->setObjectName(name);
    reading->setAccessibleName(accessibleName);
    reading->setFocusPolicy(Qt::ClickFocus);
    reading->document()->setDocumentMargin(0);
    reading->SetText(text);
    reading->FitText(characters, lines);
    return reading;
}

}  // namespace korvane
