#include "shell/run/terminal_operator.h"

#include <algorithm>
#include <ostream>

#include "base/text.h"

namespace korvane {
namespace {

// A server's answer may contain escape sequences; they must not reach the operator's terminal.
std::string Printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    for (std::size_t at = text.find('\xC2'); at != std::string::npos; at = text.find('\xC2', at + 1)) {
        const bool control = at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;  // U+0080 to U+009F
        if (control) text.replace(at, 2, "  ");
    }
    return text;
}

}  // namespace

void TerminalOperator::StatusLine(const std::string& time, const std::string& text) {
    statusLines_ << time << " - " << Printable(text) << std::endl;
}

void TerminalOperator::ShowMessage(const std::string& title, const std::string& text) {
    messages_ << title << ": " << ReplaceAll(text, "\r\n", "\n") << std::endl;
}

bool TerminalOperator::AskYesNo(const std::string& title, const std::string& text) {
    ShowMessage(title, text + "\r\n(Nobody is here to answer: No.)");
    return false;
}

}  // namespace korvane
