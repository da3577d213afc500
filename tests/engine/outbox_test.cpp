// The outbox: mail goes out beside the cycle, once to each recipient, whatever servers, store and restarts do.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <set>

#include "engine/engine_test.h"
#include "shell/options/options_inputs.h"

namespace korvane::outbox_test {

const std::string kOn = "MailOutbox=True\nServerBackup=\n";

Row Mailed(const std::string& name, const Row& more = {}, int interval = 60) {
    return With(
        more,
        {.strDesc = name, .strAddress_IP = "10.0.1.1", .nTries = 1, .nIntervalSeconds = interval, .strExpectedText = "1000"});
}
Row To(const std::string& list1, const std::string& list2 = "") {
    return Columns("strEmailList1 strEmailList2 strEmailFrom strEmailText", list1, list2, "me@z", "Down!");
}

struct Outbox : Engine {
    explicit Outbox(const std::string& settings = kOn, const Row& to = To("a@x", "b@y"), int interval = 60)
        : Engine({}, settings) {
        net.Host("10.0.1.1").EchoSilent();
        Add(Mailed("web", to, interval));
    }
    VirtualServer& Port() { return net.Host("mail.example").Port(25); }
    void MailServerReturns() { mail.Serve(Port()); }
    /// "<recipient> <subject>" of each mail since the last call.
    Texts TakeMails() {
        Texts taken;
        for (const auto& each : std::exchange(mail.mails, {}))
            taken.push_back(each.recipients.at(0) + " " + Header(each.text, "Subject: "));
        return taken;
    }
    static std::string Header(const std::string& text, const std::string& name) {
        const auto at = text.find(name) + name.size();
        return text.substr(at, text.find("\r\n", at) - at);
    }
    /// Texts of a column of the outbox, which is not in the schema that TestDatabase reads.
    std::string Column(const std::string& column) {
        const auto conn = rows.Connected();
        const auto rs = database.NewRecordset();
        rs->Open("SELECT * FROM MailOutbox ORDER BY ID", *conn, CursorType::Static, LockType::Optimistic);
        std::string texts;
        for (; !rs->Eof(); rs->MoveNext())
            texts += rs->Fields(column).Value().Text() + "|";
        return texts;
    }
    const OutboxState& State() { return run.TheDesk().outbox.State(); }
};

/// A start in a copy of the home, as a kill would have left it, with the outbox on or off.
struct Restarted {
    explicit Restarted(Outbox& before, bool on = true) : start(before.world.clock.Now()) {
        std::filesystem::copy(before.home, folder.Path(), std::filesystem::copy_options::recursive);
        if (!on) world.Write("kvurlwatchn.ini", ReplaceAll(world.Text("kvurlwatchn.ini"), kOn, ""));
        world.net.Host("10.0.1.1").EchoSilent();
        world.Start();
        world.RunFor(5min);
    }
    DateTime start;
    TemporaryFolder folder;
    World world{{.start = start, .home = folder.Path()}};
};

TEST(MailOutbox, AnOutageIsMailedOnceToEachRecipientWithAReceipt) {
    Outbox outbox;
    outbox.RunFor(5min);
    EXPECT_EQ(outbox.TakeMails(), (Texts{"<a@x> Down! (web) 11/21/2026 3:00:04 PM", "<b@y> Down! (web) 11/21/2026 3:00:04 PM"}));
    EXPECT_TRUE(Holds(outbox.rows.Rows("Failures").at(0).at("strAction").Text(), "is in the outbox for: 'a@x b@y'."));
    EXPECT_EQ(outbox.Column("strState") + outbox.Column("strReceipt"), "sent|250 queued|");
    EXPECT_EQ(outbox.State().Text(), "No mail waits in the outbox. Alert path last proven 11/21/2026 3:00:05 PM.");
    outbox.net.Host("10.0.1.1").Echo(5ms);
    outbox.RunFor(2min);
    EXPECT_EQ(outbox.TakeMails().size(), 2);
    EXPECT_EQ(outbox.Column("strEvent"), "failure|recovery|");
}

TEST(MailOutbox, IsNotThereWhileItIsOff) {
    Outbox outbox("");
    outbox.RunFor(1min);
    EXPECT_EQ(outbox.TakeMails().size(), 2);
    EXPECT_EQ(outbox.ownProgram.started, 0);
    EXPECT_THROW(outbox.Column("ID"), Error);
}

TEST(MailOutbox, ASilentServerHoldsUpNoCheck) {
    Outbox outbox;
    for (int i = 0; i < 30; ++i)
        outbox.Add(Mailed("e" + std::to_string(i), To("a@x", "b@y")));
    outbox.Add(With({}, {.strDesc = "good", .strAddress_IP = "10.0.2.1", .nIntervalSeconds = 10, .strExpectedText = "1000"}));
    auto last = outbox.world.Ticks(), longest = 0ms;
    outbox.net.Host("10.0.2.1").DecideEcho([&] {
        longest = std::max(longest, outbox.world.Ticks() - last);
        last = outbox.world.Ticks();
        return VirtualHost::EchoAnswer{};
    });
    outbox.Port().Anew().Silent();
    outbox.RunFor(20min);
    EXPECT_LT(longest, 100s) << "the other thirty entries fail after their own time-out";
    EXPECT_EQ(outbox.State().waiting, 31);
    EXPECT_TRUE(outbox.Logged("did not answer twice in a row and is left alone for five minutes"));
    outbox.MailServerReturns();
    outbox.RunFor(20min);
    EXPECT_EQ(outbox.TakeMails().size(), 62);
    EXPECT_EQ(outbox.State().waiting, 0);
}

TEST(MailOutbox, AnOutageThatEndedMeanwhileIsOneMail) {
    Outbox outbox;
    outbox.Port().Anew().Refuse();
    outbox.RunFor(90s);
    outbox.net.Host("10.0.1.1").Echo(5ms);
    outbox.RunFor(2min);
    outbox.MailServerReturns();
    outbox.RunFor(20min);
    ASSERT_EQ(outbox.mail.mails.size(), 2);
    const std::string text = outbox.mail.mails[0].text;
    EXPECT_TRUE(Outbox::Header(text, "Subject: ").starts_with("SERVER BACK UP (Down!) web ")) << text;
    for (const char* part : {"can be reached again!", "The outage is over.", "could not be reached"})
        EXPECT_TRUE(Holds(text, part)) << text;
}

TEST(MailOutbox, ARecoveryGoesToThePeopleOfNow) {
    Outbox outbox(kOn, To("wrong"));
    outbox.mail.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<wrong"); };
    outbox.RunFor(90s);
    outbox.Change(1, To("a@x"));
    outbox.net.Host("10.0.1.1").Echo(5ms);
    outbox.RunFor(2min);
    ASSERT_EQ(outbox.mail.mails.size(), 1);
    EXPECT_EQ(outbox.mail.mails[0].recipients, Texts{"<a@x>"});
}

TEST(MailOutbox, AMailThatIsNotWrittenYetIsWrittenAtTheEnd) {
    Outbox outbox;
    outbox.Port().Anew().Refuse();
    outbox.run.TheDesk().outbox.Put({"a@x", "", "me@z", "Late", ""});
    outbox.run.mnuExit_Click();
    EXPECT_EQ(outbox.Column("strState"), "waiting|");
}

TEST(MailOutbox, NobodyGetsAMailTwiceAfterARestart) {
    Outbox outbox;
    outbox.mail.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<b@y"); };
    outbox.RunFor(30s);
    EXPECT_EQ(outbox.TakeMails().size(), 1);
    EXPECT_EQ(outbox.Column("strEmailLeft"), "b@y|");
    Restarted again(outbox);
    ASSERT_EQ(again.world.mail.mails.size(), 1);
    EXPECT_EQ(again.world.mail.mails[0].recipients, Texts{"<b@y>"});
    Restarted off(outbox, false);
    EXPECT_EQ(off.world.mail.mails.size(), 0);
    SaveOptions(off.world.run.TheDesk(), OptionsFromSettings(off.world.run.TheDesk().collection), {{"MailOutbox", "True"}});
    off.world.RunFor(1min);
    EXPECT_EQ(off.world.mail.mails.size(), 1);
}

TEST(MailOutbox, AServerThatDiesBeforeItSaysSoGetsTheSameMailAgain) {
    for (const char* user : {"", "SMTPUser1=me\n"}) {
        Outbox outbox(kOn + user, To("a@x"));
        Texts seen;
        bool mute = false;
        outbox.Port().Anew().Speak("220 ready\r\n").Answer([&](const std::string& line) -> std::string {
            const std::string command = ToLower(line.substr(0, 4));
            if (command == "mess") seen.push_back(line.substr(12));
            if (command == "helo" || command == "ehlo") mute = false;
            if (std::exchange(mute, mute || command == "data")) return "";
            return mute ? "354 go on\r\n" : "250 ok\r\n";
        });
        outbox.RunFor(110s);
        outbox.MailServerReturns();
        outbox.RunFor(30min);
        ASSERT_EQ(outbox.mail.mails.size(), 1);
        seen.push_back(Outbox::Header(outbox.mail.mails[0].text, "Message-ID: "));
        EXPECT_EQ(seen.size(), 3);
        EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()).size(), 1) << user;
    }
}

TEST(MailOutbox, AMailIsGivenUpAfterTwoDaysAndTheOthersGoOut) {
    Outbox outbox(kOn, To("nobody"), 36000);
    outbox.mail.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<nobody"); };
    outbox.RunFor(10s);
    outbox.Add(Mailed("other", To("a@x"), 36000));
    outbox.RunFor(47h);
    EXPECT_EQ(outbox.TakeMails().size(), 1);
    EXPECT_EQ(outbox.State().waiting, 1);
    outbox.RunFor(2h);
    EXPECT_EQ(outbox.State().Text().substr(0, 13), "No mail waits");
    EXPECT_EQ(outbox.Column("strState"), "given up|sent|");
    EXPECT_TRUE(outbox.Logged("# MailOutbox: A mail of 11/21/2026 3:00:04 PM was given up after two days: nobody: "));
    EXPECT_EQ(outbox.run.TheDesk().safeguards.Counts().at("MailOutbox"), 1);
}

TEST(MailOutbox, GoesOutThoughTheStoreRefusesIt) {
    using enum StoreOperation;
    for (const FaultPlan<StoreOperation>::Fault& fault : {FaultPlan<StoreOperation>::Fault{.operation = Execute, .forever = true},
                                                          {.operation = Open, .forever = true, .about = "MailOutbox"},
                                                          {.operation = Update, .forever = true},
                                                          {.operation = Commit, .forever = true}}) {
        Outbox outbox;
        outbox.store.faults.Add(fault);
        outbox.RunFor(5min);
        EXPECT_EQ(outbox.TakeMails().size(), 2) << static_cast<int>(*fault.operation);
    }
}

TEST(MailOutbox, WhatWasTakenIsNotedOnceTheStoreTakesIt) {
    Outbox outbox;
    outbox.store.faults.Add({.operation = StoreOperation::Update, .forever = true, .about = "MailOutbox WHERE ID = 1"});
    outbox.RunFor(5min);
    EXPECT_EQ(outbox.Column("strState"), "waiting|");
    outbox.store.faults.Heal();
    outbox.RunFor(2min);
    EXPECT_EQ(outbox.Column("strState"), "sent|");
    EXPECT_EQ(outbox.TakeMails().size(), 2);
}

TEST(MailOutbox, RowsThatAnotherToolChangedHarmNothing) {
    Outbox outbox(kOn, To("a@x"));
    outbox.Port().Anew().Refuse();
    outbox.RunFor(10s);
    const auto conn = outbox.rows.Connected();
    for (const char* bad :
         {"strEmailLeft = ''", "strState = 'x'", "dtCreated = 'never'", "IDParent = 'x', nOutage = 'y', nTries = 'z'",
          "strSubject = NULL, strBody = NULL, strMessageID = NULL", "strEmailLeft = 'a' || char(13, 10) || 'DATA'",
          "strBody = hex(zeroblob(10000000))"})
        conn->Execute(
            "INSERT INTO MailOutbox SELECT NULL, IDParent, strEvent, nOutage, strEmailFrom, strEmailList, strEmailLeft, "
            "strSubject, strBody, strMessageID, dtCreated, nTries, dtNextTry, strState, dtState, strReceipt, strLastError "
            "FROM MailOutbox WHERE ID = 1"),
            conn->Execute("UPDATE MailOutbox SET " + std::string(bad) + " WHERE ID = last_insert_rowid()");
    conn->Close();
    Restarted again(outbox);
    outbox.rows.Connected()->Execute("DELETE FROM MailOutbox");
    outbox.run.TheDesk().outbox.FollowRestoredDatabase();
    outbox.MailServerReturns();
    outbox.RunFor(20min);
    EXPECT_EQ(outbox.TakeMails(), Texts{"<a@x> Down! (web) 11/21/2026 3:00:04 PM"});
    const auto& mails = again.world.mail.mails;
    ASSERT_EQ(mails.size(), 6);  // all but the first two that were changed
    EXPECT_EQ(mails.back().recipients, Texts{"<a@x>"});
    EXPECT_GT(mails.back().text.size(), 20'000'000);
    EXPECT_TRUE(again.world.Logged("# MailOutbox: row 2 was changed by another program"));
}

TEST(MailOutbox, AChildThatHangsIsEndedAndAnEntryWithoutRecipientsIsNamed) {
    Outbox outbox(kOn, To(""));
    outbox.Add(Mailed("mute", To("a@x")));
    outbox.ownProgram.hangs = true;
    outbox.RunFor(5min);
    EXPECT_TRUE(outbox.Logged("# MailOutbox: The entry 'web' would notify nobody: it has no email address."));
    EXPECT_EQ(outbox.State().unnotified, Texts{"web"});
    outbox.ownProgram.hangs = false;
    outbox.RunFor(10min);
    EXPECT_EQ(outbox.TakeMails().size(), 1);
}

constexpr std::size_t kHosts = 8;

/// Good and bad times of servers and of the mail server.
struct Weather {
    explicit Weather(unsigned seed) : random(seed) {}
    int Pick(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }
    static std::string Host(std::size_t i) { return "10.3.0." + std::to_string(i + 1); }

    void Over(World& world) {
        for (std::size_t i = 0; i < kHosts; ++i)
            world.net.Host(Host(i)).DecideEcho([this, i] {
                int& left = troubles[i];
                if (left == 0 && Pick(8) == 0) left = 1 + Pick(12);
                const bool bad = !calm && left > 0;
                left -= bad ? 1 : 0;
                return bad ? VirtualHost::EchoAnswer{true, 769, 1ms} : VirtualHost::EchoAnswer{};
            });
        ChangeMail(world);
    }
    void ChangeMail(World& world) {
        const int mood = calm ? 0 : Pick(6);
        const std::string refused = mood == 3 ? "rcpt" : mood == 4 ? "rcpt to:<b" : "none";
        world.mail.refuse = [refused](const std::string& line) { return ToLower(line).starts_with(refused); };
        VirtualServer& port = world.net.Host("mail.example").Port(25);
        world.mail.Serve(port);
        if (mood == 1) port.Anew().Refuse();
        if (mood == 2) port.Anew().Silent();
        world.world.After(std::chrono::minutes(1 + Pick(60)), [this, &world] { ChangeMail(world); });
    }

    bool calm = false;
    std::array<int, kHosts> troubles{};
    std::mt19937 random;
};

// Entries and a mail server that fail and recover at random, for hours, with a kill in the middle; then all is well again.
TEST(MailOutbox, EachOutageAndEachReturnIsMailedOnce) {
    const bool isLong = std::getenv("KORVANE_LONG") != nullptr;
    for (unsigned seed = 1; seed <= (isLong ? 60 : 1); ++seed) {
        SCOPED_TRACE(seed);
        Weather weather(seed);
        Engine before({}, seed % 2 == 0 ? kOn : kOn + "SMTPUser1=me\n");
        for (std::size_t i = 0; i < kHosts; ++i)
            before.Add(
                With(To("a@" + std::to_string(i), i % 2 == 0 ? "" : "b@" + std::to_string(i)), {.strAddress_IP = Weather::Host(i),
                                                                                                .nTries = 1 + weather.Pick(2),
                                                                                                .nIntervalSeconds = 600,
                                                                                                .strExpectedText = "1000"}));
        weather.Over(before);
        before.RunFor(isLong ? 12h : 3h);
        const TemporaryFolder folder;
        std::filesystem::copy(before.home, folder.Path(), std::filesystem::copy_options::recursive);
        World after({.start = before.world.clock.Now(), .home = folder.Path()});
        after.Start();
        weather.Over(after);
        after.RunFor(isLong ? 12h : 3h);
        weather.calm = true;
        after.RunFor(4h);
        auto mails = before.mail.mails;
        mails.insert(mails.end(), after.mail.mails.begin(), after.mail.mails.end());

        std::map<std::string, std::array<std::set<std::string>, 2>> told;  // ids of mails on outages and returns, by recipient
        for (const auto& mail : mails) {
            const std::string id = Outbox::Header(mail.text, "Message-ID: ");
            const bool back = Holds(mail.text, "Subject: SERVER BACK UP"), both = Holds(mail.text, "The outage is over.");
            if (!back || both) told[mail.recipients[0]][0].insert(id);
            if (back) told[mail.recipients[0]][1].insert(id);
        }
        int outages = 0;
        for (std::size_t i = 0; i < kHosts; ++i) {
            const auto traces = [&](const auto& all) {  // each outage has one
                const std::string file = "KvTR" + std::to_string(i + 1) + ".";
                return std::count_if(all.begin(), all.end(), [&](const auto& started) { return Holds(started.command, file); });
            };
            const auto here = static_cast<int>(traces(before.processes.started) + traces(after.processes.started));
            for (const std::string name : {"a", "b"}) {
                const auto& [failures, returns] = told["<" + name + "@" + std::to_string(i) + ">"];
                const auto expected = static_cast<std::size_t>(name == "a" || i % 2 == 1 ? here : 0);
                EXPECT_EQ(failures.size(), expected) << name << i;
                EXPECT_EQ(returns.size(), expected) << name << i;
            }
            outages += here;
        }
        EXPECT_GT(outages, 10);
        EXPECT_EQ(after.run.TheDesk().outbox.State().waiting, 0);
        EXPECT_EQ(after.run.TheDesk().outbox.State().givenUp, 0);
    }
}

}  // namespace korvane::outbox_test
