// The details of the selected entries under the list of the main window.
#include <QHeaderView>
#include <QVBoxLayout>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "shell/desktop/glance/detail_strip.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/run/run.h"

namespace korvane {
namespace {

constexpr const char* kSection = "Window";
constexpr const char* kWantedKey = "DetailStrip";

/// The strip's links and the commands that they stand for.
const struct {
    const char* name;
    const char* caption;
    const char* accessibleName;
    const char* key;
    const char* command;
} kLinks[] = {
    {"cmdDetailReport", "Report", "Report of the selected server", "Alt+7", "mnuEntryReport"},
    {"cmdDetailResponse", "Response", "Last response of the selected server", "Alt+8", "mnuEntryLastResponse"},
    {"cmdDetailRoute", "Traceroute", "Last route to the selected server", "Alt+9", "mnuEntryLastTraceroute"},
    {"cmdDetailCheck", "Check now", "Check the selected server now", "Alt+0", "mnuEntryCheckNow"},
};

}  // namespace

void frmMonitor::BuildDetail(QVBoxLayout& rows, int at) {
    QAction& wanted = *actions_.at("mnuViewDetail");
    wanted.setCheckable(true);
    wanted.setChecked(true);
    detail_ = new DetailStrip([&wanted] { wanted.trigger(); }, rows.parentWidget());
    for (const auto& link : kLinks)
        if (const auto found = actions_.find(link.command); found != actions_.end())
            detail_->AddLink(link.name, link.caption, link.accessibleName, link.key, *found->second);
    rows.insertWidget(at, detail_);
    connect(ListView1->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowDetail(); });
}

void frmMonitor::AttachDetail() {
    const auto load = [this](const std::string& id) {
        EntryDetail detail;
        IgnoreErrors([&] { detail = LoadEntryDetail(run_->TheDesk(), ParseWhole(id), run_->TheDesk().clock.Now()); });
        return detail;
    };
    detail_->Attach(run_->TheDesk().clock, load);
}

void frmMonitor::ShowDetail() {
    std::vector<ServerRow> rows;
    for (const QModelIndex& cell : ListView1->selectionModel()->selectedRows())
        rows.push_back(model_->Row(cell.row()));
    detail_->SetSelected(std::move(rows));
}

void frmMonitor::RestoreDetail() {
    const bool wanted = run_->TheDesk().settingsFile.Read(kSection, kWantedKey, "True") != "False";
    actions_.at("mnuViewDetail")->setChecked(wanted);
    detail_->SetWanted(wanted);
    Form_Resize();
}

void frmMonitor::mnuViewDetail() {
    const bool wanted = actions_.at("mnuViewDetail")->isChecked();
    run_->TheDesk().settingsFile.Write(kSection, kWantedKey, wanted ? "True" : "False");
    if (!wanted && detail_->isAncestorOf(focusWidget())) ListView1->setFocus();
    detail_->SetWanted(wanted);
    Form_Resize();
}

}  // namespace korvane
