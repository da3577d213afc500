#include "support/memory_files.h"

#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

std::string FolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return "";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

std::optional<FileIdentity> MemoryFiles::Identity(const std::string& path) {
    if (folders_.contains(path)) return FileIdentity{1, 0, 0, 0};
    const auto found = files_.find(path);
    if (found == files_.end()) return std::nullopt;
    const File& file = found->second;
    return FileIdentity{1, file.inode, static_cast<std::int64_t>(file.text.size()), file.changed};
}

std::optional<std::string> MemoryFiles::Read(const std::string& path) {
    if (folders_.contains(path)) throw Error("Is a directory: " + path);
    const auto found = files_.find(path);
    if (found == files_.end()) return std::nullopt;
    return found->second.text;
}

void MemoryFiles::Replace(const std::string& path, std::string_view text) {
    Put(path, std::string(text));
}

void MemoryFiles::Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) {
    File& file = Existing(path);
    const auto begin = static_cast<std::size_t>(offset);
    if (offset < 0 || begin + bytes.size() > file.text.size()) throw Error("Outside of the file: " + path);
    file.text.replace(begin, bytes.size(), bytes);
    file.changed = ++lastChange_;
}

void MemoryFiles::Append(const std::string& path, std::string_view text) {
    if (!files_.contains(path)) return Put(path, std::string(text));
    File& file = Existing(path);
    file.text += text;
    file.changed = ++lastChange_;
}

void MemoryFiles::Copy(const std::string& from, const std::string& to) {
    Put(to, Existing(from).text);
}

void MemoryFiles::Publish(const std::string& path, std::string_view text) {
    Put(path, std::string(text));
}

void MemoryFiles::PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) {
    std::string text;
    write([&](std::string_view piece) { text += piece; });
    Put(path, std::move(text));
}

void MemoryFiles::Remove(const std::string& path) {
    if (folders_.contains(path)) throw Error("Is a directory: " + path);
    files_.erase(path);
}

void MemoryFiles::Rename(const std::string& from, const std::string& to) {
    Put(to, Existing(from).text);
    files_.erase(from);
}

std::vector<std::string> MemoryFiles::FileNames(const std::string& folder) {
    if (!folders_.contains(folder)) throw Error("No such file or directory: " + folder);
    std::vector<std::string> names;
    for (const auto& [path, file] : files_) {
        if (FolderOf(path) == folder) names.push_back(path.substr(path.rfind('/') + 1));
    }
    return names;
}

void MemoryFiles::CreateFolder(const std::string& path) {
    if (path.empty() || path == "/") return;
    if (files_.contains(path)) throw Error("Not a directory: " + path);
    CreateFolder(FolderOf(path));
    folders_.insert(path);
}

bool MemoryFiles::HoldFolder(const std::string& path) {
    return !heldElsewhere_.contains(path);
}

std::string MemoryFiles::Text(const std::string& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? "" : found->second.text;
}

std::vector<std::string> MemoryFiles::Paths() const {
    std::vector<std::string> paths;
    for (const auto& [path, file] : files_)
        paths.push_back(path);
    return paths;
}

MemoryFiles::File& MemoryFiles::Existing(const std::string& path) {
    const auto found = files_.find(path);
    if (found == files_.end()) throw Error("No such file or directory: " + path);
    return found->second;
}

void MemoryFiles::Put(const std::string& path, std::string text) {
    if (folders_.contains(path)) throw Error("Is a directory: " + path);
    if (!folders_.contains(FolderOf(path))) throw Error("No such file or directory: " + path);
    // Replacing is a rename of a new file.
    files_[path] = {std::move(text), ++lastInode_, ++lastChange_};
}

}  // namespace korvane
