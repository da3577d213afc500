// What LinuxFiles promises about modes, links, foreign folders and full disks.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "base/error.h"
#include "platform/linux/linux_files.h"
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
    ::umask(022);
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

TEST_F(LinuxFilesTest, OneProcessHoldsAFolder) {
    EXPECT_TRUE(files.HoldFolder(folder.Path()));
    EXPECT_FALSE(LinuxFiles().HoldFolder(folder.Path()));
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

}  // namespace
}  // namespace korvane
