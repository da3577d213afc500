// The outbox: mail goes out beside the cycle, once to each recipient, whatever servers, store and restarts do.
#include <filesystem>
#include <set>

#include "engine/engine_test.h"

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

/// A start in a copy of the home, as a kill would have left it.
struct Restarted {
    explicit Restarted(Outbox& before) : start(before.world.clock.Now()) {
        std::filesystem::copy(before.home, folder.Path(), std::filesystem::copy_options::recursive);
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

TEST(MailOutbox, NobodyGetsAMailTwiceAfterARestart) {
    Outbox outbox;
    outbox.mail.refuse = [](const std::string& line) { return line.starts_with("rcpt to:<b@y"); };
    outbox.RunFor(30s);
    EXPECT_EQ(outbox.TakeMails().size(), 1);
    EXPECT_EQ(outbox.Column("strEmailLeft"), "b@y|");
    Restarted again(outbox);
    ASSERT_EQ(again.world.mail.mails.size(), 1);
    EXPECT_EQ(again.world.mail.mails[0].recipients, Texts{"<b@y>"});
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

TEST(MailOutbox, AReturnWhoseTransactionFailsIsStoredAllTheSame) {
    Outbox outbox(kOn + "GuardBadEntries=True\n", To("a@x"));
    outbox.RunFor(30s);
    outbox.net.Host("10.0.1.1").DecideEcho([good = true]() mutable {
        return VirtualHost::EchoAnswer{std::exchange(good, false)};
    });
    outbox.store.faults.Add({.operation = StoreOperation::Commit});
    outbox.RunFor(3min);
    EXPECT_EQ(outbox.Column("strEvent"), "failure|failure|") << "the return went out from memory";
    EXPECT_EQ(outbox.TakeMails().size(), 3);
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

}  // namespace korvane::outbox_test
