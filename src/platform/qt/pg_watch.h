// Cuts the connection to a server that does not answer: the client library waits for an answer without a limit, and a server that
// was stopped, or whose machine hangs, keeps its connections open.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace korvane {

class PgWatch {
public:
    /// `socket` must stay open as long as this lives.
    PgWatch(int socket, std::chrono::milliseconds limit);
    ~PgWatch();
    PgWatch(const PgWatch&) = delete;
    PgWatch& operator=(const PgWatch&) = delete;

    /// Around each statement. The connection is cut when a statement has run for the limit.
    void Begin();
    void End();

    bool HasCut() const { return cut_; }

private:
    using Clock = std::chrono::steady_clock;

    void Run();

    const int socket_;
    const std::chrono::milliseconds limit_;
    std::mutex mutex_;
    std::condition_variable ending_;
    std::optional<Clock::time_point> since_;  ///< when the running statement began
    bool ends_ = false;
    std::atomic<bool> cut_ = false;
    std::thread thread_;
};

}  // namespace korvane
