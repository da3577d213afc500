// Text between the rooms, where it is UTF-8 in std::string, and the windows, where it is QString.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace korvane {

inline QString Q(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// As Q, with the line ends that a window shows.
inline QString Lines(std::string_view text) {
    return Q(text).replace("\r\n", "\n");
}

inline std::string S(const QString& text) {
    return text.toStdString();
}

}  // namespace korvane
