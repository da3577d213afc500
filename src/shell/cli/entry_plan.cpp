#include "shell/cli/entry_plan.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "shell/entry/entry_type.h"
#include "shell/list/csv_text.h"

namespace korvane {
namespace {

constexpr std::string_view kAddress = "strAddress_IP";
constexpr std::string_view kType = "strType";
constexpr std::string_view kName = "strDesc";

std::vector<std::string> TypeNames() {
    std::vector<std::string> names;
    for (const ServerType& type : ServerTypeTable())
        names.emplace_back(type.name);
    return names;
}

/// The columns that are given, each once: the last one counts.
class Columns {
public:
    void Put(std::string_view column, const std::string& value) {
        Erase(column);
        all_.emplace_back(column, value);
    }
    bool Has(std::string_view column) const {
        return std::ranges::any_of(all_, [&](const auto& each) { return each.first == column; });
    }
    std::string Csv() const {
        std::vector<std::string> names, values;
        for (const auto& [name, value] : all_) {
            names.push_back(name);
            values.push_back(value);
        }
        return CsvLine(names) + CsvLine(values);
    }

private:
    void Erase(std::string_view column) {
        std::erase_if(all_, [&](const auto& each) { return each.first == column; });
    }
    std::vector<std::pair<std::string, std::string>> all_;
};

/// Nobody who names one entry wrote lines.
std::string WithoutLine(const std::string& refusal) {
    return refusal.starts_with("Line ") ? refusal.substr(refusal.find(": ") + 2) : refusal;
}

}  // namespace

ImportPlan PlanOfOne(Session& session, const std::string& id, const std::string& address) {
    Columns columns;
    columns.Put("id", id);
    if (id.empty()) {
        if (Trim(address).empty()) throw WrongWords("the address is empty.");
        columns.Put(kName, "");
        columns.Put(kAddress, address);
        if (ToLower(address).starts_with("https://")) columns.Put(kType, "HTTPS");
    }
    for (const auto& [column, value] : session.Given().columns) {
        if (column == kType && IndexOfType(Trim(value)) < 0)
            throw Error("There is no type '" + value + "'." + Nearest(value, TypeNames()));
        columns.Put(column, value);
    }
    ImportPlan plan = PlanImport(session.TheDesk(), columns.Csv());
    if (!plan.refusal.empty()) throw Error(WithoutLine(plan.refusal));
    if (plan.rows.front().step == ImportStep::Refused)
        throw Error(ReplaceAll(plan.rows.front().details, "\r\n", "\n") + "\nNothing was changed.");
    return plan;
}

}  // namespace korvane
