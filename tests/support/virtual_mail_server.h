// A mail server in the virtual world that takes mail and remembers it:
//
//     VirtualMailServer mails(net.Host("mail.example").Port(25));
//     mails.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<bad"); };
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
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

    void Serve(VirtualServer& port) {
        port.Anew().Speak("220 mail.example ready\r\n").Answer([this](const std::string& line) { return Answer(line); });
    }

private:
    enum class Waiting { Command, Login, Text };

    std::string Answer(const std::string& line) {
        if (waiting_ == Waiting::Text && line != ".") {
            mail_.text += line.substr(line.starts_with('.') ? 1 : 0) + "\r\n";
            return "";
        }
        switch (std::exchange(waiting_, Waiting::Command)) {
            case Waiting::Text:
                mails.push_back(std::exchange(mail_, {}));
                return "250 queued\r\n";
            case Waiting::Login:
                logins.push_back(line);
                return "235 welcome\r\n";
            default:
                return refuse && refuse(line) ? "550 5.7.1 refused\r\n" : AnswerCommand(line, ToLower(line));
        }
    }
    std::string AnswerCommand(const std::string& line, const std::string& command) {
        const bool extended = command.starts_with("ehlo");
        if (extended || command.starts_with("helo")) mail_ = {};  // a new conversation
        if (command.starts_with("mail from:")) mail_.from = line.substr(10);
        if (command.starts_with("rcpt to:")) mail_.recipients.push_back(line.substr(8));
        if (command == "auth plain") waiting_ = Waiting::Login;
        if (command == "data" && !mail_.recipients.empty()) waiting_ = Waiting::Text;
        if (waiting_ != Waiting::Command) return waiting_ == Waiting::Login ? "334 \r\n" : "354 go on\r\n";
        if (command == "data") return "503 no recipient\r\n";
        if (command == "quit") return "221 bye\r\n";
        return extended ? "250-mail.example\r\n250 AUTH PLAIN\r\n" : "250 ok\r\n";
    }

    Waiting waiting_ = Waiting::Command;
    Mail mail_;
};

}  // namespace korvane
