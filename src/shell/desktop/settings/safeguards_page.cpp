#include "shell/desktop/settings/safeguards_page.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {
namespace {

constexpr const char* kOn = "True";
constexpr const char* kOff = "False";

/// Puts "&" before the first letter that is no key yet. `keys` are in lower case.
std::string WithKey(const std::string& text, std::string& keys) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string letter = ToLower(text.substr(at, 1));
        if (letter[0] < 'a' || letter[0] > 'z' || Holds(keys, letter)) continue;
        keys += letter;
        return text.substr(0, at) + "&" + text.substr(at);
    }
    return text;
}

}  // namespace

void SafeguardsPage::AddTo(QVBoxLayout& page) {
    std::string keys = "vkc";  // of the buttons below all pages
    QWidget* parent = page.parentWidget();
    auto* cmdRecommended =
        NewButton({"cmdRecommended", "&Recommended", "Switches on the safeguards that are recommended."}, parent, [this] {
            SafeguardValues values = Read();
            Recommend(values);
            Fill(values);
        });
    keys += "r";
    page.addLayout(LeftRow({cmdRecommended}));
    auto& form = AddForm(page);
    for (const Safeguard& safeguard : SafeguardsOfPage()) {
        const std::string key(safeguard.key), sentence(safeguard.protects);
        const bool isSwitch = safeguard.value == SafeguardValue::Switch;
        const std::string name = (isSwitch ? "ck" : "txt") + key, label = isSwitch ? WithKey(sentence, keys) : key + ":";
        const std::string help = key + ": " + sentence;
        const Control control{name.c_str(), label.c_str(), help.c_str(), key.c_str()};
        if (isSwitch) {
            marks_[key] = NewMark(control, parent);
            form.addRow(marks_[key]);
            continue;
        }
        boxes_[key] = NewBox(control, parent);
        if (safeguard.value == SafeguardValue::Password) boxes_[key]->setEchoMode(QLineEdit::Password);
        AddRow(form, control, boxes_[key], {});
        form.addRow("", NewExplanation(Q(sentence), parent));
    }
    lblCounts_ = NewExplanation("", parent);
    lblCounts_->setObjectName("lblCounts");
    lblCounts_->setTextFormat(Qt::PlainText);
    page.addWidget(lblCounts_);
}

void SafeguardsPage::Fill(const SafeguardValues& values) {
    for (const auto& [key, mark] : marks_) {
        const QSignalBlocker quiet(mark);
        mark->setChecked(values.at(key) == kOn);
    }
    for (const auto& [key, box] : boxes_) {
        box->setText(Q(values.at(key)));
        box->setCursorPosition(0);
    }
}

void SafeguardsPage::ShowCounts(const std::string& counts) {
    lblCounts_->setText(Q(counts));
}

SafeguardValues SafeguardsPage::Read() const {
    SafeguardValues values;
    for (const auto& [key, mark] : marks_)
        values[key] = mark->isChecked() ? kOn : kOff;
    for (const auto& [key, box] : boxes_)
        values[key] = S(box->text());
    return values;
}

QLineEdit* SafeguardsPage::Box(const std::string& key) const {
    const auto found = boxes_.find(key);
    return found == boxes_.end() ? nullptr : found->second;
}

QCheckBox* SafeguardsPage::Mark(const std::string& key) const {
    const auto found = marks_.find(key);
    return found == marks_.end() ? nullptr : found->second;
}

}  // namespace korvane
