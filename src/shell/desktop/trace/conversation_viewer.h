// Shows what a test sends and receives, in a separate window while the operator has it open.
#pragma once

#include <string>

#include "engine/collaborators.h"
#include "shell/desktop/toolkit/modeless_form.h"
#include "shell/desktop/trace/frm_req_res.h"

namespace korvane {

class ConversationViewer : public ConversationWindow {
public:
    /// Sets the window over which Show puts it. When that is destroyed, this window is too.
    void SetParent(QWidget* parent) { form_.SetParent(parent); }
    /// Returns null when it is not open.
    frmReqRes* TheForm() const { return form_.TheForm(); }

    bool Visible() const override { return form_.Visible(); }
    void Show() override { form_.Show(); }
    void setRequest(const std::string& text) override;
    void setResponse(const std::string& text) override;

private:
    ModelessForm<frmReqRes> form_;
};

}  // namespace korvane
