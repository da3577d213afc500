#include "shell/desktop/frm_req_res.h"

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
    Append(Ruled("Response: " + Lines(text)));
}

}  // namespace korvane
