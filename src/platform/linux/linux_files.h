// Files on the disk. When Replace or Copy returns, the data is on the disk, not just on its way there.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/linux/descriptor.h"

namespace korvane {

/// Append and Overwrite leave it to the system when the bytes reach the disk: they survive the end of the program, but not always
/// a crash of the machine.
///
/// Replace and Copy need a writable folder for their single step. If the folder is not writable, or the owner of the file could
/// not be kept, they reserve disk space and then overwrite the file in place.
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

    /// The hold ends with this object or the process. Throws Error when the folder is not writable or its file system does not
    /// support locks.
    bool HoldFolder(const std::string& path) override;
    bool IsHeld(const std::string& path) override;

private:
    std::map<std::pair<dev_t, ino_t>, Descriptor> holds_;  ///< by device and inode of the locked file
};

}  // namespace korvane
