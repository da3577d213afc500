#include "support/virtual_page.h"

#include <utility>

namespace korvane {

using std::chrono::milliseconds;
using Kind = PageAnswer::Kind;

VirtualPage& VirtualPage::Answer(std::string body, milliseconds after) {
    return Add({Kind::Body, std::move(body), after});
}

VirtualPage& VirtualPage::AnswerBinary(milliseconds after) {
    return Add({Kind::Binary, "", after});
}

VirtualPage& VirtualPage::Fail(std::string reason, milliseconds after) {
    return Add({Kind::Failure, std::move(reason), after});
}

VirtualPage& VirtualPage::Silent() {
    return Add({});
}

VirtualPage& VirtualPage::Anew() {
    answers_.clear();
    next_ = 0;
    return *this;
}

PageAnswer VirtualPage::Take(const Inet::Request& request) {
    ++requests_;
    lastRequest_ = request;
    if (answers_.empty()) return {};
    const PageAnswer& answer = answers_[next_];
    if (next_ + 1 < answers_.size()) ++next_;
    return answer;
}

VirtualPage& VirtualPage::Add(PageAnswer answer) {
    answers_.push_back(std::move(answer));
    return *this;
}

}  // namespace korvane
