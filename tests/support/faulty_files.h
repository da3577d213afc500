// Files that break on request: hands everything on to other files unless a fault of its plan says otherwise. An operation that
// fails has not happened.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"
#include "support/fault_plan.h"

namespace korvane {

enum class FilesOperation {
    Identity,
    Read,
    Replace,
    Overwrite,
    Append,
    Copy,
    Publish,
    Remove,
    Rename,
    Link,
    FileNames,
    CreateFolder
};

class FaultyFiles : public Files {
public:
    /// `files` must outlive this.
    explicit FaultyFiles(Files& files) : files_(files) {}

    /// A fault is about a path; for Copy and Rename about the one that is written.
    FaultPlan<FilesOperation> faults;

    /// From now on nothing can be written ("No space left on device"), until faults.Heal().
    void FillDisk();

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
    std::string RealPath(const std::string& path) override { return files_.RealPath(path); }
    bool HoldFolder(const std::string& path) override { return files_.HoldFolder(path); }

private:
    Files& files_;
};

}  // namespace korvane
