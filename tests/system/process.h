// Other programs and the folders they work in, for tests that meet the real world: nothing of them is left behind.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::test {

/// Whether a program is installed, where programs or where servers lie.
bool Installed(const std::string& program);

/// Ends the test as skipped where a program is not installed.
#define KORVANE_NEEDS(program) \
    if (!korvane::test::Installed(program)) GTEST_SKIP() << program << " is not installed (scripts/setup --test)"

/// A folder that lives as long as this object.
class PrivateFolder {
public:
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    std::string Path(std::string_view name = "") const { return path_ / name; }
    void Write(std::string_view name, std::string_view text) const;
    /// Blank when there is no such file.
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path path_;
};

/// One program in a process group of its own. It dies with this object, or with the test if that dies first.
class Process {
public:
    enum class Rights { Own, Nobody };  ///< Nobody: of user "nobody" when the test is root; the folder is then given to that user

    /// Standard output and error go to the file "output" of the folder. The first word is looked up where programs and servers
    /// lie.
    Process(const std::vector<std::string>& command, const PrivateFolder& folder, Rights rights = Rights::Own);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void Signal(int number) const;
    /// Waits for the end, and tells whether it came within the limit.
    bool Ended(std::chrono::milliseconds limit) const;
    /// Of a process that has ended: its exit status, or minus the signal that ended it.
    int ExitStatus() const;

private:
    int pid_ = 0;
    int ended_ = -1;  ///< a descriptor that can be read once the process has ended
};

/// The rows of a query by SQLite's own tool, one a line, their columns between "|". Blank as long as there is no such file.
std::string Rows(const std::string& database, const std::string& sql);

}  // namespace korvane::test
