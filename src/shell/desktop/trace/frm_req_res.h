// The window that shows what a test sent to a server and what came back.
#pragma once

#include <string>

#include "shell/desktop/trace/trace_window.h"

namespace korvane {

/// Shown with show(), while the test continues to write to it. It opens beside the editor, narrower if there is less space, and
/// over the editor only if there is less than half of the space that it needs.
class frmReqRes : public TraceWindow {
public:
    explicit frmReqRes(QWidget* parent);
    void setRequest(const std::string& text);
    void setResponse(const std::string& text);

private:
    void PlaceBeside(const QWidget& editor);
};

}  // namespace korvane
