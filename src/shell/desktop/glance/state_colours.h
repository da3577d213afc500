// Room `glance`: what the main window shows around its list.
//
// The colours of the states of entries, for light and dark windows. Each has its picture and its word beside it, since not
// everybody sees the colours.
#pragma once

#include <QColor>
#include <QPalette>

#include "shell/list/server_list.h"

namespace korvane {

struct StateColours {
    QColor ground;  ///< behind text
    QColor ink;     ///< of text, on that ground and on the palette's
};

/// The inks have a contrast of at least 4.5 to their ground, and so has the palette's text.
StateColours ColoursOf(RowIcon state, const QPalette& palette);

/// Text that is less important than the rest.
QColor QuietInk(const QPalette& palette);

}  // namespace korvane
