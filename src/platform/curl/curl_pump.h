// Runs one libcurl transfer from the event pump: libcurl says which sockets and which moment it waits for, the pump tells it when
// they come.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <memory>
#include <optional>

#include "platform/clock.h"
#include "platform/events.h"

namespace korvane {

class CurlPump {
public:
    /// `easy` is ready to perform and outlives this. Throws Error when the system gives no descriptors.
    CurlPump(Events& events, const Clock& clock, CURL* easy);
    ~CurlPump();
    CurlPump(const CurlPump&) = delete;
    CurlPump& operator=(const CurlPump&) = delete;

    /// Blocks while events are delivered. Nothing when Stop ended it.
    std::optional<CURLcode> Perform();

    /// Drops the connection at once; from any event that Perform delivers.
    void Stop();

private:
    struct MultiCleanup {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };

    static int OnSocket(CURL* easy, curl_socket_t socket, int wanted, void* self, void* unused);
    static int OnTimer(CURLM* multi, long milliseconds, void* self);
    void OnReadable();
    void Advance(curl_socket_t socket, int happened);
    std::chrono::milliseconds UntilTimer() const;
    bool Going() const { return !stopped_ && !result_; }

    Events& events_;
    const Clock& clock_;
    CURL* const easy_;
    std::unique_ptr<CURLM, MultiCleanup> multi_;
    int epoll_ = -1;  ///< holds libcurl's sockets, so that the pump has one descriptor to watch
    std::unique_ptr<Events::Watch> watch_;
    std::optional<std::chrono::milliseconds> timer_;  ///< by the clock's tick count
    std::optional<CURLcode> result_;
    bool stopped_ = false;
};

}  // namespace korvane
