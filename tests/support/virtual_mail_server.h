// A mail server in the virtual world that takes mail and remembers it:
//
//     VirtualMailServer mails(net.Host("mail.example").Port(25));
//     mails.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<bad"); };
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/virtual_server.h"

namespace korvane {

class VirtualMailServer {
public:
    struct Mail {
        std::string from;                     ///< of the envelope, in angle brackets
        std::vector<std::string> recipients;  ///< likewise
        std::string text;                     ///< headers and body, without the stuffed dots
    };

    /// Greets from the next connection on; offers AUTH PLAIN and takes every login. Must outlive the port's connections.
    explicit VirtualMailServer(VirtualServer& port) { Serve(port); }

    /// What `refuse` says of a command is answered with 550. The text of a mail is not asked about.
    std::function<bool(const std::string& line)> refuse;

    std::vector<Mail> mails;          ///< the accepted ones
    std::vector<std::string> logins;  ///< the Base64 texts

    void Serve(VirtualServer& port);

private:
    std::string Answer(const std::string& line);
    std::string AnswerCommand(const std::string& line);
    std::string TakeText(const std::string& line);

    enum class Waiting { Command, Login, Text };
    Waiting waiting_ = Waiting::Command;
    Mail mail_;
};

}  // namespace korvane
