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
        InetAccess AccessType = InetAccess::Default;  ///< Default takes no proxy, whatever the environment says
        std::string Proxy = {};                       ///< "host:port", read with NamedProxy
        int RemotePort = 0;                           ///< 0: the scheme of the URL decides
        std::string UserName = {};                    ///< Basic authentication (RFC 7617); none when blank
        std::string Password = {};
        std::chrono::seconds RequestTimeout{
            60};  ///< for everything together: name, connection, answer, redirects. 0 or less: no time at all
    };

    virtual ~Inet() = default;

    virtual bool StillExecuting() const = 0;

    /// Fetches the page and returns its whole text, in UTF-8, whatever the status code of the answer is. Blocks until the answer
    /// or RequestTimeout while the event pump runs. Redirects are followed as a browser does; certificates are verified; no
    /// connection, name or session is kept from earlier transfers.
    ///
    /// Throws TypeMismatchError when the answer is binary data, and Error with the reason in words for every failure; "Request
    /// cancelled" after Cancel.
    virtual std::string OpenURL(const Request& request) = 0;

    /// Ends the running transfer, if there is one: the OpenURL on the stack throws when control gets back to it.
    virtual void Cancel() = 0;
};

}  // namespace korvane
