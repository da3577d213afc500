#include "store/alert_path.h"

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kTestFailed = "test mail failed";
constexpr std::string_view kProven = "proven ";

}  // namespace

void AlertPath::Load() {
    if (!IsShown()) return;
    IgnoreErrors([&] {
        for (const std::string& line : Split(ReplaceAll(ports_.files.Read(file_).value_or(""), "\r", ""), '\n')) {
            testFailed_ = testFailed_ || line == kTestFailed;
            if (line.starts_with(kProven)) TakenBefore(DateTime::FromStored(line.substr(kProven.size())));
        }
    });
}

void AlertPath::TestMail(bool sent) {
    testFailed_ = !sent;
    if (sent) proven_ = ports_.clock.Now();
    Keep();
    Tell();
}

void AlertPath::Proof(bool overdue) {
    proofOverdue_ = overdue;
    Tell();
}

void AlertPath::ProofArrived() {
    proven_ = ports_.clock.Now();
    Keep();
    Proof(false);
}

void AlertPath::TakenBefore(std::optional<DateTime> when) {
    if (when && (!proven_ || *proven_ < *when)) proven_ = when;
}

std::string AlertPath::ProvenText() const {
    return "Alert path " + (proven_ ? "last proven " + proven_->Text() : "not yet proven") + ".";
}

void AlertPath::Keep() {
    if (!IsShown()) return;
    IgnoreErrors([&] {
        ports_.files.Replace(file_, (testFailed_ ? std::string(kTestFailed) + "\n" : "") +
                                        (proven_ ? std::string(kProven) + proven_->Stored() + "\n" : ""));
    });
}

std::string AlertPath::WarningOf(Recordset& entry) const {
    std::string warning;
    IgnoreErrors([&] {
        const auto isBlank = [&](const char* column) { return Trim(entry.Fields(column).Value().Text()).empty(); };
        if (!entry.Fields("bIsMonitoring").Value().Bool()) return;
        const std::string* server = ports_.settings.Find("Server");
        const bool nobody = isBlank("strEmailList1") && isBlank("strEmailList2");
        if (nobody || server == nullptr || Trim(*server).empty())
            warning = "notifies nobody";
        else
            warning = Problem();
    });
    return warning;
}

std::string AlertPath::Problem() const {
    if (testFailed_) return std::string(kTestFailed);
    return proofOverdue_ && ports_.safeguards.IsOn("ProveMail") ? "mail proof overdue" : "";
}

}  // namespace korvane
