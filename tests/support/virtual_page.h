// What a scripted web server gives for one URL: a list of answers, one for each request, of which the last one stays for good.
//
//     net.Page("http://10.0.0.2/").Answer("", 5ms).Fail("Connection refused", 1ms).Answer("Welcome", 40ms);
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/inet.h"

namespace korvane {

struct PageAnswer {
    enum class Kind { Body, Binary, Failure, Silent };
    Kind kind = Kind::Silent;
    std::string text = {};  ///< the body, or the failure in words
    std::chrono::milliseconds after{0};
};

class VirtualPage {
    using Milliseconds = std::chrono::milliseconds;
    using Kind = PageAnswer::Kind;

public:
    VirtualPage& Answer(const std::string& body, Milliseconds after = Milliseconds(1)) { return Add({Kind::Body, body, after}); }
    VirtualPage& AnswerBinary(Milliseconds after = Milliseconds(1)) { return Add({Kind::Binary, "", after}); }
    VirtualPage& Fail(const std::string& why, Milliseconds after = Milliseconds(1)) { return Add({Kind::Failure, why, after}); }
    /// Nothing comes until the time of the request is over. So does a page without any answer.
    VirtualPage& Silent() { return Add({}); }
    /// An answer as data.
    VirtualPage& Add(const PageAnswer& answer) {
        return Decide([answer] { return answer; });
    }
    /// The answer is made when it is asked for.
    VirtualPage& Decide(std::function<PageAnswer()> answer) {
        answers_.push_back(std::move(answer));
        return *this;
    }

    /// Forgets the answers.
    VirtualPage& Anew() {
        answers_.clear();
        next_ = 0;
        return *this;
    }

    int Requests() const { return requests_; }
    /// The latest request; an empty one before the first.
    const Inet::Request& LastRequest() const { return lastRequest_; }

    // For VirtualInet.
    PageAnswer Take(const Inet::Request& request) {
        ++requests_;
        lastRequest_ = request;
        if (answers_.empty()) return {};
        return answers_[next_ + 1 < answers_.size() ? next_++ : next_]();
    }

private:
    std::vector<std::function<PageAnswer()>> answers_;
    std::size_t next_ = 0;
    int requests_ = 0;
    Inet::Request lastRequest_;
};

}  // namespace korvane
