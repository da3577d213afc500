// The operator of a program without a display: status lines go to one stream, messages to another, and questions are not
// answered.
#pragma once

#include <iosfwd>

#include "platform/operator.h"

namespace korvane {

class TerminalOperator : public Operator {
public:
    /// The streams must outlive this. Status lines are written as "h:mm:ss AM - text" and flushed at once, so that a journal
    /// shows them live.
    TerminalOperator(std::ostream& statusLines, std::ostream& messages) : statusLines_(statusLines), messages_(messages) {}

    bool WindowVisible() const override { return false; }
    void StatusLine(const std::string& time, const std::string& text) override;
    void ShowMessage(const std::string& title, const std::string& text) override;
    bool AskYesNo(const std::string& title, const std::string& text) override;

private:
    std::ostream& statusLines_;
    std::ostream& messages_;
};

}  // namespace korvane
