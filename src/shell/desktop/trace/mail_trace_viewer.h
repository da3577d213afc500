// Shows the conversations with mail servers in a separate window while the operator has it open.
#pragma once

#include <string>

#include "notify/mail_trace.h"
#include "shell/desktop/toolkit/modeless_form.h"
#include "shell/desktop/trace/frm_debug.h"

namespace korvane {

class MailTraceViewer : public MailTrace {
public:
    /// Sets the window over which Show puts it. When that is destroyed, this window is too.
    void SetParent(QWidget* parent) { form_.SetParent(parent); }
    /// Returns null when it is not open.
    frmDebug* TheForm() const { return form_.TheForm(); }

    bool Visible() const { return form_.Visible(); }
    void Show() { form_.Show(); }
    void setMsg(const std::string& sent) override;
    void setReceiveMsg(const std::string& received) override;

private:
    ModelessForm<frmDebug> form_;
};

}  // namespace korvane
