#include "support/virtual_tcp_socket.h"

#include <algorithm>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;
using Kind = ServerStep::Kind;

constexpr int kNotConnected = 10057;
constexpr int kAlreadyOpen = 10056;
constexpr int kBroken = 10054;
constexpr int kRefused = 10061;
constexpr int kHostNotFound = 11001;

bool Expects(const ServerStep& step) {
    return step.kind == Kind::Expect || step.kind == Kind::ExpectUpTo || step.kind == Kind::ExpectAny ||
           step.kind == Kind::Answer;
}

}  // namespace

VirtualTcpSocket::~VirtualTcpSocket() {
    net_.World().Cancel(pending_);
    net_.World().Cancel(sending_);
}

void VirtualTcpSocket::SetRemotePort(std::int32_t port) {
    if (port < 1 || port > 65535) throw Error("Invalid port number: " + std::to_string(port));
    port_ = port;
}

void VirtualTcpSocket::Connect() {
    if (state_ != SocketState::Closed) throw Error("The socket is not closed", kAlreadyOpen);
    if (!net_.NetworkThere()) throw Error("No network is available", kSocketAddressNotAvailable);
    arrived_.clear();
    sent_.clear();
    step_ = 0;
    script_.reset();
    server_ = nullptr;
    remote_ = net_.FindHost(host_);
    if (IsDottedAddress(host_)) {
        Knock();
    } else {
        LookUp();
    }
}

void VirtualTcpSocket::Next(milliseconds delay, Stage stage) {
    pending_ = net_.World().After(delay, [this, stage] { (this->*stage)(); });
}

void VirtualTcpSocket::LookUp() {
    using Outcome = VirtualHost::Lookup::Outcome;
    const VirtualHost::Lookup lookup = remote_ ? remote_->HowFound() : VirtualHost::Lookup{Outcome::Unknown};
    state_ = SocketState::ResolvingHost;
    if (lookup.outcome == Outcome::Found) Next(lookup.after, &VirtualTcpSocket::Found);
    if (lookup.outcome == Outcome::Unknown) Next(lookup.after, &VirtualTcpSocket::NotFound);
}

void VirtualTcpSocket::NotFound() {
    Fail(kHostNotFound, "Host not found");
}

void VirtualTcpSocket::Found() {
    state_ = SocketState::HostResolved;
    Next(milliseconds(1), &VirtualTcpSocket::Knock);
}

void VirtualTcpSocket::Knock() {
    state_ = SocketState::Connecting;
    if (remote_ == nullptr || remote_->IsDown()) return;
    server_ = remote_->FindPort(port_);
    if (server_ == nullptr) return Next(milliseconds(1), &VirtualTcpSocket::Refused);
    script_ = server_->BeginConnection();
    if (script_->greeting == ServerGreeting::Accept) Next(script_->greetAfter, &VirtualTcpSocket::Accepted);
    if (script_->greeting == ServerGreeting::Refuse) Next(script_->greetAfter, &VirtualTcpSocket::Refused);
}

void VirtualTcpSocket::Refused() {
    if (remote_->IsDown()) return;
    Fail(kRefused, "Connection refused");
}

void VirtualTcpSocket::Accepted() {
    if (remote_->IsDown()) return;
    state_ = SocketState::Connected;
    const std::shared_ptr<const VirtualServer::Script> script = script_;
    if (Events().connect) Events().connect();
    if (script_ == script && state_ == SocketState::Connected) BeginStep();
}

void VirtualTcpSocket::BeginStep() {
    while (step_ < script_->steps.size()) {
        const ServerStep& step = script_->steps[step_];
        if (step.kind == Kind::Answer) return AnswerLines(step);
        if (!Expects(step)) return Next(step.after, &VirtualTcpSocket::EndStep);
        if (!TakeLines(step)) return;
        ++step_;
    }
    while (const auto line = TakeLine())
        server_->NoteLine(*line);
}

void VirtualTcpSocket::AnswerLines(const ServerStep& step) {
    const bool speaking = !answers_.empty();
    while (const auto line = TakeLine()) {
        server_->NoteLine(*line);
        answers_ += step.answer(*line);
    }
    if (!speaking && !answers_.empty()) Next(step.after, &VirtualTcpSocket::SpeakAnswers);
}

void VirtualTcpSocket::SpeakAnswers() {
    if (remote_->IsDown()) return;
    arrived_ += std::exchange(answers_, {});
    if (Events().dataArrival) Events().dataArrival();
}

// One step that the server does on its own. The handler comes last: it may close the socket and connect it again.
void VirtualTcpSocket::EndStep() {
    if (remote_->IsDown()) return;
    const std::shared_ptr<const VirtualServer::Script> script = script_;
    const ServerStep& step = script->steps[step_++];
    if (step.kind == Kind::Reset) return Fail(kBroken, "Connection reset by peer");
    if (step.kind == Kind::Close) {
        state_ = SocketState::Closing;
        if (Events().close) Events().close();
        return;
    }
    arrived_ += step.text;
    BeginStep();
    if (Events().dataArrival) Events().dataArrival();
}

// Whether the step is over. After a line that is not in the script it never is.
bool VirtualTcpSocket::TakeLines(const ServerStep& step) {
    while (const auto line = TakeLine()) {
        server_->NoteLine(*line);
        if (step.kind == Kind::ExpectAny || *line == step.text) return true;
        if (step.kind == Kind::ExpectUpTo) continue;
        server_->NoteMistake(step.text, *line);
        script_ = std::make_shared<VirtualServer::Script>();
        return false;
    }
    return false;
}

// The next whole line of what the client sent, without its line end.
std::optional<std::string> VirtualTcpSocket::TakeLine() {
    const auto end = sent_.find("\r\n");
    if (end == std::string::npos) return std::nullopt;
    std::string line = sent_.substr(0, end);
    sent_.erase(0, end + 2);
    return line;
}

void VirtualTcpSocket::Fail(int number, const std::string& description) {
    state_ = SocketState::Error;
    if (Events().error) Events().error(number, description);
}

void VirtualTcpSocket::SendData(std::string_view bytes) {
    if (state_ != SocketState::Connected) throw Error("The socket is not connected", kNotConnected);
    if (refusals_ > 0 && refusals_-- > 0) throw Error("The connection was broken", kBroken);
    queued_ += bytes.size();
    if (script_->takeAfter) {
        net_.World().Cancel(sending_);
        sending_ = net_.World().After(*script_->takeAfter, [this] { TakenBySystem(); });
    }
    sent_ += bytes;
    const bool speaking = step_ < script_->steps.size() && !Expects(script_->steps[step_]);
    if (!speaking && !remote_->IsDown()) BeginStep();
}

void VirtualTcpSocket::TakenBySystem() {
    if (state_ != SocketState::Connected || queued_ == 0) return;
    const std::size_t sent = std::min(queued_, script_->takeAtOnce);
    queued_ -= sent;
    if (queued_ > 0) sending_ = net_.World().After(*script_->takeAfter, [this] { TakenBySystem(); });
    if (Events().sendProgress) Events().sendProgress(sent, queued_);
    if (queued_ == 0 && state_ == SocketState::Connected && Events().sendComplete) Events().sendComplete();
}

std::string VirtualTcpSocket::GetData(std::size_t maxLength) {
    std::string taken = arrived_.substr(0, maxLength);
    arrived_.erase(0, taken.size());
    return taken;
}

void VirtualTcpSocket::Close() {
    // What was sent goes out before the end, though nobody hears the answer.
    while (const auto line = TakeLine())
        server_->NoteLine(*line);
    net_.World().Cancel(pending_);
    net_.World().Cancel(sending_);
    queued_ = 0;
    answers_.clear();
    state_ = SocketState::Closed;
    arrived_.clear();
    sent_.clear();
}

}  // namespace korvane
