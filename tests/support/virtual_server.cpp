#include "support/virtual_server.h"

#include <utility>

namespace korvane {

using std::chrono::milliseconds;
using Kind = ServerStep::Kind;

VirtualServer& VirtualServer::Accept(milliseconds after) {
    return Greet(ServerGreeting::Accept, after);
}

VirtualServer& VirtualServer::Refuse(milliseconds after) {
    return Greet(ServerGreeting::Refuse, after);
}

VirtualServer& VirtualServer::Silent() {
    return Greet(ServerGreeting::Silent, milliseconds::zero());
}

VirtualServer& VirtualServer::Speak(std::string text, milliseconds after) {
    return Add({Kind::Speak, std::move(text), after});
}

VirtualServer& VirtualServer::Expect(std::string line) {
    return Add({Kind::Expect, std::move(line)});
}

VirtualServer& VirtualServer::ExpectAnyLine() {
    return Add({Kind::ExpectAny, ""});
}

VirtualServer& VirtualServer::ExpectUpTo(std::string line) {
    return Add({Kind::ExpectUpTo, std::move(line)});
}

VirtualServer& VirtualServer::OnLine(std::string line, std::string answer, milliseconds after) {
    return Expect(std::move(line)).Speak(std::move(answer), after);
}

VirtualServer& VirtualServer::Answer(std::function<std::string(const std::string&)> answer) {
    return Add({Kind::Answer, "", milliseconds(1), std::move(answer)});
}

VirtualServer& VirtualServer::Close(milliseconds after) {
    return Add({Kind::Close, "", after});
}

VirtualServer& VirtualServer::Reset(milliseconds after) {
    return Add({Kind::Reset, "", after});
}

VirtualServer& VirtualServer::Anew() {
    script_ = std::make_shared<Script>();
    return *this;
}

std::shared_ptr<const VirtualServer::Script> VirtualServer::BeginConnection() {
    ++connections_;
    lines_.clear();
    return script_;
}

void VirtualServer::NoteMistake(const std::string& expected, const std::string& got) {
    if (mistake_.empty()) mistake_ = "expected '" + expected + "', got '" + got + "'";
}

VirtualServer& VirtualServer::Greet(ServerGreeting greeting, milliseconds after) {
    Script& script = Changeable();
    script.greeting = greeting;
    script.greetAfter = after;
    return *this;
}

VirtualServer& VirtualServer::Take(milliseconds delay, std::size_t bytes) {
    Changeable().takeAfter = delay;
    Changeable().takeAtOnce = bytes;
    return *this;
}

VirtualServer& VirtualServer::TakeNothing() {
    Changeable().takeAfter.reset();
    return *this;
}

VirtualServer& VirtualServer::Add(ServerStep step) {
    Changeable().steps.push_back(std::move(step));
    return *this;
}

VirtualServer::Script& VirtualServer::Changeable() {
    // Connections that stand keep the script they began with.
    if (script_.use_count() > 1) script_ = std::make_shared<Script>(*script_);
    return *script_;
}

}  // namespace korvane
