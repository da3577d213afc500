// A folder of a test's own, in memory where the system has a place for that. It goes with all that is in it when this object
// goes.
#pragma once

#include <string>

namespace korvane {

/// The bytes of a file; empty when there is none.
std::string ReadAll(const std::string& path);

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Without a "/" at its end.
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace korvane
