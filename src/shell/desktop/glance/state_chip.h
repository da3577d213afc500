// A button that names a state of entries and how many have it, with the picture of the state: pressed, it is filled with the
// state's colour and has a thick edge.
#pragma once

#include <QAbstractButton>

#include "shell/list/server_list.h"

namespace korvane {

class StateChip : public QAbstractButton {
public:
    StateChip(RowIcon state, QWidget* parent);

    RowIcon State() const { return state_; }
    void SetCount(int count);
    /// Picture and count alone.
    void SetCompact(bool compact);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont CountFont() const;
    int Padding() const { return fontMetrics().height() / 2; }
    int Gap() const { return fontMetrics().height() / 3; }

    RowIcon state_;
    int count_ = 0;
    bool compact_ = false;
};

}  // namespace korvane
