#include "platform/qt/pg_watch.h"

#include <sys/socket.h>

namespace korvane {

PgWatch::PgWatch(int socket, std::chrono::milliseconds limit) : socket_(socket), limit_(limit), thread_([this] { Run(); }) {}

PgWatch::~PgWatch() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    ending_.notify_one();
    thread_.join();
}

void PgWatch::Begin() {
    const std::lock_guard lock(mutex_);
    since_ = Clock::now();
}

void PgWatch::End() {
    const std::lock_guard lock(mutex_);
    since_.reset();
}

// No statement that begins while this sleeps reaches its limit before this wakes, so that beginning one wakes nobody.
void PgWatch::Run() {
    std::unique_lock lock(mutex_);
    while (!ends_) {
        ending_.wait_until(lock, since_.value_or(Clock::now()) + limit_);
        if (!since_ || Clock::now() < *since_ + limit_) continue;
        cut_ = true;
        ::shutdown(socket_, SHUT_RDWR);
        since_.reset();
    }
}

}  // namespace korvane
