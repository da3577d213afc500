// Room `monitors`: the windows on the resources of this machine.
//
// What the four windows on this machine's own resources have in common: figures above, and below them the settings of the alert,
// which show in the expanded size only. The window shows what its monitor says; what is typed counts at once, saved or not.
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

/// What a level may be: "5", "10" and so on to "100".
std::vector<std::string> OfferedLevels();

/// A window beside the others. Closing hides it.
class ResourceForm : public QDialog {
public:
    /// The operator has closed it. The window must not be destroyed from within.
    void OnHidden(std::function<void()> hidden) { hidden_ = std::move(hidden); }

    virtual AlertMonitor& Monitor() = 0;

protected:
    ResourceForm(const char* name, const QString& title);

    // The constructor of a window calls these in this order.

    /// The figures, above everything else.
    void AddFigures(QWidget* figures, int stretch);
    /// Buttons and the page of the settings, without inputs yet.
    void AddSettings();
    /// An input of the settings with what it may be, a blank included; `text` is what it stands for.
    QComboBox* AddChoice(const char* name, const QString& label, const std::vector<std::string>& offered, std::string& text);
    QCheckBox* AddMark(const char* name, const QString& text, bool& on);
    /// Address, mark and commands, below the choices. `what` is monitored, in the words of the note.
    void AddAlert(const QString& what);

    /// Shows what the monitor says.
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
    int grown_ = 0;  ///< in height, by the last change of size
    bool leftForMessage_ = false;
};

}  // namespace korvane
