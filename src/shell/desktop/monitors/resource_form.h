// Room `monitors`: the windows on the resources of this machine.
//
// The common part of the four windows on this machine's own resources: figures above, and below them the settings of the alert,
// visible only in the expanded size. The window shows the state of its monitor; typed values apply at once, saved or not.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "resources/alert_monitor.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace korvane {

/// The possible levels: "5", "10" and so on to "100".
std::vector<std::string> OfferedLevels();

/// A modeless window. Closing hides it.
class ResourceForm : public QDialog {
public:
    /// Called when the operator has closed it. The callback must not destroy the window.
    void OnHidden(std::function<void()> hidden) { hidden_ = std::move(hidden); }

    virtual AlertMonitor& Monitor() = 0;

protected:
    ResourceForm(const char* name, const QString& title);

    // The constructor of a window must call these in this order.

    /// Adds the figures, above everything else.
    void AddFigures(QWidget* figures, int stretch);
    /// Adds the buttons and the page of the settings, without inputs yet.
    void AddSettings();
    /// Adds an input of the settings with its possible values and an empty one; it is bound to `text`.
    QComboBox* AddChoice(const char* name, const QString& label, const std::vector<std::string>& offered, std::string& text);
    QCheckBox* AddMark(const char* name, const QString& text, bool& on);
    /// Adds address, mark and commands, below the choices. `what` is the monitored resource, as worded in the note.
    void AddAlert(const QString& what);

    /// Shows the monitor's current state.
    void Refresh();
    virtual void ShowFigures() = 0;

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Choice {
        QComboBox* box;
        std::string* text;
    };
    struct Mark {
        QCheckBox* box;
        bool* on;
    };

    void cmdExpand_Click(bool expand);
    void AddCommands();

    std::function<void()> hidden_;
    QVBoxLayout* layout_;
    QFormLayout* form_ = nullptr;
    QGroupBox* fraSettings_ = nullptr;
    QPushButton* cmdExpand_ = nullptr;
    QPushButton* cmdTest_ = nullptr;
    QLineEdit* txtEmail_ = nullptr;
    std::vector<Choice> choices_;
    std::vector<Mark> marks_;
    int grown_ = 0;  ///< height added by the last change of size
    bool leftForMessage_ = false;
};

}  // namespace korvane
