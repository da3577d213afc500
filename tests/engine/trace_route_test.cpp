// The script of a trace, run by a real shell: one host for one tracer, whatever the address and the folder are called.
#include "engine/trace_route.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/text.h"
#include "engine/engine_world.h"
#include "platform/linux/linux_files.h"
#include "support/recording_processes.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

/// Real files, and tracers that only write down what they are given.
struct TraceWorld {
    TraceWorld() {
        fs::create_directories(programs);
        for (const char* program : {"rm", "timeout"})
            fs::create_symlink(fs::path("/usr/bin") / program, programs / program);
        AddTracer("traceroute");
    }
    void AddTracer(const std::string& name) {
        std::ofstream(programs / name) << "#!/bin/sh\nprintf '[%s]' " << name << " \"$@\"\n";
        fs::permissions(programs / name, fs::perms::owner_all);
    }
    std::string Trace(const std::string& address) {
        processes.started.clear();
        trace.RunTraceRoute(address, 7);
        const std::string command =
            "cd '" + folder.Path() + "' && PATH='" + programs.string() + "' " + processes.started.at(0).command;
        EXPECT_EQ(std::system(command.c_str()) & 0x7F, 0);
        return files.Read(trace.GetTracertFile(7)).value_or("no file");
    }

    TemporaryFolder folder;
    const fs::path programs = folder.Path() + "/programs";
    EngineWorld engine;
    LinuxFiles files;
    RecordingProcesses processes;
    TraceRoute trace{{files, processes, engine.status, engine.log}, folder.Path() + "/it's $HOME `id`"};
};

TEST(TraceScript, AnAddressIsOneHostWhateverIsInIt) {
    const std::pair<std::string, std::string> cases[] = {
        {"www.example.com", "www.example.com"},
        {"www.example.com/path?a=b;c", "www.example.com"},
        {"host\\share/x", "host"},
        {"", ""},
        {"-f", "-f"},
        {"a b", "a b"},
        {"x; touch harm", "x; touch harm"},
        {"x'; touch harm; '", "x'; touch harm; '"},
        {"$(touch harm)`touch harm`", "$(touch harm)`touch harm`"},
        {"x\" && touch harm\n touch harm\r", "x\" && touch harm touch harm"},
        {"* > harm", "* > harm"},
    };
    TraceWorld w;
    for (const auto& [address, host] : cases)
        EXPECT_EQ(w.Trace(address), "[traceroute][--][" + host + "]") << address;
    EXPECT_FALSE(fs::exists(w.folder.Path() + "/harm"));
    EXPECT_TRUE(w.engine.person.SaidPart("Trace Command =  'rm -f "));
    EXPECT_TRUE(w.engine.person.SaidPart("Running and Saving TraceRoute Information '" + w.folder.Path()));
}

TEST(TraceScript, TakesTheTracerThatIsThereAndLeavesAnEarlierTraceAlone) {
    TraceWorld w;
    w.Trace("a.rather.long.name.example");
    std::ofstream earlier(w.trace.GetTracertFile(7), std::ios::app);  // as if it still ran
    w.AddTracer("tracepath");
    fs::remove(w.programs / "traceroute");
    EXPECT_EQ(w.Trace("short"), "[tracepath][--][short]");
    earlier << "late" << std::flush;
    EXPECT_EQ(w.files.Read(w.trace.GetTracertFile(7)), "[tracepath][--][short]");
    fs::remove(w.programs / "tracepath");
    EXPECT_TRUE(Holds(w.Trace("short"), "traceroute")) << "the file names what is missing";
}

}  // namespace
}  // namespace korvane
