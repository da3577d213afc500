// A moving chart of a load: a filled area over a grid with its scale, the newest sample at the right, and the level of the alert
// as a line.
#pragma once

#include <QWidget>
#include <cstdint>
#include <optional>
#include <vector>

namespace korvane {

class LoadChart : public QWidget {
public:
    /// `oldest` is the age of the first sample, in words.
    LoadChart(const QString& oldest, QWidget* parent);

    /// In percent, the oldest first. At least two are required.
    void SetSamples(const std::vector<std::int32_t>& samples);

    /// The level of the alert in percent; nothing: no line.
    void SetLevel(std::optional<int> percent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF Area() const;
    void DrawScale(QPainter& painter, const QRectF& area) const;
    void DrawLevel(QPainter& painter, const QRectF& area) const;
    /// For those who cannot see it.
    void DescribeFigures();

    QString oldest_;
    std::vector<std::int32_t> samples_;
    std::optional<int> level_;
};

}  // namespace korvane
