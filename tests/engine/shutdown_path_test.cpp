// Where the command that restarts this machine is found.
#include "engine/shutdown_path.h"

#include <gtest/gtest.h>

#include "support/faulty_files.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

TEST(getShudownEXEPath, IsTheFirstPlaceThatHasIt) {
    struct Case {
        std::vector<std::string> there;
        const char* path;
    };
    const Case cases[] = {
        {{}, "/usr/sbin/shutdown"},
        {{"/bin/shutdown"}, "/bin/shutdown"},
        {{"/bin/shutdown", "/usr/bin/shutdown"}, "/usr/bin/shutdown"},
        {{"/usr/bin/shutdown", "/sbin/shutdown"}, "/sbin/shutdown"},
        {{"/sbin/shutdown", "/usr/sbin/shutdown"}, "/usr/sbin/shutdown"},
    };
    for (const Case& c : cases) {
        MemoryFiles disk;
        for (const char* folder : {"/usr", "/usr/sbin", "/sbin", "/usr/bin", "/bin"})
            disk.CreateFolder(folder);
        for (const std::string& path : c.there)
            disk.Replace(path, "#!");
        FaultyFiles files(disk);
        EXPECT_EQ(getShudownEXEPath(files), c.path);
        files.faults.Add({.forever = true});
        EXPECT_EQ(getShudownEXEPath(files), "/usr/sbin/shutdown");
    }
}

}  // namespace
}  // namespace korvane
