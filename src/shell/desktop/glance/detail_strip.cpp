#include "shell/desktop/glance/detail_strip.h"

#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <map>

#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/list/entry_detail_text.h"

namespace korvane {
namespace {

constexpr int kLeastWindowHeight = 560;
constexpr int kCharactersForTimes = 120;
constexpr int kCharactersForSpan = 165;
constexpr int kCharactersForFailures = 76;
constexpr std::chrono::seconds kReadAgainAfter{60};

constexpr const char* kNothingSelected =
    "Select a server in the list to see its state, its response times and its last failures.";

QString Coloured(const QString& text, const QColor& colour) {
    return "<span style='color:" + colour.name() + "'>" + text + "</span>";
}

QString Escaped(const std::string& text) {
    return Lines(text).toHtmlEscaped().replace('\n', ' ');
}

}  // namespace

void DetailStrip::Attach(const Clock& clock, Load load) {
    clock_ = &clock;
    load_ = std::move(load);
}

void DetailStrip::SetSelected(std::vector<ServerRow> rows) {
    rows_ = std::move(rows);
    Later();
}

void DetailStrip::SetMonitoring(bool on) {
    monitoring_ = on;
    Later();
}

void DetailStrip::SetWanted(bool wanted) {
    wanted_ = wanted;
    ShowIfWanted();
}

void DetailStrip::SetWindowHeight(int height) {
    windowHeight_ = height;
    ShowIfWanted();
}

void DetailStrip::ShowIfWanted() {
    setVisible(wanted_ && windowHeight_ >= kLeastWindowHeight);
}

int DetailStrip::TakenHeight() const {
    return isHidden() ? 0 : height() + parentWidget()->layout()->spacing();
}

// Keys that are held down and refreshes in a row cost one update.
void DetailStrip::Later() {
    if (later_ || !isVisible()) return;
    later_ = true;
    QTimer::singleShot(0, this, [this] {
        later_ = false;
        if (isVisible() && clock_ != nullptr) Update();
    });
}

// A row that is being requested differs only in its picture and its status.
bool DetailStrip::IsStale(const ServerRow& row) const {
    if (!shown_ || shown_->Id() != row.Id() || clock_->Now() - readAt_ >= kReadAgainAfter || clock_->Now() < readAt_) return true;
    const auto stays = [&](int column) {
        const auto at = static_cast<std::size_t>(column);
        return column == column::Number || column == column::Status || column == column::NextTry ||
               row.cells[at] == shown_->cells[at];
    };
    for (int column = 0; column < column::Count; ++column)
        if (!stays(column)) return true;
    return row.strCurStatus != shown_->strCurStatus || row.dtNextCheck != shown_->dtNextCheck;
}

void DetailStrip::Update() {
    if (rows_.size() != 1) {
        shown_.reset();
        ShowCounts();
    } else {
        if (IsStale(rows_.front())) {
            detail_ = load_(rows_.front().Id());
            shown_ = detail_.isThere ? std::optional(rows_.front()) : std::nullopt;
            readAt_ = clock_->Now();
        }
        ShowEntry();
    }
    ShowPages();
    update();
}

void DetailStrip::ShowEntry() {
    const EntrySentences says = InSentences(detail_, clock_->Now(), monitoring_);
    state_ = StateOf(detail_.strCurStatus);
    const QColor quiet = QuietInk(palette());
    const auto line = [](const QString& text) { return text.isEmpty() ? "" : "<div>" + text + "</div>"; };
    const QString state = Coloured("<b>" + Escaped(says.state) + "</b>", ColoursOf(state_, palette()).ink);
    const bool nobody = detail_.isThere && detail_.recipients.empty();
    const QString notified = nobody ? Coloured("<b>" + Escaped(says.notified) + "</b>", ColoursOf(RowIcon::Warn, palette()).ink)
                                    : Coloured(Escaped(says.notified), quiet);
    imgState_->setPixmap(StateIcon(state_).pixmap(fontMetrics().height()));
    imgState_->setVisible(detail_.isThere);
    txtDetail_->Show(line("<b>" + Escaped(says.title) + "</b>") + (says.state.empty() ? "" : line(state + Escaped(says.since))) +
                     line(Escaped(says.reason)) + line(Coloured(Escaped(says.figures), quiet)) + line(notified) +
                     line(Coloured(Escaped(says.done), quiet)) + line(Coloured(Escaped(says.certificate), quiet)) +
                     line(Coloured(Escaped(says.measured), quiet)));
    ShowFailures(says.failures);
    ShowTimes();
}

void DetailStrip::ShowFailures(const std::vector<std::string>& failures) {
    QString html;
    for (const std::string& failure : failures)
        html += "<div>" + Escaped(failure).replace("  ", "&nbsp; ") + "</div>";
    txtFailures_->Show(html.isEmpty() ? Coloured("None on record.", QuietInk(palette())) : html);
}

void DetailStrip::ShowTimes() {
    const bool days = cmdDays_->isChecked();
    chart_->SetTimes(days ? detail_.days : detail_.hours, days);
    const QString range = chart_->Range();
    const QString span = days ? "30 days" : "24 hours";
    const bool wide = width() >= fontMetrics().averageCharWidth() * kCharactersForSpan;
    lblTimes_->setText("<b>Response time" + (wide ? ", " + span : "") + "</b> " + Coloured(range, QuietInk(palette())));
    chart_->setAccessibleName("Response times of the last " + span);
    cmdDays_->setText(days ? "24 hours" : "30 days");
    cmdDays_->setShortcut(QKeySequence(kDaysKey));  // a new text takes it away
}

void DetailStrip::ShowCounts() {
    std::map<RowIcon, std::pair<int, std::string>> counts;
    for (const ServerRow& row : rows_) {
        auto& [count, word] = counts[StateOf(row.strCurStatus)];
        ++count;
        word = row.strCurStatus;
    }
    imgState_->hide();
    if (rows_.empty()) {
        const QString above = QString("<div>&nbsp;</div>").repeated((kLines - 1) / 2);
        return txtDetail_->Show(above + "<p align='center'>" + Coloured(kNothingSelected, QuietInk(palette())) + "</p>");
    }
    QString html = "<div><b>" + QString::number(rows_.size()) + " servers selected</b></div>";
    for (const RowIcon state : {RowIcon::Bad, RowIcon::Warn, RowIcon::Good, RowIcon::DownTime, RowIcon::Inactive})
        if (const auto found = counts.find(state); found != counts.end())
            html += "<div>" + Coloured("<b>" + Escaped(found->second.second) + "</b>", ColoursOf(state, palette()).ink) + ": " +
                    QString::number(found->second.first) + "</div>";
    txtDetail_->Show(html);
}

void DetailStrip::ShowPages() {
    const int characters = width() / fontMetrics().averageCharWidth();
    times_->setVisible(shown_ && characters >= kCharactersForTimes);
    failures_->setVisible(shown_ && characters >= kCharactersForFailures);
}

// What is shown is read again when the operator comes back from a dialog, which may have changed it.
void DetailStrip::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) shown_.reset();
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ActivationChange) Later();
}

void DetailStrip::showEvent(QShowEvent* event) {
    QFrame::showEvent(event);
    Later();
}

void DetailStrip::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (shown_) ShowTimes();
    ShowPages();
}

void DetailStrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (shown_) painter.fillRect(QRect(0, 0, kEdge, height()), ColoursOf(state_, palette()).ink);
}

}  // namespace korvane
