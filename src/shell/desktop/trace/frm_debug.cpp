#include "shell/desktop/trace/frm_debug.h"

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {

frmDebug::frmDebug(QWidget* parent) : TraceWindow("Conversation with Mail Servers", parent) {
    setObjectName("frmDebug");
}

void frmDebug::setMsg(const std::string& sent) {
    Append("\n-->'" + Lines(sent) + "'");
}

void frmDebug::setReceiveMsg(const std::string& received) {
    Append("\n<--'" + Lines(received) + "'");
}

}  // namespace korvane
