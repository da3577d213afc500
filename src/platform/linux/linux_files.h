// Files on the disk. What is written is on the disk, not just on its way there, when Replace or Copy return.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/linux/descriptor.h"

namespace korvane {

/// From now on nothing that this process or a program that it starts makes can be written by others, whatever the process
/// inherited.
void KeepOthersFromWriting();

/// Append and Overwrite leave it to the system when the bytes get to the disk: they survive the end of the program, not always
/// that of the machine.
///
/// Replace and Copy need a folder that can be written for their one step. Where it cannot, or the owner of the file could not be
/// kept, they write over the file in place, after its room on the disk was reserved.
class LinuxFiles : public Files {
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
    void CreatePrivateFolder(const std::string& path) override;
    std::string RealPath(const std::string& path) override;

    /// The hold ends with this object or the process. Throws Error when the folder cannot be written or its file system knows no
    /// locks.
    bool HoldFolder(const std::string& path) override;

private:
    struct Hold {
        std::uint64_t device;
        std::uint64_t inode;
        Descriptor descriptor;
    };
    std::vector<Hold> holds_;
};

}  // namespace korvane
