// What a scripted web server gives for one URL: a list of answers, one for each request, of which the last one stays for good.
//
//     net.Page("http://10.0.0.2/").Answer("", 5ms).Fail("Connection refused", 1ms).Answer("Welcome", 40ms);
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
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
public:
    VirtualPage& Answer(std::string body, std::chrono::milliseconds after = std::chrono::milliseconds(1));
    VirtualPage& AnswerBinary(std::chrono::milliseconds after = std::chrono::milliseconds(1));
    VirtualPage& Fail(std::string reason, std::chrono::milliseconds after = std::chrono::milliseconds(1));
    /// Nothing comes until the time of the request is over. So does a page without any answer.
    VirtualPage& Silent();
    /// An answer as data.
    VirtualPage& Add(PageAnswer answer);

    /// Forgets the answers.
    VirtualPage& Anew();

    int Requests() const { return requests_; }
    /// The latest request; a blank one before the first.
    const Inet::Request& LastRequest() const { return lastRequest_; }

    // For VirtualInet.
    PageAnswer Take(const Inet::Request& request);

private:
    std::vector<PageAnswer> answers_;
    std::size_t next_ = 0;
    int requests_ = 0;
    Inet::Request lastRequest_;
};

}  // namespace korvane
