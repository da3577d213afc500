#include "shell/desktop/trace/frm_req_res.h"

#include <QScreen>
#include <algorithm>

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

QString Ruled(const QString& text) {
    constexpr qsizetype kRule = 56;
    return text + "\n" + QString(kRule, '-') + "\n";
}

/// Returns the lowest of the dialogs over which it opens, which is the editor, or null if there is none.
const QWidget* EditorBelow(const QWidget* parent) {
    const QWidget* editor = nullptr;
    for (; parent != nullptr; parent = parent->parentWidget()) {
        if (qobject_cast<const QDialog*>(parent) != nullptr) editor = parent;
    }
    return editor;
}

}  // namespace

frmReqRes::frmReqRes(QWidget* parent) : TraceWindow("Request and Response", parent) {
    setObjectName("frmReqRes");
    if (const QWidget* const editor = EditorBelow(parent); editor != nullptr) PlaceBeside(*editor);
}

void frmReqRes::PlaceBeside(const QWidget& editor) {
    const QRect screen = editor.screen()->availableGeometry();
    const QRect taken = editor.frameGeometry();
    const QSize frame = taken.size() - editor.size();  // this window gets a frame of the same size
    const QSize wanted = size() + frame;
    const int left = taken.left() - screen.left();
    const int right = screen.right() - taken.right();
    const bool goesRight = right >= std::min(left, wanted.width());
    const int room = goesRight ? right : left;
    const int width = room * 2 >= wanted.width() ? std::min(room, wanted.width()) : wanted.width();
    const int x =
        goesRight ? std::min(taken.right() + 1, screen.right() + 1 - width) : std::max(taken.left() - width, screen.left());
    resize(width - frame.width(), height());
    move(x, std::clamp(taken.top(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - wanted.height())));
}

void frmReqRes::setRequest(const std::string& text) {
    Append(Ruled("Request ---> " + Lines(text) + " "));
}

void frmReqRes::setResponse(const std::string& text) {
    // The window keeps no more than this, and a page may be many megabytes.
    const std::size_t kept = std::min(text.size(), std::size_t{4} * kMostOfATrace);
    Append(Ruled("Response: " + Lines(std::string_view(text).substr(text.size() - kept))));
}

}  // namespace korvane
