// Port: files and folders. Each operation handles a whole file and either succeeds or reports why not. None blocks longer than
// the disk does.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// Distinguishes one content of a file from another without reading it: device, inode, size and time of the last change.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = -1;
    std::int64_t changedNanoseconds = 0;
    bool operator==(const FileIdentity&) const = default;
};

/// Receives a text piece by piece.
using TakeText = std::function<void(std::string_view piece)>;

class Files {
public:
    virtual ~Files() = default;

    /// Returns nothing when there is no such file.
    virtual std::optional<FileIdentity> Identity(const std::string& path) = 0;
    bool Exists(const std::string& path) { return Identity(path).has_value(); }

    /// Returns the whole file, or nothing when it does not exist. Throws Error when it exists but cannot be read or is not a
    /// file.
    virtual std::optional<std::string> Read(const std::string& path) = 0;

    /// Replaces the file in one step: every reader, even after a crash or a power cut, sees either the old or the new text. A new
    /// file gets mode 0600, an existing one keeps its mode; a link stays a link. Throws Error and leaves the file unchanged.
    virtual void Replace(const std::string& path, std::string_view text) = 0;

    /// Overwrites bytes inside an existing file without changing its length. Throws Error.
    virtual void Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) = 0;

    /// Appends to the file in one write, and creates it with mode 0640. Throws Error, also when the path is a pipe or a device.
    virtual void Append(const std::string& path, std::string_view text) = 0;

    /// Copies in one step, as Replace does; the copy of a database also gets mode 0600. Throws Error.
    virtual void Copy(const std::string& from, const std::string& to) = 0;

    /// Like Replace, for a page that can be generated again: readers see either the old or the new text, but a power cut may lose
    /// the page. A new file is readable by everyone (0644). Throws Error.
    virtual void Publish(const std::string& path, std::string_view text) = 0;

    /// Like Publish, for a page of any length, which is written in the pieces that `write` provides and never held whole; `write`
    /// may be called a second time. A link of that name is replaced, not followed. Throws Error, and whatever `write` throws.
    virtual void PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) = 0;

    /// Does nothing if there is no such file. Throws Error.
    virtual void Remove(const std::string& path) = 0;

    /// Moves `from` to the place of `to` in one step, both on the same file system, and returns when that is on the disk. Throws
    /// Error and leaves both unchanged.
    virtual void Rename(const std::string& from, const std::string& to) = 0;

    /// Returns the sorted names of everything in the folder that is not a folder itself. Throws Error.
    virtual std::vector<std::string> FileNames(const std::string& folder) = 0;

    /// Creates the folder and its missing parents; an existing folder is not an error. Only the owner can write to a new one
    /// (0755 at most). Throws Error.
    virtual void CreateFolder(const std::string& path) = 0;

    /// Like CreateFolder, but only the owner can look into a new one (0700).
    virtual void CreatePrivateFolder(const std::string& path) { CreateFolder(path); }

    /// Resolves links, as far as the path exists. Throws Error.
    virtual std::string RealPath(const std::string& path) = 0;

    /// Only one process can hold a folder at a time, by a file in it that only its owner can open. Returns whether this process
    /// now holds it, until it ends.
    virtual bool HoldFolder(const std::string& path) = 0;

    /// Returns whether a process of this machine holds the folder. Looks only: a start at the same moment is not disturbed.
    virtual bool IsHeld(const std::string& /*path*/) { return false; }
};

}  // namespace korvane
