// Handles extremely long lines, which a server's page may contain: a text box lays out each line at once, in a time that grows
// with the square of its length.
#pragma once

#include <QString>

namespace korvane {

/// Breaks lines of more than 1000 characters into pieces. Line ends are "\n".
inline QString WithoutEndlessLines(const QString& text) {
    constexpr qsizetype kLongest = 1000;
    QString broken;
    qsizetype lineLength = 0;
    qsizetype taken = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        lineLength = text[i] == u'\n' ? 0 : lineLength + 1;
        if (lineLength <= kLongest || text[i].isLowSurrogate()) continue;
        broken.append(text.mid(taken, i - taken)).append('\n');
        taken = i;
        lineLength = 1;
    }
    return taken == 0 ? text : broken + text.mid(taken);
}

}  // namespace korvane
