// The dialog for the texts that mean failure: ten rows of a search text and a command for one entry.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <tuple>

#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/entry/fail_text_rules.h"
#include "shell/run/desk.h"

class QGridLayout;
class QLineEdit;

namespace korvane {

/// Only OK saves the content; when that fails the dialog stays open.
class frmCommands : public FormDialog {
public:
    /// `id` is the entry's. `listPosition` is only stored for callers. Reading the rules blocks for 100 ms per rule.
    frmCommands(const Desk& desk, std::string connectionText, int listPosition, std::string id, QWidget* parent);

    int ListPosition() const { return listPosition_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    struct Row {
        QLineEdit* txtSuccess = nullptr;
        QLineEdit* txtCommand = nullptr;
    };

    QWidget* RuleRows();
    void AddRow(QGridLayout& grid, int number);
    QDialogButtonBox* Buttons();
    void LoadRules();
    FailTextRule Rule(std::size_t row) const;
    void SearchTextChanged(std::size_t row);
    void Explain(QWidget* box);
    void cmdOk_Click();
    void cmdHelp_Click();

    Operator& operator_;
    FailTextRules rules_;
    int listPosition_;
    std::string id_;
    bool found_ = true;
    std::array<Row, std::tuple_size_v<FailTextRows>> rows_;
    ReadingText* lblHelp_ = nullptr;
};

}  // namespace korvane
