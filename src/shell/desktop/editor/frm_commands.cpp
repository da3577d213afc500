#include "shell/desktop/editor/frm_commands.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "platform/operator.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr int kRuleCharacters = 100;  ///< across the window, if there is room
constexpr int kFewest = 12;           ///< in a box
constexpr int kRuleHelpLines = 5;

enum Column { kNumber, kSuccess, kCommand };

}  // namespace

frmCommands::frmCommands(const Desk& desk, std::string connectionText, int listPosition, std::string id, QWidget* parent)
    : FormDialog("frmCommands", "Failure Texts and Commands", parent),
      operator_(desk.person),
      rules_(desk, std::move(connectionText), id),
      listPosition_(listPosition),
      id_(std::move(id)) {
    lblHelp_ = new ReadingText("lblHelp", "Explanation", kRuleHelpLines, this);
    lblHelp_->setFocusPolicy(Qt::ClickFocus);
    content_->addWidget(RuleRows(), 1);
    content_->addWidget(lblHelp_);
    content_->addWidget(Buttons());
    const QSize wanted(fontMetrics().averageCharWidth() * kRuleCharacters, sizeHint().height());
    resize(wanted.boundedTo(screen()->availableSize() * 9 / 10));
    LoadRules();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { Explain(now); });
    rows_[0].txtSuccess->setFocus();
    Explain(rows_[0].txtSuccess);
}

QWidget* frmCommands::RuleRows() {
    auto* page = new QWidget(this);
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* lblSuccess = new QLabel("&Search text", page);
    auto* lblCommand = new QLabel("&Command", page);
    grid->addWidget(lblSuccess, 0, kSuccess);
    grid->addWidget(lblCommand, 0, kCommand);
    for (std::size_t row = 0; row < rows_.size(); ++row)
        AddRow(*grid, static_cast<int>(row));
    lblSuccess->setBuddy(rows_[0].txtSuccess);
    lblCommand->setBuddy(rows_[0].txtCommand);
    grid->setColumnStretch(kSuccess, 1);
    grid->setColumnStretch(kCommand, 1);
    grid->setRowStretch(grid->rowCount(), 1);

    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(page);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(page->minimumSizeHint().width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    scroll->setMinimumHeight(rows_[0].txtSuccess->sizeHint().height() * 4);
    return scroll;
}

void frmCommands::AddRow(QGridLayout& grid, int number) {
    QWidget* page = grid.parentWidget();
    const QString text = QString::number(number);
    const auto newBox = [&](const QString& name, const QString& accessibleName, Column column) {
        auto* box = NewBox((name + text).toLatin1(), accessibleName + QString::number(number + 1), page);
        box->setMinimumWidth(fontMetrics().averageCharWidth() * kFewest);
        grid.addWidget(box, number + 1, column);
        return box;
    };
    grid.addWidget(new QLabel(QString::number(number + 1), page), number + 1, kNumber, Qt::AlignRight | Qt::AlignVCenter);
    const auto index = static_cast<std::size_t>(number);
    rows_[index] = {newBox("txtSuccess", "Search text ", kSuccess), newBox("txtCommand", "Command ", kCommand)};
    connect(rows_[index].txtSuccess, &QLineEdit::textChanged, this, [this, index] { SearchTextChanged(index); });
    connect(rows_[index].txtCommand, &QLineEdit::textChanged, this, [this, index] { Explain(rows_[index].txtCommand); });
}

QDialogButtonBox* frmCommands::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    AddButton(*buttons, {"cmdOk", "O&K"}, QDialogButtonBox::AcceptRole, [this] { cmdOk_Click(); })->setDefault(true);
    AddButton(*buttons, {"cmdCancel", "Cance&l"}, QDialogButtonBox::RejectRole, [this] { reject(); });
    AddButton(*buttons, {"cmdHelp", "&Help"}, QDialogButtonBox::HelpRole, [this] { cmdHelp_Click(); })->setAutoDefault(false);
    return buttons;
}

void frmCommands::LoadRules() {
    const FailTextRules::Opened opened = rules_.Open();
    found_ = opened.found;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        rows_[i].txtSuccess->setText(Q(opened.rows[i].strFailText));
        rows_[i].txtCommand->setText(Q(opened.rows[i].strFailCommand));
        SearchTextChanged(i);
    }
}

// The message must appear over the dialog, so it is shown after the dialog.
void frmCommands::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(found_, true)) return;
    QTimer::singleShot(
        0, this, [&shower = operator_, text = "can't find record with id " + id_] { shower.ShowMessage(kMessageTitle, text); });
}

FailTextRule frmCommands::Rule(std::size_t row) const {
    return {S(rows_[row].txtSuccess->text()), S(rows_[row].txtCommand->text())};
}

void frmCommands::SearchTextChanged(std::size_t row) {
    rows_[row].txtCommand->setEnabled(!rows_[row].txtSuccess->text().isEmpty());
    Explain(rows_[row].txtSuccess);
}

void frmCommands::Explain(QWidget* box) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (box != rows_[i].txtSuccess && box != rows_[i].txtCommand) continue;
        const QString help = Lines(box == rows_[i].txtSuccess ? FailTextHelp() : FailCommandHelp(Rule(i)));
        lblHelp_->SetText(help);
        box->setAccessibleDescription(help);
    }
}

void frmCommands::cmdOk_Click() {
    FailTextRows rows;
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = Rule(i);
    const std::string error = rules_.Save(rows);
    if (error.empty())
        accept();
    else
        lblHelp_->SetText("The rules could not be saved: " + Q(error));
}

void frmCommands::cmdHelp_Click() {
    operator_.ShowMessage(kMessageTitle, FailTextRulesHelp());
}

}  // namespace korvane
