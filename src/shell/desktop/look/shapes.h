// Draws the shapes of the pictures, each into a square of `side` pixels with its corner at 0, 0: the commands in lines of one
// width, aligned to whole pixels wherever they are straight; the states of entries and the program's emblem in colours.
#pragma once

#include <QPainter>

#include "shell/desktop/look/icons.h"

namespace korvane {

/// `inside` fills its closed shapes.
void DrawCommand(QPainter& painter, int side, CommandPicture picture, const QColor& ink, const QColor& inside);
void DrawState(QPainter& painter, int side, RowIcon icon);
void DrawTray(QPainter& painter, int side, TrayPicture picture);
void DrawEmblem(QPainter& painter, int side, bool on);

}  // namespace korvane
