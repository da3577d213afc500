#include "platform/curl/curl_pump.h"

#include <curl/curl.h>
#include <errno.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <new>

#include "base/error.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds kNoTimer = 1min;  // longest wait while libcurl has set no timer

}  // namespace

void CurlPump::MultiCleanup::operator()(void* multi) const {
    curl_multi_cleanup(multi);
}

CurlPump::CurlPump(Events& events, const Clock& clock, void* easy)
    : events_(events), clock_(clock), easy_(easy), multi_(curl_multi_init()) {
    if (!multi_) throw std::bad_alloc();
    epoll_ = ::epoll_create1(EPOLL_CLOEXEC);
    if (epoll_ < 0) throw Error(std::strerror(errno));
    curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &CurlPump::OnSocket);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &CurlPump::OnTimer);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
    watch_ = events_.WatchReadable(epoll_, [this] { OnReadable(); });
}

CurlPump::~CurlPump() {
    Stop();
    multi_.reset();
    ::close(epoll_);
}

std::optional<int> CurlPump::Perform() {
    curl_multi_add_handle(multi_.get(), easy_);
    while (Going()) {
        const milliseconds left = UntilTimer();
        if (left > 0ms) {
            events_.WaitForEvent(left);
        } else {
            timer_.reset();
            Advance(CURL_SOCKET_TIMEOUT, 0);
        }
    }
    return stopped_ ? std::nullopt : result_;
}

void CurlPump::Stop() {
    stopped_ = true;
    watch_.reset();
    curl_multi_remove_handle(multi_.get(), easy_);
}

milliseconds CurlPump::UntilTimer() const {
    return timer_ ? *timer_ - clock_.GetTickCount() : kNoTimer;
}

int CurlPump::OnTimer(void* /*multi*/, long wait, void* self) {
    CurlPump& pump = *static_cast<CurlPump*>(self);
    pump.timer_.reset();
    if (wait >= 0) pump.timer_ = pump.clock_.GetTickCount() + milliseconds(wait);
    return 0;
}

int CurlPump::OnSocket(void* /*easy*/, int socket, int wanted, void* self, void* /*unused*/) {
    const int epoll = static_cast<CurlPump*>(self)->epoll_;
    if (wanted == CURL_POLL_REMOVE) {
        ::epoll_ctl(epoll, EPOLL_CTL_DEL, socket, nullptr);
        return 0;
    }
    epoll_event event{};
    if ((wanted & CURL_POLL_IN) != 0) event.events |= EPOLLIN;
    if ((wanted & CURL_POLL_OUT) != 0) event.events |= EPOLLOUT;
    event.data.fd = socket;
    if (::epoll_ctl(epoll, EPOLL_CTL_MOD, socket, &event) == 0) return 0;
    return ::epoll_ctl(epoll, EPOLL_CTL_ADD, socket, &event);
}

void CurlPump::OnReadable() {
    std::array<epoll_event, 8> ready{};
    const int count = ::epoll_wait(epoll_, ready.data(), static_cast<int>(ready.size()), 0);
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = ready[static_cast<std::size_t>(i)];
        int happened = 0;
        if ((event.events & EPOLLIN) != 0) happened |= CURL_CSELECT_IN;
        if ((event.events & EPOLLOUT) != 0) happened |= CURL_CSELECT_OUT;
        if ((event.events & (EPOLLERR | EPOLLHUP)) != 0) happened |= CURL_CSELECT_ERR;
        Advance(event.data.fd, happened);
    }
}

void CurlPump::Advance(int socket, int happened) {
    if (!Going()) return;
    int running = 0;
    curl_multi_socket_action(multi_.get(), socket, happened, &running);
    int queued = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &queued)) {
        if (message->msg == CURLMSG_DONE) result_ = message->data.result;
    }
}

}  // namespace korvane
