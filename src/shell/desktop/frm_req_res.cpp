#include "shell/desktop/frm_req_res.h"

#include <algorithm>

#include "shell/desktop/qt_text.h"

namespace korvane {
namespace {

QString Ruled(const QString& text) {
    constexpr qsizetype kRule = 56;
    return text + "\n" + QString(kRule, '-') + "\n";
}

}  // namespace

frmReqRes::frmReqRes(QWidget* parent) : TraceWindow("Request and Response", parent) {
    setObjectName("frmReqRes");
}

void frmReqRes::setRequest(const std::string& text) {
    Append(Ruled("Request ---> " + Lines(text) + " "));
}

void frmReqRes::setResponse(const std::string& text) {
    // The window keeps no more than this, and a page may have many megabytes.
    const std::size_t kept = std::min(text.size(), std::size_t{4} * kMostOfATrace);
    Append(Ruled("Response: " + Lines(std::string_view(text).substr(text.size() - kept))));
}

}  // namespace korvane
