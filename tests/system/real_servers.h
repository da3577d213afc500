// Real servers from Debian's packages on 127.0.0.1, each with a private folder, a configuration of its own and free ports, and
// without any right of root. A server is there from its constructor, which returns when it accepts connections, to its
// destructor.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "system/process.h"

namespace korvane::test {

/// Ports that nobody listens on at the moment, some way above `low` and outside the range from which the system takes ports of
/// clients.
std::vector<int> FreePorts(std::size_t count, int low = 61000);

/// A process that serves ports. Throws with the program's output when it does not accept connections within 20 seconds.
class Server {
public:
    Server(const std::vector<std::string>& command, const PrivateFolder& folder, const std::vector<int>& ports,
           Process::Rights rights = Process::Rights::Nobody, const std::string& address = "127.0.0.1");

    const Process& Running() const { return process_; }

private:
    Process process_;
};

/// nginx: pages over HTTP and over HTTPS with a good and three bad certificates.
class WebServer {
public:
    WebServer();

    const std::vector<int> ports = FreePorts(5, 20000);
    const int http = ports[0];
    const int https = ports[1];  ///< for "localhost" and 127.0.0.1, by the test authority
    const int httpsSelfSigned = ports[2];
    const int httpsOtherName = ports[3];
    const int httpsExpired = ports[4];
    const int httpAbove = FreePorts(1)[0];  ///< the pages of http on a port above 32767

    /// The test authority's certificate, for the client to trust.
    std::string Authority() const { return folder_.Path("authority.pem"); }

    /// How many answers were given under this path ("/page") so far.
    int Answers(std::string_view path) const;

private:
    std::vector<std::string> Prepare() const;
    void MakeCertificates() const;
    void WritePages() const;
    std::string Configuration() const;
    PrivateFolder folder_;
    Server server_;
};

/// squid: a forward proxy.
class ProxyServer {
public:
    ProxyServer();
    ~ProxyServer();
    const int port = FreePorts(1)[0];
    /// One line for each request that went through.
    std::string Log() const { return folder_.Read("access.log"); }

private:
    std::vector<std::string> Prepare() const;
    const std::string name_ = "korvane" + std::to_string(port);
    PrivateFolder folder_;
    Server server_;
};

/// The user and the group that a server finds itself as.
std::string ServerUser();
std::string ServerGroup();

/// What every dovecot here is told: to touch nothing outside its folder, to speak these protocols and to say on its output what
/// happens.
std::string DovecotBasics(const PrivateFolder& folder, const std::string& protocols);
std::string DovecotListener(const std::string& protocol, int port);

/// dovecot: POP3, IMAP and SMTP for submission (RFC 6409).
class MailServer {
public:
    MailServer();
    const std::vector<int> ports = FreePorts(3);
    const int pop3 = ports[0];
    const int imap = ports[1];
    const int smtp = ports[2];

private:
    std::vector<std::string> Prepare() const;
    PrivateFolder folder_;
    Server server_;
};

/// vsftpd.
class FtpServer {
public:
    FtpServer();
    const int port = FreePorts(1)[0];

private:
    std::vector<std::string> Prepare() const;
    PrivateFolder folder_;
    Server server_;
};

}  // namespace korvane::test
