#include "shell/desktop/glance/stopped_bar.h"

#include <QEvent>
#include <QHBoxLayout>

#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {

StoppedBar::StoppedBar(std::function<void()> start, QWidget* parent) : QFrame(parent) {
    setObjectName("stoppedBar");
    auto* row = new QHBoxLayout(this);
    const int space = fontMetrics().height() / 3;
    row->setContentsMargins(2 * space, space, space, space);
    auto* picture = new QLabel(this);
    picture->setAccessibleName("Warning");
    picture->setPixmap(StateIcon(RowIcon::Warn).pixmap(fontMetrics().height(), fontMetrics().height()));
    QLabel* const lblStopped = NewLabel("lblStopped", "Monitoring is stopped", this);
    QFont bold = lblStopped->font();
    bold.setBold(true);
    lblStopped->setFont(bold);
    lblSince_ = NewLabel("lblStoppedSince", "", this);
    lblSince_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QPushButton* const cmdStart = NewButton("cmdStartMonitoring", "Start", "Start monitoring", this);
    cmdStart->setIcon(CommandIcon(CommandPicture::Start));
    cmdStart->setToolTip("Starts monitoring (F9)");
    cmdStart->setAutoDefault(false);
    connect(cmdStart, &QPushButton::clicked, this, start);
    row->addWidget(picture);
    row->addWidget(lblStopped);
    row->addWidget(lblSince_, 1);
    row->addWidget(cmdStart);
    Colour();
    hide();
}

void StoppedBar::ShowSince(DateTime now) {
    const std::string since = now.DateText() == since_.DateText() ? since_.TimeText() : since_.Text();
    const QString text = "since " + Q(since) + ", nothing is being checked.";
    if (lblSince_->text() != text) lblSince_->setText(text);
}

void StoppedBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) Colour();
}

void StoppedBar::Colour() {
    const StateColours colours = ColoursOf(RowIcon::Warn, palette());
    const QString sheet =
        QString("#stoppedBar { background: %1; border: 1px solid %2; border-radius: 4px; } #stoppedBar QLabel { color: %2 }")
            .arg(colours.ground.name(), colours.ink.name());
    if (styleSheet() != sheet) setStyleSheet(sheet);
}

}  // namespace korvane
