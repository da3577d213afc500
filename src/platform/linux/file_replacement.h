// Replaces the whole content of a file: by a sibling file that takes its place in one step or, where the system does not allow
// it, in place.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/linux/descriptor.h"

namespace korvane {

/// Throws Error: "Cannot <action> <path>: <reason>", with the reason of errno.
[[noreturn]] void ThrowFileError(const char* action, const std::string& path);

/// Writes all bytes at the descriptor's current position. Throws Error, which names `path`.
void WriteAll(const Descriptor& file, std::string_view bytes, const std::string& path);

/// Returns the path at the end of a chain of symbolic links, whether or not a file exists there. Throws Error when the chain has
/// no end.
std::string FollowLinks(std::string path);

/// How a file replaces another.
struct Placing {
    bool flush = true;         ///< whether the file is on the disk when the call returns
    unsigned newMode = 0600;   ///< for a file that did not exist before
    bool replaceLink = false;  ///< a link counts as no file: it is replaced, and its target stays unchanged
};

/// Calls `write` with a new empty file beside `path`, flushes it to the disk (unless `placing` says otherwise) and moves it to
/// `path`. It gets the mode and owner of the existing file, else the mode in `placing`. Returns false and leaves everything
/// unchanged when the existing file can only be written in place: its folder is not writable, its owner could not be kept, or
/// something is mounted on it. Throws Error for all other failures, and passes on what `write` throws.
bool ReplaceBySibling(const std::string& path, const std::function<void(const Descriptor&)>& write, const Placing& placing = {});

/// Flushes the names in the folder of `path` to the disk.
void FlushFolderOf(const std::string& path);

/// Overwrites an existing file. Disk space is reserved first, so that a full disk is noticed while the old text is still whole.
/// Throws Error.
void ReplaceInPlace(const std::string& path, std::string_view text);

}  // namespace korvane
