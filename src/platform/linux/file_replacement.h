// Replaces the whole content of a file: by a sibling file that takes its place in one step or, where the system does not allow
// it, in place.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/linux/descriptor.h"

namespace korvane {

/// Throws Error: "Cannot <action> <path>: <reason>", with the reason of errno.
[[noreturn]] void ThrowFileError(const char* action, const std::string& path);

/// Writes all bytes at the descriptor's current position. Throws Error, which names `path`.
void WriteAll(const Descriptor& file, std::string_view bytes, const std::string& path);

/// Flushes the names in the folder of `path` to the disk.
void FlushFolderOf(const std::string& path);

/// How a file replaces another.
struct Placing {
    bool flush = true;         ///< whether the file is on the disk when the call returns
    unsigned newMode = 0600;   ///< for a file that did not exist before
    bool replaceLink = false;  ///< a link is replaced, and its target stays unchanged; otherwise the file at its end is replaced
};

/// Gives the file the text that `write` provides in pieces: in a new file beside it, which is flushed to the disk (unless `placing`
/// says otherwise) and takes its place with the mode and owner of the existing file, else with the mode in `placing`. An existing
/// file is overwritten in place if its folder is not writable, its owner could not be kept, or something is mounted on it; disk
/// space is reserved first, so that a full disk is noticed while the old text is still whole, and `write` is called again. Throws
/// Error for all other failures, and whatever `write` throws.
void ReplaceFile(const std::string& path, const std::function<void(const TakeText& take)>& write, const Placing& placing = {});

}  // namespace korvane
