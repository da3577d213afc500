// The bar above the list that says that monitoring is stopped, and since when, with a button that starts it.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "base/datetime.h"

namespace korvane {

class StoppedBar : public QFrame {
public:
    /// Hidden at first.
    StoppedBar(std::function<void()> start, QWidget* parent);

    void SetSince(DateTime since) { since_ = since; }
    /// The day is named once it is over.
    void ShowSince(DateTime now);

protected:
    void changeEvent(QEvent* event) override;

private:
    void Colour();

    DateTime since_;
    QLabel* lblSince_;
};

}  // namespace korvane
