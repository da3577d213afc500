// The pictures of the windows: all are there, and their shapes tell them apart.
#include "shell/desktop/look/icons.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <string>
#include <vector>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

struct Picture {
    std::string name;
    QIcon icon;
};

template <class Key>
std::vector<Picture> All(const std::string& kind, QIcon (*make)(Key), Key last) {
    std::vector<Picture> pictures;
    for (int key = 0; key <= static_cast<int>(last); ++key)
        pictures.push_back({kind + " " + std::to_string(key), make(static_cast<Key>(key))});
    return pictures;
}

std::vector<Picture> Commands() {
    return All("command", CommandIcon, CommandPicture::Hide);
}

QImage Image(const QIcon& icon, int side, QIcon::Mode mode = QIcon::Normal) {
    return icon.pixmap(QSize(side, side), mode).toImage().convertToFormat(QImage::Format_ARGB32);
}

// On white, without colours: as somebody who can't tell colours sees it.
QImage Grey(const QIcon& icon, int side) {
    QImage page(side, side, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(0, 0, Image(icon, side));
    return page.convertToFormat(QImage::Format_Grayscale8);
}

// Brightness apart, how much of one picture is another shape than the other: each is spread over the whole range first.
double Different(const QImage& one, const QImage& other) {
    const auto spread = [](const QImage& image) {
        std::vector<int> pixels;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                pixels.push_back(qGray(image.pixel(x, y)));
        const auto [low, high] = std::minmax_element(pixels.begin(), pixels.end());
        const int from = *low, range = std::max(1, *high - *low);
        for (int& pixel : pixels)
            pixel = (pixel - from) * 255 / range;
        return pixels;
    };
    const std::vector<int> a = spread(one), b = spread(other);
    std::size_t different = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        different += std::abs(a[i] - b[i]) > 80;
    return static_cast<double>(different) / static_cast<double>(a.size());
}

int Inked(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 128;
    return count;
}

TEST(Icons, TellThingsApartByShape) {
    NeedDesktop();
    std::vector<Picture> trays = All("tray", TrayIcon, TrayPicture::Off);
    for (const std::vector<Picture>& family : {All("state", StateIcon, RowIcon::Cur), trays, Commands()}) {
        for (const int side : {16, 22, 64}) {
            for (std::size_t i = 0; i < family.size(); ++i) {
                SCOPED_TRACE(family[i].name + " at " + std::to_string(side));
                EXPECT_GT(Inked(Image(family[i].icon, side)), side * side / 20);
                for (std::size_t j = 0; j < i; ++j)
                    EXPECT_GT(Different(Grey(family[i].icon, side), Grey(family[j].icon, side)), 0.04) << family[j].name;
            }
        }
    }
    EXPECT_GT(Different(Grey(ProgramIcon(true), 32), Grey(ProgramIcon(false), 32)), 0.04);
}

TEST(Icons, ArePalerWhereDisabledAndFollowThePalette) {
    NeedDesktop();
    const QPalette before = QApplication::palette();
    for (const QColor& text : {QColor(Qt::black), QColor(Qt::white)}) {
        QPalette palette = before;
        palette.setColor(QPalette::ButtonText, text);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
        QApplication::setPalette(palette);
        for (const Picture& picture : Commands()) {
            SCOPED_TRACE(picture.name);
            const auto ink = [&](QIcon::Mode mode) {
                const QImage image = Image(picture.icon, 32, mode);
                for (int y = 0; y < 32; ++y)
                    for (int x = 0; x < 32; ++x)
                        if (qAlpha(image.pixel(x, y)) == 255) return image.pixelColor(x, y);
                return QColor(Qt::transparent);
            };
            EXPECT_EQ(ink(QIcon::Normal), text);
            EXPECT_EQ(ink(QIcon::Disabled), QColor(Qt::gray));
        }
    }
    QApplication::setPalette(before);
    const QRgb onSelection = before.color(QPalette::Active, QPalette::HighlightedText).rgb();
    for (const Picture& picture : All("state", StateIcon, RowIcon::Cur)) {
        SCOPED_TRACE(picture.name);
        EXPECT_LT(Image(picture.icon, 32, QIcon::Disabled).pixelColor(16, 29).alpha(),
                  Image(picture.icon, 32).pixelColor(16, 29).alpha());
        // Its own colour may be the selection's: there is more in the colour of the text, around it or in its place.
        const auto count = [&](QIcon::Mode mode) {
            const QImage image = Image(picture.icon, 32, mode);
            int pixels = 0;
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 32; ++x)
                    pixels += qAlpha(image.pixel(x, y)) > 100 && (image.pixel(x, y) & RGB_MASK) == (onSelection & RGB_MASK);
            return pixels;
        };
        EXPECT_GT(count(QIcon::Selected), count(QIcon::Normal) + 20);
    }
}

}  // namespace
}  // namespace korvane
