#include "notify/pop_box.h"

#include <algorithm>
#include <chrono>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kLineLimit = 60s;
constexpr auto kWholeLimit = 5min;
constexpr int kMostMails = 200;
constexpr std::size_t kLongestSubject = 1000;
constexpr std::size_t kMostUnread = 1'000'000;

}  // namespace

PopBox::PopBox(TcpSocket& socket, const Clock& clock, Events& events)
    : socket_(socket),
      clock_(clock),
      events_(events),
      wire_(socket, clock, events, nullptr,
            {.dataArrival =
                 [this] {
                     const std::string more = socket_.GetData();
                     if (arrived_.size() < kMostUnread) arrived_ += more;
                 },
             .close = {},
             .error = {}}) {}

PopBox::Found PopBox::Take(const Account& account, const std::string& subject) {
    arrived_.clear();
    end_ = clock_.GetTickCount() + kWholeLimit;
    try {
        const Found found = Converse(account, subject);
        socket_.Close();
        return found;
    } catch (...) {
        socket_.Close();
        throw;
    }
}

PopBox::Found PopBox::Converse(const Account& account, const std::string& subject) {
    wire_.Open(account.host, account.port);
    if (account.port == kPopTlsPort) {
        const std::string problem = wire_.Encrypt(account.host, account.authorities);
        if (!problem.empty()) throw Error(problem);
    }
    Require("", "the mailbox did not greet");
    Require("USER " + account.user, "the mailbox refused the user");
    Require("PASS " + account.password, "the mailbox refused the password");
    const int count = CountOfMails();
    for (int mail = count; mail > std::max(0, count - kMostMails); --mail) {
        if (!SubjectOf(mail).starts_with(subject)) continue;
        const bool deleted = IgnoreErrors([&] {
            Require("DELE " + std::to_string(mail), "the mail could not be deleted");
            Require("QUIT", "the mailbox did not end the session");  // which is when it deletes
        });
        return deleted ? Found::Deleted : Found::Kept;
    }
    Require("QUIT", "the mailbox did not end the session");
    return Found::No;
}

int PopBox::CountOfMails() {
    Require("STAT", "the mailbox did not say how many mails it has");
    const std::string number = Trim(reply_.substr(std::min<std::size_t>(reply_.size(), 4)));
    int count = 0;
    for (std::size_t at = 0; at < number.size() && at < 6 && number[at] >= '0' && number[at] <= '9'; ++at)
        count = count * 10 + (number[at] - '0');
    return count;
}

// A server that has no TOP sends the whole mail. What quotes the mail that is looked for, such as the notice that it could not be
// delivered, has another subject.
std::string PopBox::SubjectOf(int mail) {
    constexpr std::string_view kField = "Subject:";
    const std::string number = std::to_string(mail);
    if (!IsOk("TOP " + number + " 0")) Require("RETR " + number, "a mail could not be read");
    std::string subject;
    bool inHead = true, inSubject = false;
    for (std::string line = ReadLine(); line != "."; line = ReadLine()) {
        inHead = inHead && !line.empty();
        const bool goesOn = line.starts_with(' ') || line.starts_with('\t');
        inSubject = inHead && (goesOn ? inSubject : EqualsNoCase(line.substr(0, kField.size()), kField));
        if (inSubject && subject.size() < kLongestSubject) subject += goesOn ? line : line.substr(kField.size());
    }
    return Trim(subject);
}

bool PopBox::IsOk(const std::string& line) {
    if (!line.empty()) wire_.Send(line + "\r\n", "");
    reply_ = ReadLine();
    return reply_.starts_with("+OK");
}

void PopBox::Require(const std::string& line, const std::string& what) {
    if (!IsOk(line)) throw Error(what + ": " + Left(WithoutControls(ToUtf8(reply_)), 200));
}

std::string PopBox::ReadLine() {
    const auto ended = [this] { return !wire_.Failure().empty() || socket_.State() != SocketState::Connected; };
    const bool connecting = socket_.State() != SocketState::Connected;
    const auto hasLine = [this] { return Holds(arrived_, "\n"); };
    const auto limit = std::min<std::chrono::milliseconds>(kLineLimit, end_ - clock_.GetTickCount());
    WaitFor(events_, clock_, limit, [&] { return hasLine() || !wire_.Failure().empty() || (!connecting && ended()); });
    if (!hasLine())
        throw Error(Or(wire_.Failure(), ended() ? "the mailbox closed the connection" : "the mailbox did not answer"));
    const std::size_t end = arrived_.find('\n');
    std::string line = arrived_.substr(0, end);
    arrived_.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace korvane
