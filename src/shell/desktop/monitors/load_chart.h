// A moving chart of a load: a filled area over a grid, the newest sample at the right.
#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

namespace korvane {

class LoadChart : public QWidget {
public:
    explicit LoadChart(QWidget* parent);

    /// In percent, the oldest first. At least two are required.
    void SetSamples(const std::vector<std::int32_t>& samples);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<std::int32_t> samples_;
};

}  // namespace korvane
