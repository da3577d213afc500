// Transfer slots on libcurl.
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/inet.h"

namespace korvane {

/// Removes spaces and line ends around the address and percent-encodes spaces, quotes, angle brackets and non-ASCII bytes after
/// the host, as a browser does (RFC 3986, section 2.1); existing encodings stay. The host stays unchanged: a mistake in it is an
/// error of the transfer.
std::string EncodeUrl(std::string_view typed);

/// Everything that libcurl allocates for a transfer lives as long as the transfer. Only http and https are allowed, also after a
/// redirect; up to 20 redirects are followed, and credentials are not sent on to another host or port. Cookies live for one
/// transfer. A body is binary if it contains a NUL byte or is declared as a picture, sound, film or archive; a body of more than
/// 64 MB is an error.
class CurlInet : public Inet {
public:
    struct Options {
        std::string caBundle = {};   ///< file of certificate authorities to trust instead of the system's; empty: the system's
        std::string userAgent = {};  ///< not sent when empty
    };

    /// `events` and `clock` must outlive this.
    CurlInet(Events& events, const Clock& clock, Options options);

    bool StillExecuting() const override { return transfer_ != nullptr; }

    /// Throws Error("Still executing last request") when called from an event of its own wait. Failures have libcurl's texts.
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
