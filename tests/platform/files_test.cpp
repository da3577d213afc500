// What the rooms rely on in LinuxFiles: each operation happens as a whole, or says why not and leaves everything as it was. And the
// standard streams of a program that nobody reads.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <ostream>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/process_setup.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace korvane::files_test {

/// Folders in tens, files in ones.
int flushed = 0;

/// Stands before the system's own.
extern "C" int fsync(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) == 0) flushed += S_ISDIR(status.st_mode) ? 10 : 1;
    return ::fdatasync(descriptor);
}

namespace fs = std::filesystem;
using Actions = std::vector<std::function<void()>>;

struct LinuxFilesTest : testing::Test {
    /// All of them throw, and nothing changes.
    bool Refuses(const Actions& actions) {
        const auto names = files.FileNames(folder);
        const auto before = files.Read(path);
        for (const auto& action : actions)
            EXPECT_THROW(action(), Error) << &action - actions.data();
        return files.Read(path) == before && files.FileNames(folder) == names && !HasFailure();
    }
    static fs::perms ModeOf(const std::string& file) { return fs::status(file).permissions(); }

    const TemporaryFolder temporary;
    const std::string folder = temporary.Path(), path = folder + "/file", other = folder + "/other", text{"line\r\n\0\xFF", 8};
    const std::function<void(const TakeText&)> page = [this](const TakeText& take) {
        take(text.substr(0, 3)), take(text.substr(3));
    };
    LinuxFiles files;
};

TEST_F(LinuxFilesTest, EachWayOfWritingGivesTheWholeTextWithItsMode) {
    ::umask(0);
    files.CreatePrivateFolder(path + ".d/private");
    EXPECT_TRUE(ModeOf(path + ".d") == fs::perms(0755) && ModeOf(path + ".d/private") == fs::perms(0700));
    KeepOthersFromWriting();
    EXPECT_EQ(::umask(022), 022U);
    files.Replace(other, text);
    const std::tuple<int, bool, std::function<void()>> ways[] = {{0600, true, [&] { files.Replace(path, text); }},
                                                                 {0600, true, [&] { files.Copy(other, path); }},
                                                                 {0644, false, [&] { files.Publish(path, text); }},
                                                                 {0644, false, [&] { files.PublishPage(path, page); }},
                                                                 {0640, false, [&] { files.Append(path, text); }}};
    for (const auto& [mode, flushes, write] : ways) {
        files.Remove(path);
        flushed = 0;
        write();
        EXPECT_EQ(flushed, flushes ? 11 : 0) << "a power cut brings nothing old back";
        EXPECT_TRUE(ModeOf(path) == fs::perms(mode) && files.Read(path) == text) << mode;
        fs::permissions(path, fs::perms(0664));
        write();
        EXPECT_TRUE(ModeOf(path) == fs::perms(0664) && files.Read(path) == (mode == 0640 ? text + text : text)) << mode;
    }
    files.Overwrite(path, 1, "o");
    flushed = 0;
    files.Rename(path, other);
    EXPECT_EQ(flushed, 11);
    EXPECT_EQ(files.Read(other)->substr(0, 8), "lone" + text.substr(4));
    EXPECT_TRUE(
        Refuses({[&] { files.Overwrite(other, -1, "xxxx"); }, [&] { files.Overwrite(other, 13, "xxxx"); },
                 [&] { files.Rename(path, other); }, [&] { files.Copy(path, other); }, [&] { files.Publish(path + "/x", ""); },
                 [&] { files.Append(path + "/x", "x"); }, [&] { files.Read(folder); }, [&] { files.Replace(folder, text); },
                 [&] { files.CreateFolder(other + "/a"); }, [&] { files.Remove(folder); }}));
}

TEST_F(LinuxFilesTest, LinksStayLinksButForPagesAndPipesAreRefused) {
    fs::create_directory(folder + "/real");
    fs::create_symlink("real/file", path);
    fs::create_symlink(path, other);
    files.Replace(other, "again");
    EXPECT_TRUE(fs::is_symlink(path) && fs::is_symlink(other) && files.Read(folder + "/real/file") == "again");
    files.PublishPage(other, page);
    EXPECT_TRUE(!fs::is_symlink(other) && files.Read(path) == "again");
    fs::create_symlink("circle", folder + "/circle");
    ASSERT_EQ(::mkfifo((folder + "/pipe").c_str(), 0600), 0);
    EXPECT_TRUE(Refuses({[&] { files.Replace(folder + "/circle", "x"); }, [&] { files.Append(folder + "/pipe", "x"); }}));
}

TEST_F(LinuxFilesTest, AFullDiskAndAForeignFolderLeaveWholeTexts) {
    files.Replace(path, "old text\n");
    const auto refusesOnAFullDisk = [&] {
        const rlimit limit{20, 20};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const std::string tooLong(30, 'x');
        return Refuses({[&] { files.Append(path, tooLong); }, [&] { files.Replace(path, tooLong); },
                        [&] { files.Copy("/etc/passwd", path); }, [&] { files.Publish(other, tooLong); }});
    };
    EXPECT_TRUE(PassesInChild(refusesOnAFullDisk));
    fs::permissions(path, fs::perms(0666));
    fs::permissions(folder, fs::perms(0555));
    EXPECT_TRUE(PassesInChild([&] {  // where the file can be written, but nothing can take its place
        GiveUpPrivileges();
        files.PublishPage(path, page);
        files.Replace(path, "short");
        EXPECT_TRUE(files.Read(path) == "short" && refusesOnAFullDisk());
        fs::permissions(path, fs::perms(0444));
        return Refuses({[&] { files.Replace(path, "x"); }});
    }));
    fs::permissions(folder, fs::perms(0755));
}

TEST_F(LinuxFilesTest, OneProcessHoldsAFolder) {
    const Descriptor anybodys(::open(folder.c_str(), O_RDONLY));
    ASSERT_EQ(::flock(anybodys.Number(), LOCK_EX), 0);
    EXPECT_FALSE(files.IsHeld(folder));
    EXPECT_TRUE(files.HoldFolder(folder) && files.HoldFolder(folder + "/.") && files.IsHeld(folder));
    EXPECT_EQ(ModeOf(folder + "/korvane.lock"), fs::perms(0600));
    fs::create_symlink(folder, other);
    EXPECT_FALSE(LinuxFiles().HoldFolder(other));
}

// As in a container: `stat` tells the device of a layer there.
TEST_F(LinuxFilesTest, AFolderOfLayersIsSeenToBeHeld) {
    const auto mounts = [&](const char* what, const std::string& where, const char* options) {
        return ::mount(what, where.c_str(), what, 0, options) == 0;
    };
    EXPECT_TRUE(PassesInChild([&] {
        for (const char* name : {"/low", "/up", "/work", "/all"})
            fs::create_directory(folder + name);
        const bool isPrivate = ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        if (!isPrivate || !mounts("tmpfs", folder + "/low", nullptr)) return true;
        files.Replace(folder + "/low/korvane.lock", "");
        const std::string layers = "lowerdir=" + folder + "/low,upperdir=" + folder + "/up,workdir=" + folder + "/work";
        if (!mounts("overlay", folder + "/all", layers.c_str())) return true;
        return files.HoldFolder(folder + "/all") && files.IsHeld(folder + "/all");
    }));
}

TEST(StandardStreams, AreOpenAndDropWhatNobodyReadsAndSaySo) {
    EXPECT_TRUE(PassesInChild([] {
        ::close(0), ::close(1), ::close(2);
        OpenStandardDescriptors();
        return ::open("/dev/null", O_RDONLY) > 2;
    }));
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const Descriptor reader(pipe[0]), writer(pipe[1]);
    std::ostream stream(nullptr);
    const UnwaitingStream unwaiting(stream, writer.Number());
    for (int i = 0; i < 3000; ++i)
        stream << std::string(98, 'x') << std::endl;
    std::string bytes(1'000'000, '\0');
    EXPECT_GT(::read(reader.Number(), bytes.data(), bytes.size()), 4096);
    stream << "after" << std::endl;
    bytes.resize(static_cast<std::size_t>(::read(reader.Number(), bytes.data(), bytes.size())));
    EXPECT_TRUE(Holds(bytes, "nobody read them: ") && Holds(bytes, "after")) << bytes;
}

}  // namespace korvane::files_test
