#include "shell/desktop/trace/mail_trace_viewer.h"

namespace korvane {

void MailTraceViewer::setMsg(const std::string& sent) {
    if (frmDebug* form = TheForm()) form->setMsg(sent);
}

void MailTraceViewer::setReceiveMsg(const std::string& received) {
    if (frmDebug* form = TheForm()) form->setReceiveMsg(received);
}

}  // namespace korvane
