// A button with picture and caption. In a narrow window, and where it is squeezed, the caption disappears; the picture and the tool
// tip remain.
#pragma once

#include <QPushButton>

namespace korvane {

/// Pixels; a narrower window shows pictures alone.
inline constexpr int kNarrowWindow = 800;

class CommandButton : public QPushButton {
public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool IsNarrow() const;
};

}  // namespace korvane
