// The decoration of tabs and buttons: a quiet colour for each page, and pictures that respond to the mouse.
#pragma once

#include <QColor>
#include <QPainter>
#include <QStyleOption>

class QTabBar;

namespace korvane {

/// A blue that is visible on the buttons of the palette.
QColor AccentColour(const QPalette& palette);
/// A red that is visible on the background of boxes and lists.
QColor MarkColour(const QPalette& palette);

/// Returns the palette for tabs and their pages: in a dark theme they are as dark as the window around them.
QPalette PagePalette(QPalette palette);

/// Draws over the shape of a tab, below its text: a band in the colour of its page, quiet, or strong with a tint over the whole
/// tab if it is the chosen one. A tab whose text has a colour of its own is marked with a red "!" in its corner.
void ColourTab(QPainter& painter, const QStyleOptionTab& tab, const QTabBar* bar);

/// Returns the option with the picture for the button's state: as it is, under the mouse, or pressed.
QStyleOptionButton WithLivelyPicture(const QStyleOptionButton& button, double pixelRatio);

}  // namespace korvane
