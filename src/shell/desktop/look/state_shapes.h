// Draws the coloured pictures: the states of entries, and the program's emblem. Each fills a square of `side` pixels with its
// corner at 0, 0.
#pragma once

#include <QPainter>

#include "platform/operator.h"
#include "shell/list/server_list.h"

namespace korvane {

void DrawState(QPainter& painter, int side, RowIcon icon);
void DrawTray(QPainter& painter, int side, TrayPicture picture);
void DrawEmblem(QPainter& painter, int side, bool on);

}  // namespace korvane
