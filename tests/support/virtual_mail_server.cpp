#include "support/virtual_mail_server.h"

#include <utility>

#include "base/text.h"

namespace korvane {

void VirtualMailServer::Serve(VirtualServer& port) {
    port.Anew().Speak("220 mail.example ready\r\n").Answer([this](const std::string& line) { return Answer(line); });
}

std::string VirtualMailServer::Answer(const std::string& line) {
    switch (waiting_) {
        case Waiting::Text:
            return TakeText(line);
        case Waiting::Login:
            logins.push_back(line);
            waiting_ = Waiting::Command;
            return "235 welcome\r\n";
        case Waiting::Command:
            break;
    }
    return refuse && refuse(line) ? "550 5.7.1 refused\r\n" : AnswerCommand(line);
}

std::string VirtualMailServer::AnswerCommand(const std::string& line) {
    const std::string command = ToLower(line);
    if (command.starts_with("ehlo") || command.starts_with("helo")) {
        mail_ = {};  // a new conversation
        return command[0] == 'e' ? "250-mail.example\r\n250 AUTH PLAIN\r\n" : "250 mail.example\r\n";
    }
    if (command == "auth plain") {
        waiting_ = Waiting::Login;
        return "334 \r\n";
    }
    if (command.starts_with("mail from:")) mail_.from = line.substr(10);
    if (command.starts_with("rcpt to:")) mail_.recipients.push_back(line.substr(8));
    if (command == "quit") return "221 bye\r\n";
    if (command != "data") return "250 ok\r\n";
    if (mail_.recipients.empty()) return "503 no recipient\r\n";
    waiting_ = Waiting::Text;
    return "354 go on\r\n";
}

std::string VirtualMailServer::TakeText(const std::string& line) {
    if (line != ".") {
        mail_.text += (line.starts_with('.') ? line.substr(1) : line) + "\r\n";
        return "";
    }
    waiting_ = Waiting::Command;
    mails.push_back(std::exchange(mail_, {}));
    return "250 queued\r\n";
}

}  // namespace korvane
