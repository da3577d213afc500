// Files that live in memory: for runs in which the disk would be the slowest part. Paths are taken as they are written; a file
// needs its folder, as on a disk, and "/" is there from the start.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace korvane {

class MemoryFiles : public Files {
public:
    std::optional<FileIdentity> Identity(const std::string& path) override;
    std::optional<std::string> Read(const std::string& path) override;
    void Replace(const std::string& path, std::string_view text) override;
    void Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) override;
    void Append(const std::string& path, std::string_view text) override;
    void Copy(const std::string& from, const std::string& to) override;
    void Publish(const std::string& path, std::string_view text) override;
    void PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) override;
    void Remove(const std::string& path) override;
    void Rename(const std::string& from, const std::string& to) override;
    std::vector<std::string> FileNames(const std::string& folder) override;
    void CreateFolder(const std::string& path) override;
    std::string RealPath(const std::string& path) override { return path; }
    bool HoldFolder(const std::string& path) override;

    /// Another process holds the folder from now on.
    void HoldElsewhere(const std::string& path) { heldElsewhere_.insert(path); }

    /// What the file holds; blank when there is none.
    std::string Text(const std::string& path) const;
    /// The paths of all files, in order.
    std::vector<std::string> Paths() const;

private:
    struct File {
        std::string text;
        std::uint64_t inode = 0;
        std::int64_t changed = 0;
    };
    File& Existing(const std::string& path);
    void Put(const std::string& path, std::string text);

    std::map<std::string, File> files_;
    std::set<std::string> folders_{"/"};
    std::set<std::string> heldElsewhere_;
    std::uint64_t lastInode_ = 0;
    std::int64_t lastChange_ = 0;
};

}  // namespace korvane
