// A transfer slot in the virtual world: gives what the pages of a VirtualNet are scripted to give, and waits for it as a real one
// does, with the pump running.
#pragma once

#include <algorithm>
#include <string>

#include "base/error.h"
#include "base/raised_flag.h"
#include "platform/inet.h"
#include "platform/wait.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualInet : public Inet {
    using Milliseconds = std::chrono::milliseconds;
    using Kind = PageAnswer::Kind;

public:
    explicit VirtualInet(VirtualNet& net) : net_(net) {}
    ~VirtualInet() override { net_.World().Cancel(arrival_); }

    bool StillExecuting() const override { return executing_; }
    /// As the port says. Silence ends in "Operation timed out after <ms> milliseconds".
    std::string OpenURL(const Request& request) override {
        if (executing_) throw Error("Still executing last request");
        const RaisedFlag executing(executing_);
        cancelled_ = false;
        responseCode_ = 0;
        const PageAnswer answer = AnswerTo(request);
        Await(answer, std::max(Milliseconds(0), Milliseconds(request.RequestTimeout)));
        if (request.phases != nullptr)
            *request.phases = {.firstByte = answer.after, .whole = answer.after, .certificateEnd = answer.certificateEnd};
        if (answer.kind != Kind::Failure) responseCode_ = answer.status;
        if (answer.kind == Kind::OtherHost && request.Redirects == InetRedirects::SameHost) throw OtherHostError(answer.text);
        if (answer.kind == Kind::Binary) throw TypeMismatchError();
        if (answer.kind == Kind::Failure) throw Error(answer.text);
        return answer.text;
    }
    int ResponseCode() const override { return responseCode_; }
    void Start(const Request& request) override {
        net_.World().Cancel(arrival_);
        outcome_.reset();
        const PageAnswer answer = AnswerTo(request);
        const bool silent = answer.kind == Kind::Silent;
        arrival_ = net_.World().After(silent ? request.RequestTimeout : answer.after, [=, this] {
            responseCode_ = silent || answer.kind == Kind::Failure ? 0 : answer.status;
            outcome_ = silent ? "Operation timed out" : answer.kind == Kind::Failure ? answer.text : "";
        });
    }
    std::optional<std::string> Outcome() override { return std::exchange(outcome_, std::nullopt); }
    void Cancel() override { cancelled_ = executing_; }

private:
    PageAnswer AnswerTo(const Request& request) {
        const auto scheme = request.URL.find("://");
        const auto begin = scheme == std::string::npos ? 0 : scheme + 3;
        const std::string host = request.URL.substr(begin, request.URL.find_first_of(":/?#", begin) - begin);
        VirtualPage* const page = net_.NetworkThere() ? net_.FindPage(request.URL) : nullptr;
        if (page == nullptr) return {Kind::Failure, "Could not resolve host: " + host, Milliseconds(1)};
        const VirtualHost* machine = net_.FindHost(host);
        const PageAnswer answer = page->Take(request);
        return machine != nullptr && machine->IsDown() ? PageAnswer{} : answer;
    }
    void Await(const PageAnswer& answer, Milliseconds limit) {
        bool arrived = false;
        EventId arrival;
        if (answer.kind != Kind::Silent) arrival = net_.World().After(answer.after, [&arrived] { arrived = true; });
        WaitFor(net_.World().events, net_.World().clock, limit, [&] { return arrived || cancelled_; });
        net_.World().Cancel(arrival);
        if (cancelled_) throw Error("Request cancelled");
        if (!arrived) throw Error("Operation timed out after " + std::to_string(limit.count()) + " milliseconds");
    }

    VirtualNet& net_;
    bool executing_ = false, cancelled_ = false;
    int responseCode_ = 0;
    EventId arrival_;
    std::optional<std::string> outcome_;
};

}  // namespace korvane
