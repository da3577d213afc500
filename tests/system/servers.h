// Real servers from Debian's packages and played ones, all on loopback addresses. The real ones are started by the first test that
// wants them and stay for the others.
#pragma once

#include <arpa/inet.h>

#include <map>
#include <stdexcept>
#include <vector>

#include "system/program.h"

namespace korvane::test {

/// The first of the ports of all real servers. nginx has +0 (HTTP), +1 (HTTPS) and +2 to +4 (HTTPS with certificates that are
/// expired, of an unknown authority, of another name) and +20000 (HTTP again). Nobody listens on +10.
const int kBase = 20000 + getpid() % 1000 * 12;
const int kPop3 = kBase + 5, kImap = kBase + 6, kSmtp = kBase + 7, kNobody = kBase + 10;

inline bool Connects(const std::string& address, int port) {
    const Descriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in name{AF_INET, htons(static_cast<std::uint16_t>(port)), {inet_addr(address.c_str())}, {}};
    return connect(client.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
}

struct Server {
    /// Throws with the server's words when it does not come up.
    Server(const std::string& command, const std::function<bool(const Server&)>& isUp) : process("exec " + command, folder) {
        if (!Waited([&] { return process.Ended(0s) || isUp(*this); }) || process.Ended(0s))
            throw std::runtime_error(command + ": " + Output());
    }
    std::string Output() const { return folder.Read("output"); }

    Folder folder;
    Process process;
};

/// A server of servers.sh with the last of its ports.
inline const Server& Real(const std::string& name, int first = kBase, int last = kBase + 20000) {
    static std::map<std::string, Server> running;
    const std::string command = kSystemTests + "servers.sh " + name + " " + std::to_string(first);
    return running.try_emplace(name, command, [&](const Server&) { return Connects("127.0.0.1", last); }).first->second;
}

/// Servers of played.py, with their mails in the folder "mails".
struct Played : Server {
    explicit Played(const std::string& servers)
        : Server("/usr/bin/python3 " + kSystemTests + "played.py " + servers,
                 [](const Server& self) { return Holds(self.Output(), "ready\n"); }) {}
};

}  // namespace korvane::test
