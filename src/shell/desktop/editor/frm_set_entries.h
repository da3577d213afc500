// The dialog that gives one or more entries the same value: interval, group or recipients.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/entry/entry_inputs.h"
#include "shell/list/entry_acts.h"

namespace korvane {

/// Shown with open(); deleted when it is closed.
class frmSetEntries : public FormDialog {
public:
    using Fields = std::vector<std::string EntryFields::*>;

    /// `fields` are its inputs; `entries` are the present values of each entry. A box shows what all have in common, and a box
    /// that the operator leaves as it is changes nothing. `accepted` gets the others.
    frmSetEntries(const Desk& desk, const QString& title, const Fields& fields, const std::vector<EntryFields>& entries,
                  std::function<void(const std::vector<EntryChange>& changes)> accepted, QWidget* parent);

private:
    void AddInput(QFormLayout& form, std::string EntryFields::*field, const std::vector<EntryFields>& entries);
    void cmdOk_Click();

    Operator& person_;
    Fields fields_;
    std::function<void(const std::vector<EntryChange>& changes)> accepted_;
    FormInputs<EntryFields> inputs_;
};

}  // namespace korvane
