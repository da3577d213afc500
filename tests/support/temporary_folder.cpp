#include "support/temporary_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace korvane {
namespace {

namespace fs = std::filesystem;

fs::path Parent() {
    std::error_code ignored;
    return fs::is_directory("/dev/shm", ignored) ? fs::path("/dev/shm") : fs::temp_directory_path();
}

}  // namespace

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TemporaryFolder::TemporaryFolder() : path_(Parent() / "korvane-test-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw std::system_error(errno, std::generic_category(), path_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace korvane
