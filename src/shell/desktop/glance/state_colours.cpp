#include "shell/desktop/glance/state_colours.h"

namespace korvane {
namespace {

struct BothThemes {
    StateColours light, dark;
};

/// By RowIcon.
constexpr BothThemes kColours[] = {
    {{QColor(0xe3, 0xf4, 0xea), QColor(0x12, 0x69, 0x39)}, {QColor(0x16, 0x35, 0x24), QColor(0x6f, 0xd6, 0x9e)}},  // Good
    {{QColor(0xff, 0xf3, 0xd1), QColor(0x76, 0x4c, 0x00)}, {QColor(0x3c, 0x30, 0x10), QColor(0xf5, 0xc3, 0x51)}},  // Warn
    {{QColor(0xfd, 0xe6, 0xe6), QColor(0xad, 0x12, 0x16)}, {QColor(0x47, 0x1f, 0x21), QColor(0xff, 0x9c, 0x98)}},  // Bad
    {{QColor(0xec, 0xee, 0xf1), QColor(0x4d, 0x56, 0x61)}, {QColor(0x31, 0x34, 0x39), QColor(0xb5, 0xbc, 0xc6)}},  // Inactive
    {{QColor(0xe4, 0xee, 0xfd), QColor(0x1b, 0x51, 0xa4)}, {QColor(0x1b, 0x30, 0x4e), QColor(0x90, 0xbe, 0xf8)}},  // DownTime
    {{QColor(0xdf, 0xf3, 0xf4), QColor(0x0c, 0x60, 0x67)}, {QColor(0x12, 0x35, 0x38), QColor(0x74, 0xd0, 0xd8)}},  // Cur
};

}  // namespace

StateColours ColoursOf(RowIcon state, const QPalette& palette) {
    const BothThemes& colours = kColours[static_cast<std::size_t>(state)];
    return palette.color(QPalette::Base).lightness() < 128 ? colours.dark : colours.light;
}

QColor QuietInk(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
    const auto mixed = [](int strong, int weak) { return (2 * strong + weak) / 3; };
    return {mixed(text.red(), base.red()), mixed(text.green(), base.green()), mixed(text.blue(), base.blue())};
}

}  // namespace korvane
