#include "support/recording_operator.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {

std::vector<std::string> RecordingOperator::StatusTexts() const {
    std::vector<std::string> texts;
    for (const Status& line : status)
        texts.push_back(line.text);
    return texts;
}

bool RecordingOperator::Said(std::string_view text) const {
    return std::any_of(status.begin(), status.end(), [text](const Status& line) { return line.text == text; });
}

bool RecordingOperator::SaidPart(std::string_view part) const {
    return std::any_of(status.begin(), status.end(), [part](const Status& line) { return Holds(line.text, part); });
}

void RecordingOperator::Forget() {
    status.clear();
    trays.clear();
    cycleTexts.clear();
    messages.clear();
    questions.clear();
}

void RecordingOperator::StatusLine(const std::string& time, const std::string& text) {
    ++statusCount;
    if (!keepOnlyCounts) status.push_back({time, text});
}

void RecordingOperator::SetCycleText(const std::string& text) {
    cycleText = text;
    if (!keepOnlyCounts) cycleTexts.push_back(text);
}

void RecordingOperator::SetProgress(int value, int max) {
    progressValue = value;
    progressMax = max;
}

void RecordingOperator::SetTray(TrayPicture picture, const std::string& tip) {
    ++trayCount;
    tray = {picture, tip};
    if (!keepOnlyCounts) trays.push_back(tray);
}

void RecordingOperator::SetTrayTip(const std::string& tip) {
    SetTray(tray.picture, tip);
}

void RecordingOperator::ShowMessage(const std::string& title, const std::string& text) {
    ++messageCount;
    if (!keepOnlyCounts) messages.push_back({title, text});
}

bool RecordingOperator::AskYesNo(const std::string& title, const std::string& text) {
    questions.push_back({title, text});
    if (answers.empty()) return false;
    const bool answer = answers.front();
    answers.pop_front();
    return answer;
}

}  // namespace korvane
