// Draws the pictures of commands: lines of one width, aligned to whole pixels wherever they are straight.
#pragma once

#include <QColor>
#include <QPainter>

#include "shell/desktop/look/icons.h"

namespace korvane {

/// Fills a square of `side` pixels with its corner at 0, 0.
void DrawCommand(QPainter& painter, int side, CommandPicture picture, const QColor& ink);

}  // namespace korvane
