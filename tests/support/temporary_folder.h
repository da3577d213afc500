// A folder of a test's own, in memory where the system has a place for that. It goes with all that is in it when this object
// goes.
#pragma once

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace korvane {

/// The bytes of a file; empty when there is none.
inline std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class TemporaryFolder {
public:
    TemporaryFolder() {
        if (mkdtemp(path_.data()) == nullptr) throw std::system_error(errno, std::generic_category(), path_);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_, ignored_); }
    TemporaryFolder(const TemporaryFolder&) = delete;

    /// Without a "/" at its end.
    const std::string& Path() const { return path_; }

private:
    std::error_code ignored_;
    std::string path_ =
        (std::filesystem::is_directory("/dev/shm", ignored_) ? "/dev/shm" : "/tmp") + std::string("/korvane-test-XXXXXX");
};

}  // namespace korvane
