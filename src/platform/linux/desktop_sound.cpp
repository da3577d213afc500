#include "platform/linux/desktop_sound.h"

#include <filesystem>

#include "base/ignore_errors.h"

namespace korvane {
namespace {

constexpr const char* kPlayers[] = {"pw-play", "paplay", "aplay"};

}  // namespace

void DesktopSound::PlaySound(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return;
    // An absolute path, so that no player takes a file name for one of its options.
    const std::filesystem::path file = std::filesystem::absolute(path, error);
    if (error) return;
    for (const char* player : kPlayers) {
        if (IgnoreErrors([&] { processes_.Start({player, file.string()}); })) return;
    }
}

}  // namespace korvane
