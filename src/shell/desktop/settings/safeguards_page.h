// The inputs of the page Safeguards: a mark for each switch and a box for each value, made from the one table of safeguards. The
// accessible name of each is its key.
#pragma once

#include <map>
#include <string>

#include "shell/options/safeguard_inputs.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace korvane {

class SafeguardsPage {
public:
    /// Adds all of them to the page, which owns them.
    void AddTo(QVBoxLayout& page);

    void Fill(const SafeguardValues& values);
    void ShowCounts(const std::string& counts);
    SafeguardValues Read() const;

    /// Null for a switch.
    QLineEdit* Box(const std::string& key) const;
    /// Null for a value.
    QCheckBox* Mark(const std::string& key) const;

private:
    std::map<std::string, QCheckBox*, LessNoCase> marks_;
    std::map<std::string, QLineEdit*, LessNoCase> boxes_;
    QLabel* lblCounts_ = nullptr;
};

}  // namespace korvane
