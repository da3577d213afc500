// Files that break on request: hands everything on to other files unless a fault of its plan says otherwise. An operation that
// fails has not happened.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"
#include "support/fault_plan.h"

namespace korvane {

enum class FilesOperation { Identity, Read, Replace, Overwrite, Append, Copy, Publish, Remove, Rename, FileNames, CreateFolder };

class FaultyFiles : public Files {
    using Op = FilesOperation;
    using Path = const std::string&;

public:
    /// `files` must outlive this.
    explicit FaultyFiles(Files& files) : files_(files) {}

    /// A fault is about a path; for Copy and Rename about the one that is written.
    FaultPlan<FilesOperation> faults;

    /// From now on nothing can be written ("No space left on device"), until faults.Heal().
    void FillDisk() {
        for (const Op operation : {Op::Replace, Op::Append, Op::Copy, Op::Publish, Op::CreateFolder})
            faults.Add({.operation = operation, .forever = true, .description = "No space left on device"});
    }

    std::optional<FileIdentity> Identity(Path path) override { return At(Op::Identity, path).Identity(path); }
    std::optional<std::string> Read(Path path) override { return At(Op::Read, path).Read(path); }
    void Replace(Path path, std::string_view text) override { At(Op::Replace, path).Replace(path, text); }
    void Overwrite(Path path, std::int64_t offset, std::string_view bytes) override {
        At(Op::Overwrite, path).Overwrite(path, offset, bytes);
    }
    void Append(Path path, std::string_view text) override { At(Op::Append, path).Append(path, text); }
    void Copy(Path from, Path to) override { At(Op::Copy, to).Copy(from, to); }
    void Publish(Path path, std::string_view text) override { At(Op::Publish, path).Publish(path, text); }
    void PublishPage(Path path, const std::function<void(const TakeText& take)>& write) override {
        At(Op::Publish, path).PublishPage(path, write);
    }
    void Remove(Path path) override { At(Op::Remove, path).Remove(path); }
    void Rename(Path from, Path to) override { At(Op::Rename, to).Rename(from, to); }
    std::vector<std::string> FileNames(Path folder) override { return At(Op::FileNames, folder).FileNames(folder); }
    void CreateFolder(Path path) override { At(Op::CreateFolder, path).CreateFolder(path); }
    std::string RealPath(Path path) override { return files_.RealPath(path); }
    bool HoldFolder(Path path) override { return files_.HoldFolder(path); }

private:
    Files& At(Op operation, Path path) { return faults.Pass(operation, path, files_); }

    Files& files_;
};

}  // namespace korvane
