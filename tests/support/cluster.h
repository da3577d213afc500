// Several instances that work on one list: each is the whole program in a thread and a virtual world of its own, of which one runs at a
// time, the one whose time is first. So every wait of a check hands over to another, in an order that the seed decides, and any of
// them may be killed at any of its steps.
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "support/world.h"

namespace korvane {

struct PlayedInstance {
    std::string name;
    TemporaryFolder home;
    std::chrono::milliseconds born{0}, time{0};  ///< of all
    World* world = nullptr;
    bool ended = false;
    std::thread thread;
};

class Cluster {
    using milliseconds = std::chrono::milliseconds;
    using seconds = std::chrono::seconds;
    struct Killed {};

public:
    Cluster(int instances, unsigned seed, const std::string& settings) : random_(seed) {
        NeedQtApplication();  // which must belong to the main thread
        std::filesystem::copy_file(KORVANE_DIST_DIR "/kvempty.mdb", rows.Path());
        for (int i = 0; i < instances; ++i) {
            PlayedInstance& instance = *instances_.emplace_back(std::make_unique<PlayedInstance>());
            instance.name = "i" + std::to_string(i);
            std::ofstream(instance.home.Path() + "/kvurlwatchn.ini")
                << "[Settings]\n" + settings + "\nBegin=0\nServer=mail.example\n";
        }
    }

    /// Whether the entry answers this instance.
    std::function<bool(PlayedInstance& instance, int entry)> answers;
    bool kills = false;
    int killed = 0;
    std::function<void(PlayedInstance&)> onKill = [](PlayedInstance&) {};
    std::vector<VirtualMailServer::Mail> mails;
    std::multiset<std::string> commands;

    void Add(Row columns, int entry) {
        columns["ID"] = entry + 1;
        rows.AddRow("Servers", columns);
        entries_ = std::max(entries_, entry + 1);
    }
    void RunUntil(milliseconds end) {
        end_ = end;
        for (const auto& instance : instances_)
            instance->thread = std::thread([&, it = instance.get()] { Live(*it); });
        {
            std::unique_lock lock(mutex_);
            Next();
            turn_.wait(lock, [&] { return running_ == nullptr; });
        }
        for (const auto& instance : instances_)
            instance->thread.join();
    }
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    DateTime Now() const { return start + std::chrono::floor<seconds>(now_); }
    milliseconds Time() const { return now_; }

private:
    void Live(PlayedInstance& instance) {
        Await(instance);
        while (instance.time < end_) {
            instance.born = instance.time;
            try {
                World world({.start = start + std::chrono::floor<seconds>(instance.born),
                             .home = instance.home.Path(),
                             .server = &server_,
                             .rows = &store_,
                             .instance = instance.name});
                Begin(instance, world);
                try {
                    world.Start();
                    world.RunFor(end_ - instance.born);
                } catch (const Killed&) {
                    onKill(instance);
                    ++killed;
                }
                std::move(world.mail.mails.begin(), world.mail.mails.end(), std::back_inserter(mails));
                for (const auto& started : world.processes.started)
                    commands.insert(started.command);
                world.world.beforeTime = [](milliseconds) {};
                world.store.faults.before = [] {};
            } catch (const std::exception& error) {
                ADD_FAILURE() << error.what();
            }
            Wait(instance, instance.time + seconds(1 + Pick(90)));
        }
        const std::unique_lock lock(mutex_);
        instance.ended = true;
        Next();
    }
    void Begin(PlayedInstance& instance, World& world) {
        instance.world = &world;
        world.person.keepOnlyCounts = true;
        world.store.staysOpen = true;
        world.world.beforeTime = [this, &instance](milliseconds moment) {
            Wait(instance, instance.born + moment);
            MayDie(2000);
        };
        world.store.faults.before = [this] { MayDie(3000); };
        for (int entry = 0; entry < entries_; ++entry) {
            VirtualHost& host = world.net.Host("10.1.0." + std::to_string(entry + 1));
            const auto answer = [this, &instance, entry] { return answers(instance, entry); };
            host.DecideEcho([answer] { return answer() ? VirtualHost::EchoAnswer{} : VirtualHost::EchoAnswer{false}; });
            host.Port(25).Speak("220 hello\r\n", milliseconds(20)).Answer([answer](const std::string&) {
                return answer() ? "221 bye\r\n" : "";
            });
        }
    }
    void MayDie(int rarely) {
        if (kills && std::uncaught_exceptions() == 0 && Pick(rarely) == 0) throw Killed();
    }

    // Hands over until this instance is the first again.
    void Wait(PlayedInstance& instance, milliseconds until) {
        {
            const std::unique_lock lock(mutex_);
            instance.time = until;
            Next();
        }
        Await(instance);
    }
    void Next() {
        std::vector<PlayedInstance*> first;
        for (const auto& each : instances_) {
            if (each->ended || (!first.empty() && each->time > first[0]->time)) continue;
            if (!first.empty() && each->time < first[0]->time) first.clear();
            first.push_back(each.get());
        }
        running_ = first.empty() ? nullptr : first[static_cast<std::size_t>(Pick(static_cast<int>(first.size())))];
        if (running_ != nullptr) now_ = running_->time;
        turn_.notify_all();
    }
    void Await(PlayedInstance& instance) {
        std::unique_lock lock(mutex_);
        turn_.wait(lock, [&] { return running_ == &instance; });
    }

    const DateTime start = DateTime::Of(2026, 11, 21, 15, 0, 0);
    std::mt19937 random_;
    TemporaryFolder folder_;
    QtSqlStore store_{KindOfColumn};

public:
    TestDatabase rows{folder_.Path(), store_};

private:
    PlayedServer server_{.file = rows.Path(), .now = [this] { return Now(); }};
    std::vector<std::unique_ptr<PlayedInstance>> instances_;
    int entries_ = 0;
    milliseconds now_{0}, end_{0};
    PlayedInstance* running_ = nullptr;
    std::mutex mutex_;
    std::condition_variable turn_;
};

}  // namespace korvane
