// Room `monitors`: the windows on the resources of this machine.
//
// The common part of the four windows on this machine's own resources: figures above, and below them the settings of the alert,
// visible only in the expanded size. The window shows the state of its monitor; typed values apply at once, saved or not.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/events.h"
#include "platform/services.h"
#include "platform/system_info.h"
#include "resources/alert_monitor.h"
#include "shell/options/global_email_walk.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace korvane {

/// A modeless window. Closing hides it.
class ResourceForm : public QDialog {
public:
    /// Called when the operator has closed it. The callback must not destroy the window.
    void OnHidden(std::function<void()> hidden) { hidden_ = std::move(hidden); }

    virtual AlertMonitor& Monitor() = 0;

protected:
    ResourceForm(const char* name, const QString& title);

    // The constructor of a window must call these in this order.

    /// Adds the figures, above everything else, and the page of the settings, without inputs yet. `rest`, if there is one, is
    /// below the figures and takes the height that is left.
    void AddFigures(QWidget* figures, QWidget* rest = nullptr);
    /// The possible levels: "5", "10" and so on to "100".
    static std::vector<std::string> OfferedLevels();
    /// Adds an input of the settings with its possible values and an empty one; it is bound to `text`.
    void AddChoice(const char* name, const QString& label, const std::vector<std::string>& offered, std::string& text);
    void AddMark(const char* name, const QString& text, bool& on);
    /// Adds address, mark and commands, below the choices. `what` is the monitored resource, as worded in the note.
    void AddAlert(const QString& what);

    /// Shows the monitor's current state.
    void Refresh();
    virtual void ShowFigures() = 0;

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void cmdExpand_Click(bool expand);
    void AddCommands();

    std::function<void()> hidden_;
    QVBoxLayout* layout_;
    QFormLayout* form_ = nullptr;
    QGroupBox* fraSettings_ = nullptr;
    QPushButton* cmdExpand_ = nullptr;
    QPushButton* cmdTest_ = nullptr;
    QLineEdit* txtEmail_ = nullptr;
    std::vector<std::pair<QComboBox*, const std::string*>> choices_;
    std::vector<std::pair<QCheckBox*, const bool*>> marks_;
    int grown_ = 0;  ///< height added by the last change of size
    bool leftForMessage_ = false;
};

/// Creates the window on the services, hidden; the arguments must outlive it.
std::unique_ptr<ResourceForm> NewServiceForm(const MonitorPorts& ports, Services& services);

/// Creates the window of one of the resources, hidden; all arguments must outlive it.
std::unique_ptr<ResourceForm> NewResourceForm(ResourceMonitor monitor, const MonitorPorts& ports, Events& events,
                                              const SystemInfo& system, Services& services);

}  // namespace korvane
