// Long runs over servers that go silent, refuse, answer late and recover, while days, months and clocks change. The same seed
// gives the same run.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "engine/engine_world.h"
#include "engine/invariants.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kLongestCheck = 30s;

/// A list of entries of all kinds whose servers change their behaviour at random.
class Neighbourhood {
public:
    Neighbourhood(EngineWorld& engine, int entries, unsigned seed) : engine_(engine), random_(seed) {
        std::vector<Entry> rows;
        for (int i = 0; i < entries; ++i)
            rows.push_back(NewEntry(i));
        engine_.database.AddMany(rows);
    }

private:
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    Entry NewEntry(int i) {
        const std::string address = "10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1);
        Entry entry{.strDesc = "e" + std::to_string(i), .strAddress_IP = address, .nTries = 1 + Pick(4)};
        entry.nIntervalSeconds = 60 * (1 + Pick(10));
        entry.dtNextCheck = engine_.world.clock.Now() + std::chrono::seconds(Pick(300));
        if (i % 11 == 10) entry.bIsMonitoring = false;
        if (i % 7 == 6) {
            entry.strDownTime1 = std::to_string(Pick(24)) + ":30";
            entry.nDownDuration1 = 10 + Pick(100);
        }
        switch (i % 3) {
            case 0:
                entry.strExpectedText = "1000";
                break;
            case 1:
                entry.strType = "SMTP";
                entry.strPort = "25";
                entry.strExpectedText = "220,QUIT,221";
                break;
            default:
                entry.strType = "HTTP";
                entry.strPort = "80";
                entry.strExpectedText = "ok";
        }
        Behave(address, i % 3, true);
        return entry;
    }

    void Behave(const std::string& address, int kind, bool well) {
        VirtualHost& host = engine_.net.Host(address);
        const auto late = std::chrono::milliseconds(10 + Pick(900));
        const int trouble = well ? -1 : Pick(4);
        if (kind == 0) {
            if (trouble < 0) host.Echo(late / 2);
            if (trouble == 0) host.EchoSilent();
            if (trouble == 1) host.EchoStatus(3 * 256 + 1);
            if (trouble >= 2) host.Echo(1100ms + late / 2);
        } else if (kind == 1) {
            VirtualServer& server = host.Port(25).Anew();
            if (trouble < 0) server.Speak("220 hello\r\n", late).OnLine("QUIT", "221 bye\r\n", late / 4);
            if (trouble == 0) server.Silent();
            if (trouble == 1) server.Refuse();
            if (trouble == 2) server.Accept(1ms);  // and says nothing
            if (trouble == 3) server.Speak("220 hello\r\n").OnLine("QUIT", "5", 10ms).Reset(5ms);
        } else {
            VirtualPage& page = engine_.net.Page("http://" + address).Anew();
            if (trouble < 0) page.Answer("all ok", late);
            if (trouble == 0) page.Silent();
            if (trouble == 1) page.Fail("Connection refused");
            if (trouble == 2) page.Answer("", late);
            if (trouble == 3) page.Answer("an error page", late);
        }
        const auto next = std::chrono::minutes(well ? 30 + Pick(600) : 1 + Pick(90));
        engine_.world.After(next, [this, address, kind, well] { Behave(address, kind, !well); });
    }

    EngineWorld& engine_;
    std::mt19937 random_;
};

RunCounts Simulate(EngineWorld& engine, int entries, unsigned seed, std::chrono::hours length,
                   const std::function<void(NobodyIsForgotten&)>& script = {}) {
    engine.person.keepOnlyCounts = true;
    engine.sound.keep = false;
    Neighbourhood neighbourhood(engine, entries, seed);
    NobodyIsForgotten watch(engine, kLongestCheck);
    if (script) script(watch);
    engine.RunFor(length);
    return ExpectWholeAccounts(engine);
}

TEST(Simulation, TwoDaysOfTroubleKeepTheAccountsWhole) {
    EngineWorld engine(DateTime::Of(2028, 2, 28, 18, 0, 0));  // over a leap day into March
    const RunCounts counts = Simulate(engine, 22, 1, 48h);
    EXPECT_GT(counts.checks, 5000);
    EXPECT_GT(counts.outages, 20);
    EXPECT_GE(engine.reports.published, 24);
}

TEST(Simulation, SummerTimeComesAndGoes) {
    EngineWorld spring(DateTime::Of(2027, 3, 27, 22, 0, 0));
    Simulate(spring, 12, 3, 12h, [&](NobodyIsForgotten& watch) {
        spring.world.At(DateTime::Of(2027, 3, 28, 2, 0, 0), [&] {
            watch.ClockJumps(1h);
            spring.world.MoveZone(1h);
        });
    });
    EngineWorld autumn(DateTime::Of(2027, 10, 30, 22, 0, 0));
    Simulate(autumn, 12, 4, 12h, [&](NobodyIsForgotten& watch) {
        autumn.world.At(DateTime::Of(2027, 10, 31, 3, 0, 0), [&] {
            watch.ClockJumps(-1h);
            autumn.world.MoveZone(-1h);
        });
    });
}

TEST(Simulation, TheOperatorSetsTheClock) {
    EngineWorld engine(DateTime::Of(2026, 11, 21, 15, 0, 0));
    const RunCounts counts = Simulate(engine, 12, 5, 24h, [&](NobodyIsForgotten& watch) {
        engine.world.After(3h, [&] {
            watch.ClockJumps(-2h);
            engine.world.MoveClock(-2h);
        });
        engine.world.After(9h, [&] {
            watch.ClockJumps(24h * 40);
            engine.world.MoveClock(24h * 40);
        });
    });
    EXPECT_GT(counts.checks, 1000);
}

TEST(Simulation, StoreErrorsLoseNoEntry) {
    EngineWorld engine(DateTime::Of(2026, 11, 21, 15, 0, 0));
    engine.person.keepOnlyCounts = true;
    engine.sound.keep = false;
    Neighbourhood neighbourhood(engine, 12, 6);
    NobodyIsForgotten watch(engine, kLongestCheck + 5min);
    std::mt19937 random(11);
    for (int minute = 1; minute < 24 * 60; minute += 7) {
        engine.world.After(std::chrono::minutes(minute), [&] {
            const auto operation = static_cast<StoreOperation>(random() % 8);
            engine.store.faults.Add({.operation = operation, .nth = 1 + static_cast<int>(random() % 5)});
        });
    }
    engine.RunFor(24h);
    EXPECT_GT(engine.store.faults.Failures(), 50u);
    for (const Row& row : engine.database.Rows("Servers")) {
        EXPECT_GT(row.at("nSuccess").Int64() + row.at("nFail").Int64() + (row.at("bIsMonitoring").Bool() ? 0 : 1), 0);
    }
}

}  // namespace
}  // namespace korvane
