// Conversion of text between the rooms (UTF-8 in std::string) and the windows (QString).
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace korvane {

inline QString Q(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Like Q, with the line ends of a window.
inline QString Lines(std::string_view text) {
    return Q(text).replace("\r\n", "\n");
}

inline std::string S(const QString& text) {
    return text.toStdString();
}

}  // namespace korvane
