// The figures of something that fills up: total, used and available amount, and a bar with the available share.
#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>
#include <QWidget>
#include <string>

namespace korvane {

class SpaceFigures : public QWidget {
public:
    /// `what` in lower case, for the accessible names: "memory".
    SpaceFigures(const QString& what, QWidget* parent);

    /// `share` is shown below the bar, which is filled to `percent`.
    void SetFigures(const std::string& total, const std::string& used, const std::string& available, const std::string& share,
                    int percent);

    /// Adds one more row below.
    void AddRow(const QString& caption, QWidget* content) { rows_->addRow(caption, content); }

private:
    QFormLayout* rows_;
    QLabel* lblTotal_;
    QLabel* lblUsed_;
    QLabel* lblAvailable_;
    QProgressBar* pbShare_;
    QLabel* lblShare_;
};

}  // namespace korvane
