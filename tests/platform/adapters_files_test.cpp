// What LinuxFiles promises about modes, links, foreign folders and full disks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/standard_streams.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::size_t FilesIn(const std::string& folder) {
    const std::filesystem::directory_iterator files(folder);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

template <class Action>
bool Throws(Action action) {
    try {
        action();
    } catch (const Error&) {
        return true;
    }
    return false;
}

class LinuxFilesTest : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::string path = folder.Path() + "/file";
    LinuxFiles files;
};

TEST_F(LinuxFilesTest, NewFilesArePrivateAndOldOnesKeepTheirMode) {
    ::umask(0);
    files.CreatePrivateFolder(path + ".d/private");
    EXPECT_EQ(ModeOf(path + ".d"), 0755U);
    EXPECT_EQ(ModeOf(path + ".d/private"), 0700U);
    KeepOthersFromWriting();
    EXPECT_EQ(::umask(022), 022U);
    files.Replace(path, "new");
    EXPECT_EQ(ModeOf(path), 0600U);
    files.Append(path + ".log", "new");
    EXPECT_EQ(ModeOf(path + ".log"), 0640U);
    files.Copy(path + ".log", path + ".copy");
    EXPECT_EQ(ModeOf(path + ".copy"), 0600U);
    for (const mode_t mode : {0644U, 0660U}) {
        ::chmod(path.c_str(), mode);
        files.Replace(path, "changed");
        EXPECT_EQ(ModeOf(path), mode);
        files.Copy(path + ".log", path);
        EXPECT_EQ(ModeOf(path), mode);
    }
}

TEST_F(LinuxFilesTest, LinksStayLinks) {
    std::filesystem::create_directory(folder.Path() + "/real");
    std::filesystem::create_symlink("real/file", path);
    std::filesystem::create_symlink(path, path + ".link");
    for (const char* text : {"into the void", "again"}) {
        files.Replace(path + ".link", text);
        EXPECT_EQ(files.Read(folder.Path() + "/real/file"), text);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_TRUE(std::filesystem::is_symlink(path + ".link"));
    std::filesystem::create_symlink("circle", folder.Path() + "/circle");
    EXPECT_THROW(files.Replace(folder.Path() + "/circle", "x"), Error);
}

TEST_F(LinuxFilesTest, AFileInAForeignFolderIsWrittenInPlace) {
    files.Replace(path, "a rather long text");
    ::chmod(path.c_str(), 0666);
    ::chmod(folder.Path().c_str(), 0555);
    const auto before = files.Identity(path);
    EXPECT_TRUE(PassesInChild([&] {
        GiveUpPrivileges();
        for (const char* text : {"short", "longer than before: 123456789"}) {
            files.Replace(path, text);
            if (files.Read(path) != text) return false;
        }
        files.PublishPage(path, [](const TakeText& take) { take("page"); });
        if (files.Read(path) != "page") return false;
        files.Copy("/etc/passwd", path);
        return files.Read(path) == files.Read("/etc/passwd") && Throws([&] { files.Replace(path + ".new", "x"); });
    }));
    EXPECT_EQ(files.Identity(path)->inode, before->inode);
    ::chmod(path.c_str(), 0444);
    EXPECT_TRUE(PassesInChild([&] {
        GiveUpPrivileges();
        return Throws([&] { files.Replace(path, "x"); });
    }));
    ::chmod(folder.Path().c_str(), 0755);
    EXPECT_EQ(FilesIn(folder.Path()), 1U);
}

TEST_F(LinuxFilesTest, AFullDiskLeavesEverythingAsItWas) {
    const std::string tooLong(30, 'x');
    const auto fillDisk = [] {
        const rlimit limit{20, 20};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    files.Replace(path, "old text\n");
    EXPECT_TRUE(PassesInChild([&] {
        fillDisk();
        return Throws([&] { files.Append(path, tooLong); }) && Throws([&] { files.Replace(path, tooLong); }) &&
               Throws([&] { files.Copy("/etc/passwd", path); }) && Throws([&] { files.Replace(path + "2", tooLong); });
    }));
    EXPECT_EQ(files.Read(path), "old text\n");
    EXPECT_EQ(FilesIn(folder.Path()), 1U);

    ::chmod(path.c_str(), 0666);
    ::chmod(folder.Path().c_str(), 0555);
    EXPECT_TRUE(PassesInChild([&] {
        GiveUpPrivileges();
        fillDisk();
        return Throws([&] { files.Replace(path, tooLong); });
    }));
    ::chmod(folder.Path().c_str(), 0755);
    EXPECT_EQ(files.Read(path), "old text\n");
}

TEST_F(LinuxFilesTest, APipeInPlaceOfALogIsRefused) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THROW(files.Append(path, "text"), Error);
    const Descriptor reader(::open(path.c_str(), O_RDONLY | O_NONBLOCK));
    EXPECT_THROW(files.Append(path, "text"), Error);
}

TEST_F(LinuxFilesTest, OneProcessHoldsAFolder) {
    const Descriptor anybodys(::open(folder.Path().c_str(), O_RDONLY));
    ASSERT_EQ(::flock(anybodys.Number(), LOCK_EX), 0);
    EXPECT_TRUE(files.HoldFolder(folder.Path()));
    EXPECT_EQ(ModeOf(folder.Path() + "/korvane.lock"), 0600U);
    std::filesystem::create_symlink(folder.Path(), path + ".link");
    EXPECT_FALSE(LinuxFiles().HoldFolder(path + ".link"));
    EXPECT_TRUE(files.HoldFolder(folder.Path() + "/."));
    EXPECT_THROW(files.HoldFolder(path), Error);
    {
        const TemporaryFolder brief;
        LinuxFiles others;
        EXPECT_TRUE(others.HoldFolder(brief.Path()));
        EXPECT_FALSE(files.HoldFolder(brief.Path()));
        others = LinuxFiles();
        EXPECT_TRUE(files.HoldFolder(brief.Path()));
    }
}

TEST(StandardStreams, DropWhatNobodyReadsAndSaySo) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(::grantpt(terminal) + ::unlockpt(terminal), 0);
    for (const auto& [reader, writer] :
         {std::pair{pipe[0], pipe[1]}, {terminal, ::open(::ptsname(terminal), O_RDWR | O_NOCTTY)}}) {
        const Descriptor readEnd(reader), writeEnd(writer);
        std::ostream stream(nullptr);
        const UnwaitingStream unwaiting(stream, writer);
        for (int i = 0; i < 3000; ++i)
            stream << std::string(98, 'x') << std::endl;
        std::array<char, 4096> bytes{};
        ::fcntl(reader, F_SETFL, O_NONBLOCK);
        while (::read(reader, bytes.data(), bytes.size()) > 0) {
        }
        stream << "after" << std::endl;
        const ssize_t size = ::read(reader, bytes.data(), bytes.size());
        const std::string text(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        EXPECT_TRUE(Holds(text, "nobody read them: ") && Holds(text, "after")) << text;
    }
}

TEST(StandardStreams, AreOpenWhateverTheProgramWasGiven) {
    EXPECT_TRUE(PassesInChild([] {
        for (int standard = 0; standard < 3; ++standard)
            ::close(standard);
        OpenStandardDescriptors();
        return ::open("/dev/null", O_RDONLY) > 2;
    }));
}

}  // namespace
}  // namespace korvane
