// The strip under the list: what is known of the selected entry, with its state, response times and last failures, and links to
// more. With several entries selected it counts their states. Its height is fixed, and it never makes the window larger.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <functional>
#include <optional>
#include <vector>

#include "platform/clock.h"
#include "shell/desktop/glance/detail_text.h"
#include "shell/desktop/glance/response_chart.h"
#include "shell/list/server_list.h"

class QAction;
class QBoxLayout;

namespace korvane {

class DetailStrip : public QFrame {
public:
    using Load = std::function<EntryDetail(const std::string& id)>;

    /// `close` is called when the operator presses the mark at the corner.
    DetailStrip(std::function<void()> close, QWidget* parent);

    /// Must be called before anything is shown.
    void Attach(const Clock& clock, Load load);

    /// Adds a link that does what the command does, and can be used when the command can.
    void AddLink(const char* name, const QString& caption, const QString& accessibleName, const char* key, QAction& command);

    /// The rows of the list that are selected, also after each refresh. The strip reads the rows of an entry only when it is
    /// visible, and only if the entry was checked or changed meanwhile, or after a minute; once the event loop runs again.
    void SetSelected(std::vector<ServerRow> rows);

    /// While monitoring is stopped, the strip promises no check.
    void SetMonitoring(bool on);

    /// The strip is visible if the operator wants it and the window is high enough.
    void SetWanted(bool wanted);
    void SetWindowHeight(int height);
    /// Returns the height that the strip takes from the window, with the space above it; 0 while it is hidden.
    int TakenHeight() const;

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int kLines = 10;  ///< of text in the strip
    static constexpr int kEdge = 4;    ///< in the colour of the state
    static constexpr const char* kDaysKey = "Alt+6";

    QWidget* BuildTimes();
    QWidget* BuildFailures();
    void ShowIfWanted();
    void Later();
    void Update();
    bool IsStale(const ServerRow& row) const;
    void ShowEntry();
    void ShowFailures(const std::vector<std::string>& failures);
    void ShowTimes();
    void ShowCounts();
    void ShowPages();

    const Clock* clock_ = nullptr;
    Load load_;
    std::vector<ServerRow> rows_;
    std::optional<ServerRow> shown_;  ///< the row as it was when `detail_` was read
    EntryDetail detail_;
    DateTime readAt_;
    RowIcon state_ = RowIcon::Inactive;
    bool monitoring_ = true;
    bool wanted_ = true;
    int windowHeight_ = 0;
    bool later_ = false;

    QLabel* imgState_;
    DetailText* txtDetail_;
    QWidget* times_;
    QLabel* lblTimes_;
    QPushButton* cmdDays_;
    ResponseChart* chart_;
    QWidget* failures_;
    DetailText* txtFailures_;
    QBoxLayout* links_;
    QPushButton* cmdClose_;
};

}  // namespace korvane
