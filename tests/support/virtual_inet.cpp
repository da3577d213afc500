#include "support/virtual_inet.h"

#include <algorithm>

#include "base/error.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;
using Kind = PageAnswer::Kind;

/// Sets a flag for the time of its life.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

}  // namespace

std::string VirtualInet::OpenURL(const Request& request) {
    if (executing_) throw Error("Still executing last request");
    const Raised executing(executing_);
    cancelled_ = false;
    const PageAnswer answer = AnswerTo(request);
    Await(answer, std::max(milliseconds::zero(), milliseconds(request.RequestTimeout)));
    if (answer.kind == Kind::Binary) throw TypeMismatchError();
    if (answer.kind == Kind::Failure) throw Error(answer.text);
    return answer.text;
}

PageAnswer VirtualInet::AnswerTo(const Request& request) {
    const std::string host = HostOfUrl(request.URL);
    if (!net_.NetworkThere()) return {Kind::Failure, "Could not resolve host: " + host, milliseconds(1)};
    VirtualPage* page = net_.FindPage(request.URL);
    if (page == nullptr) return {Kind::Failure, "Could not resolve host: " + host, milliseconds(1)};
    const PageAnswer answer = page->Take(request);
    const VirtualHost* machine = net_.FindHost(host);
    return machine != nullptr && machine->IsDown() ? PageAnswer{} : answer;
}

void VirtualInet::Await(const PageAnswer& answer, milliseconds limit) {
    VirtualWorld& world = net_.World();
    bool arrived = false;
    EventId arrival;
    if (answer.kind != Kind::Silent) arrival = world.After(answer.after, [&arrived] { arrived = true; });
    WaitFor(world.events, world.clock, limit, [&] { return arrived || cancelled_; });
    world.Cancel(arrival);
    if (cancelled_) throw Error("Request cancelled");
    if (!arrived) throw Error("Operation timed out after " + std::to_string(limit.count()) + " milliseconds");
}

void VirtualInet::Cancel() {
    cancelled_ = executing_;
}

}  // namespace korvane
