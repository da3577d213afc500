// Port: one slot that transfers one URL at a time over HTTP or HTTPS (RFC 9110, RFC 8446).
#pragma once

#include <chrono>
#include <string>

namespace korvane {

enum class InetAccess { Default = 0, Direct = 1, NamedProxy = 2 };

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
    };

    virtual ~Inet() = default;

    virtual bool StillExecuting() const = 0;

    /// Fetches the page and returns its whole text in UTF-8, whatever the status code of the response is. Blocks until the
    /// response is complete or RequestTimeout has passed, while the event pump runs. Redirects are followed as a browser does;
    /// certificates are verified; no connection, name or session is kept from earlier transfers.
    ///
    /// Throws TypeMismatchError when the response is binary data, Error with a readable reason for every failure, and "Request
    /// cancelled" after Cancel.
    virtual std::string OpenURL(const Request& request) = 0;

    /// Cancels the running transfer, if any: the OpenURL on the stack throws when control returns to it.
    virtual void Cancel() = 0;
};

}  // namespace korvane
