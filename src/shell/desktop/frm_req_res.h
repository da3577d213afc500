// The window with what a test sent to a server and what came back.
#pragma once

#include <string>

#include "shell/desktop/trace_window.h"

namespace korvane {

/// Shown with show(): the test goes on writing to it.
class frmReqRes : public TraceWindow {
public:
    explicit frmReqRes(QWidget* parent);
    void setRequest(const std::string& text);
    void setResponse(const std::string& text);
};

}  // namespace korvane
