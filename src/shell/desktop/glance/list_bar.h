// The bar above the list: chips that count the states of all entries and filter the list by them, what is shown of it, and a box
// that finds entries.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>
#include <array>
#include <functional>

#include "shell/desktop/glance/state_chip.h"
#include "shell/list/list_filter.h"

class QAction;

namespace korvane {

class ListBar : public QWidget {
public:
    /// `problemsFirst` is the command that its button switches. `changed` is called when the operator changes the filter, and
    /// `leave` when the keyboard shall return to the list.
    ListBar(QAction& problemsFirst, std::function<void()> changed, std::function<void()> leave, QWidget* parent);

    ListFilter Filter() const;
    void TakeFilterOff();
    /// Gives the box the keyboard, with its text selected.
    void Find();

    void SetCounts(const StateCounts& counts);
    void SetShown(int shown, int all);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void AddChips();
    QPushButton* AddProblemsFirst(QAction& problemsFirst);
    void Fit();
    void SetCompact(bool compact);

    std::function<void()> changed_;
    std::function<void()> leave_;
    std::array<StateChip*, kRowStates.size()> chips_{};
    QLabel* lblShown_;
    QPushButton* cmdShowAll_;
    QPushButton* cmdProblemsFirst_;
    QLineEdit* txtFind_;
    StateCounts counts_{};
    int shown_ = 0;
    int all_ = 0;
};

}  // namespace korvane
