// Port: files and folders. Small whole-file operations that either happen or report why not; nothing here blocks longer than the
// disk does.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// Tells one content of a file from another without reading it: device, inode, size and time of the last change.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = -1;
    std::int64_t changedNanoseconds = 0;
    bool operator==(const FileIdentity&) const = default;
};

/// Gets a text piece by piece.
using TakeText = std::function<void(std::string_view piece)>;

class Files {
public:
    virtual ~Files() = default;

    /// Nothing when there is no such file.
    virtual std::optional<FileIdentity> Identity(const std::string& path) = 0;
    bool Exists(const std::string& path) { return Identity(path).has_value(); }

    /// The whole file. Throws Error when it exists but cannot be read, or is no file; nothing when there is none.
    virtual std::optional<std::string> Read(const std::string& path) = 0;

    /// Replaces the file in one step: whoever looks, also after a crash or a power cut, sees the old text or the new one. A new
    /// file gets the mode 0600, an existing one keeps its own; a link stays a link. Throws Error and leaves the file as it was.
    virtual void Replace(const std::string& path, std::string_view text) = 0;

    /// Writes over bytes inside an existing file without changing its length. Throws Error.
    virtual void Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) = 0;

    /// Adds to the end of the file in one write, creating it with the mode 0640. Throws Error, also for a pipe or device in its
    /// place.
    virtual void Append(const std::string& path, std::string_view text) = 0;

    /// Copies in one step, as Replace does; the copy of a database gets the mode 0600 too. Throws Error.
    virtual void Copy(const std::string& from, const std::string& to) = 0;

    /// As Replace for a page that can be made again: whoever looks sees the old text or the new one, but after a power cut it may
    /// be gone. A new file can be read by everybody (0644). Throws Error.
    virtual void Publish(const std::string& path, std::string_view text) = 0;

    /// The same for a page of any length, which is written as `write` hands it on, and not held; `write` may be called a second
    /// time. A link of that name is replaced and not followed. Throws Error, and what `write` throws.
    virtual void PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) = 0;

    /// No error when there is none. Throws Error.
    virtual void Remove(const std::string& path) = 0;

    /// `from` takes the place of `to` in one step, both on the same disk, and is on the disk when this returns. Throws Error and
    /// leaves both as they were.
    virtual void Rename(const std::string& from, const std::string& to) = 0;

    /// The names of what is in the folder and is no folder itself, in order. Throws Error.
    virtual std::vector<std::string> FileNames(const std::string& folder) = 0;

    /// With the folders above it; an existing folder is no error. Nobody but its owner can write to a new one (0755 at most).
    /// Throws Error.
    virtual void CreateFolder(const std::string& path) = 0;

    /// The same, but nobody but its owner can look into a new one either (0700).
    virtual void CreatePrivateFolder(const std::string& path) { CreateFolder(path); }

    /// The path without links, as far as it exists. Throws Error.
    virtual std::string RealPath(const std::string& path) = 0;

    /// One process holds a folder at a time, by a file in it that nobody but its owner can open. Whether this process holds it
    /// now, until it ends.
    virtual bool HoldFolder(const std::string& path) = 0;
};

}  // namespace korvane
