// How a file gets a whole new content: by a sibling that takes its place in one step, or, where the system does not let it, in
// place.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/linux/descriptor.h"

namespace korvane {

/// Throws Error: "Cannot <action> <path>: <reason>", with the reason of errno.
[[noreturn]] void ThrowFileError(const char* action, const std::string& path);

/// Writes all of it where the descriptor stands. Throws Error in which `path` is named.
void WriteAll(const Descriptor& file, std::string_view bytes, const std::string& path);

/// The path at the end of a chain of symbolic links, whether or not a file is there. Throws Error when the chain has no end.
std::string FollowLinks(std::string path);

/// What becomes of a file that takes another's place.
struct Placing {
    bool flush = true;         ///< it is on the disk when the call returns
    unsigned newMode = 0600;   ///< of a file that was not there before
    bool replaceLink = false;  ///< a link counts as no file: it goes, and what it leads to stays as it is
};

/// Calls `write` with a new empty file beside `path`, moves it (unless `placing` says otherwise) to the disk and then into the
/// place of `path`. It has the mode and owner of the file that was there, else that of `placing`. False, with everything as it
/// was, when a file is there that can only be written in place: its folder is closed to this user, its owner could not be kept,
/// or something is mounted on it. Throws Error for all other failures, and hands on what `write` throws.
bool ReplaceBySibling(const std::string& path, const std::function<void(const Descriptor&)>& write, const Placing& placing = {});

/// Brings the names in the folder of `path` to the disk.
void FlushFolderOf(const std::string& path);

/// Writes over an existing file. Room on the disk is reserved first, so that a full one is noticed while the old text is still
/// whole. Throws Error.
void ReplaceInPlace(const std::string& path, std::string_view text);

}  // namespace korvane
