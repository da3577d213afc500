// Response times as bars, an hour or a day each, with a scale at the left and times below. Times with failures are red and have
// a cross above them.
#pragma once

#include <QWidget>
#include <vector>

#include "shell/list/entry_detail.h"

namespace korvane {

class ResponseChart : public QWidget {
public:
    explicit ResponseChart(QWidget* parent);

    /// The oldest first; the last one is going on. `days`: each is a day. The figures are the accessible description.
    void SetTimes(const std::vector<EntryDetail::ResponseTime>& times, bool days);

    /// Returns "180–800 ms"; empty without a figure.
    QString Range() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF Area() const;
    QRectF BarOf(std::size_t at) const;
    void DrawScale(QPainter& painter) const;
    void DrawBar(QPainter& painter, std::size_t at) const;
    void DrawTimes(QPainter& painter) const;
    QString TimeLabel(std::size_t at) const;

    std::vector<EntryDetail::ResponseTime> times_;
    bool days_ = false;
    double top_ = 0;  ///< of the scale; 0: there is no figure
};

}  // namespace korvane
