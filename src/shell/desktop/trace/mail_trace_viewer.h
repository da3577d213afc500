// What mail servers are told and answer, in a window of its own as long as the operator has it open.
#pragma once

#include <string>

#include "notify/mail_trace.h"
#include "shell/desktop/toolkit/modeless_form.h"
#include "shell/desktop/trace/frm_debug.h"

namespace korvane {

class MailTraceViewer : public MailTrace {
public:
    /// The window over which Show puts it. When that goes, this window goes with it.
    void SetParent(QWidget* parent) { form_.SetParent(parent); }
    /// Null when it is not open.
    frmDebug* TheForm() const { return form_.TheForm(); }

    bool Visible() const { return form_.Visible(); }
    void Show() { form_.Show(); }
    void setMsg(const std::string& sent) override;
    void setReceiveMsg(const std::string& received) override;

private:
    ModelessForm<frmDebug> form_;
};

}  // namespace korvane
