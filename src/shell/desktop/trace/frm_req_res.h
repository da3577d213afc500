// The window with what a test sent to a server and what came back.
#pragma once

#include <string>

#include "shell/desktop/trace/trace_window.h"

namespace korvane {

/// Shown with show(): the test goes on writing to it. It opens beside the editor, narrower where there is less room, and over it
/// only where there is not half of the room that it wants.
class frmReqRes : public TraceWindow {
public:
    explicit frmReqRes(QWidget* parent);
    void setRequest(const std::string& text);
    void setResponse(const std::string& text);

private:
    void PlaceBeside(const QWidget& editor);
};

}  // namespace korvane
