// What tests rely on in the virtual world beyond the contracts of the ports: order, the wall clock's jumps, servers that change,
// faults.
#include "support/virtual_world.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "base/error.h"
#include "platform/wait.h"
#include "support/faulty_files.h"
#include "support/memory_files.h"
#include "support/virtual_icmp_echo.h"
#include "support/virtual_tcp_socket.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

TEST(VirtualWorld, EventsComeInOrderOfTimeAndThenOfEntry) {
    VirtualWorld world(DateTime::Of(2026, 11, 21, 15, 0, 0));
    std::string order;
    const auto say = [&](char what) { return [&order, what] { order += what; }; };
    world.After(20ms, say('d'));
    world.After(10ms, say('a'));
    const EventId cancelled = world.After(10ms, say('x'));
    world.After(10ms, [&] {
        order += 'b';
        world.After(0ms, say('c'));
        world.events.Sleep(15ms);  // the next one falls due meanwhile and stays pending
        order += '|';
    });
    world.Cancel(cancelled);
    world.Cancel(cancelled);
    world.After(5ms, [] {});  // takes the slot of the cancelled one over
    world.events.WaitForEvent(1s);
    EXPECT_EQ(world.Ticks(), 5ms);
    world.events.WaitForEvent(1s);
    EXPECT_EQ(order, "ab|c");
    EXPECT_EQ(world.Ticks(), 25ms);
    world.events.WaitForEvent(1s);
    EXPECT_EQ(order, "ab|cd");
    EXPECT_EQ(world.Ticks(), 25ms);
    EXPECT_FALSE(world.RunUntil([] { return false; }, 75ms));
    EXPECT_EQ(world.Ticks(), 100ms);
}

TEST(VirtualWorld, ALoopThatOnlyPumpsIsFound) {
    VirtualWorld world(DateTime::Of(2026, 11, 21));
    EXPECT_THROW(
        {
            for (;;)
                world.events.DoEvents();
        },
        std::logic_error);
}

TEST(VirtualWorld, TheWallClockJumpsAndTheTickCountDoesNot) {
    VirtualWorld world(DateTime::Of(2027, 3, 27, 12, 0, 0), 60min);
    std::string rung;
    const auto alarm = [&](DateTime when, char name) {
        world.At(when, [&rung, name, &world] { rung += name + world.clock.Now().Stored().substr(10) + ";"; });
    };
    world.ScheduleSummerTime(DateTime::Of(2027, 3, 28, 2, 0, 0), DateTime::Of(2027, 10, 31, 3, 0, 0));
    alarm(DateTime::Of(2027, 3, 28, 2, 30, 0), 'a');  // a moment that never comes
    alarm(DateTime::Of(2027, 3, 28, 4, 0, 0), 'b');
    alarm(DateTime::Of(2027, 10, 31, 2, 30, 0), 'c');  // one that comes twice rings once
    alarm(DateTime::Of(2027, 10, 31, 4, 0, 0), 'd');
    world.RunTo(DateTime::Of(2027, 3, 28, 12, 0, 0));
    EXPECT_EQ(world.Ticks(), 23h);
    EXPECT_EQ(world.clock.UtcNow(), DateTime::Of(2027, 3, 28, 10, 0, 0));
    EXPECT_EQ(world.clock.Timer(), 12 * 3600.0);
    EXPECT_EQ(rung, "a 03:00:00;b 04:00:00;");

    world.RunTo(DateTime::Of(2027, 10, 31, 12, 0, 0));
    EXPECT_EQ(world.clock.UtcNow(), DateTime::Of(2027, 10, 31, 11, 0, 0));
    EXPECT_EQ(rung.substr(22), "c 02:30:00;d 04:00:00;");

    const auto before = world.Ticks();
    alarm(DateTime::Of(2027, 10, 31, 14, 0, 0), 'e');
    world.MoveClock(-2h);
    world.RunFor(3h);
    EXPECT_EQ(world.clock.Now(), DateTime::Of(2027, 10, 31, 13, 0, 0));
    EXPECT_EQ(world.clock.UtcNow(), DateTime::Of(2027, 10, 31, 12, 0, 0));
    world.MoveClock(5h);
    world.RunFor(0ms);
    EXPECT_EQ(rung.substr(44), "e 18:00:00;");
    EXPECT_EQ(world.Ticks() - before, 3h);
}

TEST(VirtualNet, ServersPlayTheirScriptsAndChangeOverTime) {
    VirtualWorld world(DateTime::Of(2026, 11, 21));
    VirtualNet net(world);
    VirtualServer& server = net.Host("mail.test").ResolveAfter(5ms).Port(25).Accept(2ms);
    server.Speak("220 ", 30ms)
        .Speak("ready\r\n", 3ms)
        .OnLine("HELO me", "250 hi\r\n")
        .ExpectUpTo(".")
        .Speak("250 ok\r\n")
        .Close(10ms);

    std::string heard;
    VirtualTcpSocket socket(net);
    socket.SetHandlers({[&] { heard += std::to_string(world.Ticks().count()) + " " + socket.GetData(); },
                        [&] { heard += "closed"; }, [&](int number, const std::string&) { heard += std::to_string(number); }});
    socket.SetRemoteHost("Mail.Test");
    socket.SetRemotePort(25);
    socket.Connect();
    world.After(50ms, [&] { socket.SendData("HELO me\r\nDATA\r\nx\r\n.\r\nQUIT\r\n"); });
    world.RunFor(1s);
    EXPECT_EQ(heard, "38 220 41 ready\r\n51 250 hi\r\n51 250 ok\r\nclosed");
    EXPECT_EQ(server.Lines(), (std::vector<std::string>{"HELO me", "DATA", "x", "."}));
    EXPECT_EQ(server.Mistake(), "");

    const auto again = [&](std::chrono::milliseconds time) {
        heard.clear();
        socket.Close();
        socket.Connect();
        world.RunFor(time);
        return heard;
    };
    server.Refuse(4ms);
    EXPECT_EQ(again(1s), "10061");
    server.Anew().OnLine("QUIT", "221\r\n").Speak("never", 1s);
    world.After(100ms, [&] { socket.SendData("NOOP\r\nQUIT\r\n"); });
    EXPECT_EQ(again(10s), "");
    EXPECT_EQ(server.Mistake(), "expected 'QUIT', got 'NOOP'");
    server.Anew().Speak("a").Speak("b", 100ms);
    world.After(50ms, [&] { net.Host("mail.test").Down(); });
    EXPECT_TRUE(again(10s).ends_with(" a"));
    EXPECT_EQ(server.Connections(), 4);
    net.Host("mail.test").NeverResolves();
    EXPECT_EQ(again(1h), "");
    EXPECT_EQ(socket.State(), SocketState::ResolvingHost);
    net.SetNetworkThere(false);
    socket.Close();
    try {
        socket.Connect();
        FAIL() << "connected without a network";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), kSocketAddressNotAvailable);
    }
}

TEST(VirtualNet, EchoesTakeTheirTime) {
    VirtualWorld world(DateTime::Of(2026, 11, 21));
    VirtualNet net(world);
    VirtualIcmpEcho echo(net);
    net.Host("10.0.0.1").Echo(12ms);
    net.Host("10.0.0.2").EchoStatus(3 * 256 + 1, 7ms);
    net.Host("10.0.0.3").Echo(2001ms);
    net.Host("10.0.0.4").Down();
    const struct {
        const char* address;
        bool answered;
        int status;
        std::chrono::milliseconds took;
    } cases[] = {
        {"10.0.0.1", true, 0, 12ms}, {"10.0.0.2", true, 769, 7ms}, {"10.0.0.3", false, 0, 2s}, {"10.0.0.4", false, 0, 2s}};
    for (const auto& c : cases) {
        const auto start = world.Ticks();
        const EchoReply reply = echo.IcmpSendEcho(*echo.InetAddr(c.address), "A", 255, 2s);
        EXPECT_EQ(reply.answered, c.answered) << c.address;
        EXPECT_EQ(reply.status, c.status) << c.address;
        EXPECT_EQ(world.Ticks() - start, c.took) << c.address;
    }
    std::string whyNot;
    net.ForbidEcho("not for you");
    EXPECT_FALSE(echo.IcmpCreateFile(whyNot));
    EXPECT_EQ(whyNot, "not for you");
}

TEST(FaultPlan, BreaksWhatItIsToldTo) {
    MemoryFiles memory;
    FaultyFiles files(memory);
    files.faults.Add({.operation = FilesOperation::Append, .nth = 2, .about = "LOG", .description = "broken"});
    std::string outcome;
    const auto append = [&](const std::string& path) {
        try {
            files.Append(path, "x");
            outcome += '+';
        } catch (const Error& error) {
            outcome += error.what()[0];
        }
    };
    for (const char* path : {"/a", "/log", "/a", "/my.log", "/log"})
        append(path);
    EXPECT_EQ(outcome, "+++b+");
    EXPECT_EQ(memory.Paths(), (std::vector<std::string>{"/a", "/log"}));

    files.FillDisk();
    append("/log");
    append("/log");
    EXPECT_THROW(files.Replace("/a", "y"), Error);
    EXPECT_EQ(files.Read("/a"), "xx");
    files.faults.Heal();
    append("/log");
    EXPECT_EQ(outcome, "+++b+NN+");
    EXPECT_EQ(files.faults.Failures(), 4u);
}

}  // namespace
}  // namespace korvane
