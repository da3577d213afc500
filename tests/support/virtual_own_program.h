// The child processes that send the outbox's mails, in the virtual world: each is the program's own code in a thread of its own that
// runs only while the world stands still, so that it sends beside the cycle and every run is the same.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "base/ignore_errors.h"
#include "notify/mail_errand.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/own_program.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane {

class VirtualOwnProgram : public OwnProgram {
public:
    VirtualOwnProgram(VirtualWorld& world, VirtualNet& net) : world_(world), net_(net) {}

    bool hangs = false;  ///< children say nothing more
    int started = 0;

    std::unique_ptr<Work> Start(const std::string& word, const std::string& input, Listener listener) override {
        if (word != kSendMail) throw Error("This program cannot be started once more.");
        ++started;
        return std::make_unique<Child>(*this, input, std::move(listener));
    }

private:
    class Child : public Work, Events {
        struct Killed {};

    public:
        Child(VirtualOwnProgram& of, const std::string& input, Listener listener)
            : of_(of), listener_(std::move(listener)), sckesmtp_(of.net_), plainSocket_(of.net_) {
            if (of.hangs) return;
            thread_ = std::thread([this, input] { Run(input); });
            ResumeAfter(std::chrono::milliseconds(0));
        }
        ~Child() override {
            of_.world_.Cancel(resume_);
            killed_ = true;
            if (thread_.joinable() && !ended_) LetRun();
            if (thread_.joinable()) thread_.join();
        }

    private:
        // In the thread.
        void Run(const std::string& input) {
            Await(true);
            try {
                if (!killed_)
                    RunMailErrand(input, {sckesmtp_, plainSocket_, of_.world_.clock, *this, files_, guids_},
                                  [this](const std::string& line) { lines_.push_back(line); });
            } catch (const Killed&) {
            } catch (const std::exception& error) {
                problem_ = error.what();
            }
            ended_ = true;
            Hand(false);
        }
        void DoEvents() override { WaitForEvent(std::chrono::milliseconds(0)); }
        void WaitForEvent(std::chrono::milliseconds limit) override {
            // Events of its sockets are delivered by the world's own pump.
            if (std::this_thread::get_id() != thread_.get_id()) return of_.world_.events.DoEvents();
            until_ = of_.world_.Ticks() + limit;
            seen_ = Happened();
            LookAgain();
            Hand(false);
            Await(true);
            if (killed_) throw Killed();
        }
        void Sleep(std::chrono::milliseconds time) override { WaitForEvent(time); }
        std::unique_ptr<Watch> WatchReadable(int, std::function<void()>) override { throw Error("no descriptors in here"); }

        // In the world. The thread need not run while there is nothing new for it.
        std::uint64_t Happened() const { return sckesmtp_.Happened() + plainSocket_.Happened(); }
        void LookAgain() {
            constexpr std::chrono::milliseconds kLookAgain{50};
            ResumeAfter(std::min(until_ - of_.world_.Ticks(), kLookAgain));
        }
        void ResumeAfter(std::chrono::milliseconds time) {
            resume_ = of_.world_.After(time, [this] { Resume(); });
        }
        void Resume() {
            if (of_.world_.Ticks() < until_ && Happened() == seen_) return LookAgain();
            LetRun();
            for (; !lines_.empty(); lines_.pop_front())
                listener_.line(lines_.front());
            if (!ended_) return;
            thread_.join();
            const auto ended = std::move(listener_.ended);
            ended(problem_);
        }
        void LetRun() {
            Hand(true);
            Await(false);
        }

        void Hand(bool toChild) {
            const std::lock_guard lock(mutex_);
            childRuns_ = toChild;
            turn_.notify_all();
        }
        void Await(bool child) {
            std::unique_lock lock(mutex_);
            turn_.wait(lock, [&] { return childRuns_ == child; });
        }

        VirtualOwnProgram& of_;
        Listener listener_;
        VirtualTcpSocket sckesmtp_, plainSocket_;
        LinuxFiles files_;
        LinuxGuidSource guids_;
        EventId resume_;
        std::chrono::milliseconds until_{0};  ///< the latest time at which the thread runs on
        std::uint64_t seen_ = 0;
        std::deque<std::string> lines_;
        std::string problem_;
        bool ended_ = false, killed_ = false, childRuns_ = false;
        std::mutex mutex_;
        std::condition_variable turn_;
        std::thread thread_;
    };

    VirtualWorld& world_;
    VirtualNet& net_;
};

}  // namespace korvane
