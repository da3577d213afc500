#include "shell/desktop/trace/conversation_viewer.h"

namespace korvane {

void ConversationViewer::setRequest(const std::string& text) {
    if (frmReqRes* form = TheForm()) form->setRequest(text);
}

void ConversationViewer::setResponse(const std::string& text) {
    if (frmReqRes* form = TheForm()) form->setResponse(text);
}

}  // namespace korvane
