#include "support/faulty_files.h"

namespace korvane {

void FaultyFiles::FillDisk() {
    using Operation = FilesOperation;
    for (const Operation operation :
         {Operation::Replace, Operation::Append, Operation::Copy, Operation::Publish, Operation::CreateFolder}) {
        faults.Add({.operation = operation, .forever = true, .description = "No space left on device"});
    }
}

std::optional<FileIdentity> FaultyFiles::Identity(const std::string& path) {
    faults.Pass(FilesOperation::Identity, path);
    return files_.Identity(path);
}

std::optional<std::string> FaultyFiles::Read(const std::string& path) {
    faults.Pass(FilesOperation::Read, path);
    return files_.Read(path);
}

void FaultyFiles::Replace(const std::string& path, std::string_view text) {
    faults.Pass(FilesOperation::Replace, path);
    files_.Replace(path, text);
}

void FaultyFiles::Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) {
    faults.Pass(FilesOperation::Overwrite, path);
    files_.Overwrite(path, offset, bytes);
}

void FaultyFiles::Append(const std::string& path, std::string_view text) {
    faults.Pass(FilesOperation::Append, path);
    files_.Append(path, text);
}

void FaultyFiles::Copy(const std::string& from, const std::string& to) {
    faults.Pass(FilesOperation::Copy, to);
    files_.Copy(from, to);
}

void FaultyFiles::Publish(const std::string& path, std::string_view text) {
    faults.Pass(FilesOperation::Publish, path);
    files_.Publish(path, text);
}

void FaultyFiles::PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) {
    faults.Pass(FilesOperation::Publish, path);
    files_.PublishPage(path, write);
}

void FaultyFiles::Remove(const std::string& path) {
    faults.Pass(FilesOperation::Remove, path);
    files_.Remove(path);
}

void FaultyFiles::Rename(const std::string& from, const std::string& to) {
    faults.Pass(FilesOperation::Rename, to);
    files_.Rename(from, to);
}

std::vector<std::string> FaultyFiles::FileNames(const std::string& folder) {
    faults.Pass(FilesOperation::FileNames, folder);
    return files_.FileNames(folder);
}

void FaultyFiles::CreateFolder(const std::string& path) {
    faults.Pass(FilesOperation::CreateFolder, path);
    files_.CreateFolder(path);
}

}  // namespace korvane
