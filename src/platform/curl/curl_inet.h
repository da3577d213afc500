// Transfer slots on libcurl.
#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/inet.h"

namespace korvane {

/// Everything libcurl allocates for a transfer lives as long as the transfer. Only http and https are spoken, also after a
/// redirect; there may be 20 of them, and credentials do not follow to another host or port. Cookies live for one transfer. A
/// body that holds a NUL byte or says that it is a picture, sound, film or archive is binary; one of more than 64 MB is an
/// error.
class CurlInet : public Inet {
public:
    struct Options {
        std::string caBundle =
            {};  ///< file of the certificate authorities to trust instead of the system's; blank for the system's
        std::string userAgent = {};  ///< not sent when blank
    };

    /// `events` and `clock` must outlive this.
    CurlInet(Events& events, const Clock& clock, Options options);

    bool StillExecuting() const override { return transfer_ != nullptr; }

    /// Throws Error("Still executing last request") when called from an event of its own wait. The words of failures are
    /// libcurl's.
    std::string OpenURL(const Request& request) override;
    void Cancel() override;

private:
    Events& events_;
    const Clock& clock_;
    const Options options_;
    const std::string trustFolder_;
    class CurlPump* transfer_ = nullptr;  ///< of the OpenURL on the stack
};

}  // namespace korvane
