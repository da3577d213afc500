// The window that shows the conversations with mail servers, line by line.
#pragma once

#include <string>

#include "shell/desktop/trace/trace_window.h"

namespace korvane {

/// Shown with show(), while mail continues to write to it.
class frmDebug : public TraceWindow {
public:
    explicit frmDebug(QWidget* parent);
    void setMsg(const std::string& sent);
    void setReceiveMsg(const std::string& received);
};

}  // namespace korvane
