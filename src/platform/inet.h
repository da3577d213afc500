// Port: one slot that transfers one URL at a time over HTTP or HTTPS (RFC 9110, RFC 8446).
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/error.h"
#include "platform/check_phases.h"

namespace korvane {

enum class InetAccess { Default = 0, Direct = 1, NamedProxy = 2 };

enum class InetRedirects {
    Follow,    ///< as a browser does
    SameHost,  ///< to another host: OtherHostError; nothing is sent to that host, and its name is not looked up
    None,      ///< the redirect is the answer
};

/// A page redirects to a host that the request does not allow.
class OtherHostError : public Error {
public:
    explicit OtherHostError(const std::string& host) : Error("Redirected to another host: " + host) {}
};

class Inet {
public:
    struct Request {
        std::string URL = {};
        InetAccess AccessType = InetAccess::Default;  ///< Default uses no proxy, whatever the environment says
        std::string Proxy = {};                       ///< "host:port", used with NamedProxy
        int RemotePort = 0;                           ///< 0: the scheme of the URL decides
        std::string UserName = {};                    ///< Basic authentication (RFC 7617); none when empty
        std::string Password = {};
        std::chrono::seconds RequestTimeout{
            60};  ///< for everything together: name, connection, answer, redirects. 0 or less: fails at once
        InetRedirects Redirects = InetRedirects::Follow;
        /// Receives where the time of OpenURL went, whether or not it then throws. Null: nothing is measured.
        CheckPhases* phases = nullptr;
    };

    virtual ~Inet() = default;

    virtual bool StillExecuting() const = 0;

    /// Fetches the page and returns its whole text in UTF-8, whatever the status code of the response is. Blocks until the
    /// response is complete or RequestTimeout has passed, while the event pump runs. Certificates are verified; no connection,
    /// name or session is kept from earlier transfers.
    ///
    /// Throws TypeMismatchError when the response is binary data, Error with a readable reason for every failure, and "Request
    /// cancelled" after Cancel.
    virtual std::string OpenURL(const Request& request) = 0;

    /// Returns the status code (RFC 9110, section 15) of the last answer that was received, whether or not OpenURL then threw; 0:
    /// none.
    virtual int ResponseCode() const = 0;

    /// Begins a request whose page nobody wants to read and returns at once; drops an earlier one that still runs. The pump
    /// carries it on. Throws Error.
    virtual void Start(const Request& request) = 0;

    /// Returns how the started request ended: why it failed, or an empty text if an answer came, whose status ResponseCode
    /// returns. Returns nothing while it runs, and after its end was returned once. While it runs, this must be called about once
    /// a second: its time-outs pass only here.
    virtual std::optional<std::string> Outcome() = 0;

    /// Cancels the running transfer, if any: the OpenURL on the stack throws when control returns to it.
    virtual void Cancel() = 0;
};

}  // namespace korvane
