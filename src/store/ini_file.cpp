#include "store/ini_file.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

// Many times the size of the largest possible settings file.
constexpr std::int64_t kLargestFile = 64 << 20;

// Returns one line that reads back correctly: a line end would end the value, a NUL would make the file unreadable.
std::string OneLine(std::string_view value) {
    std::string line = ReplaceAll(value, "\r\n", " ");
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return line;
}

}  // namespace

std::string IniFile::Read(std::string_view section, std::string_view key, std::string_view defaultValue) {
    LookAgain();
    const auto found = document_.Find(section, key);
    const std::string value = found ? Trim(Left(ToUtf8(std::string(*found)), kIniValueLimit)) : std::string();
    return value.empty() ? std::string(defaultValue) : value;
}

void IniFile::Write(std::string_view section, std::string_view key, std::string_view value) {
    if (path_.empty()) return;
    LookAgain();
    pending_.push_back({std::string(section), std::string(key), OneLine(value)});
    ChangeInMemory(pending_.back());
    if (openBatches_ == 0) Commit();
}

std::string IniFile::Problem() {
    LookAgain();
    return problem_;
}

void IniFile::LookAgain() {
    if (path_.empty() || openBatches_ > 0) return;  // a batch checks only at its beginning and at its end
    if (!loaded_ || ChangedOnDisk()) Load();
}

bool IniFile::ChangedOnDisk() {
    try {
        return files_.Identity(path_) != identity_;
    } catch (const Error&) {
        return true;
    }
}

void IniFile::Load() {
    document_ = IniDocument();
    savedText_.clear();
    unsaved_ = 0;
    problem_.clear();
    loaded_ = true;
    try {
        identity_ = files_.Identity(path_);
        if (!identity_) return;
        if (identity_->size > kLargestFile) {
            problem_ = path_ + " is too large to be a settings file.";
            return;
        }
        savedText_ = files_.Read(path_).value_or("");
        if (savedText_.find('\0') != std::string::npos) {
            problem_ = path_ + " is no text file.";
            return;
        }
        document_ = IniDocument(savedText_);
    } catch (const Error& error) {
        problem_ = error.what();
        loaded_ = false;  // the next access tries again
    }
}

void IniFile::ChangeInMemory(const PendingWrite& write) {
    if (problem_.empty() && document_.Set(write.section, write.key, write.value)) ++unsaved_;
}

// Changes made by others since the document was read are kept: the writes are then repeated on the new text.
void IniFile::Commit() {
    const std::vector<PendingWrite> writes = std::exchange(pending_, {});
    if (writes.empty()) return;
    if (!loaded_ || ChangedOnDisk()) {
        Load();
        for (const PendingWrite& write : writes)
            ChangeInMemory(write);
    }
    if (!problem_.empty()) {
        lastWriteError_ = problem_;
        return;
    }
    try {
        SaveDocument();
        lastWriteError_.clear();
    } catch (const Error& error) {
        lastWriteError_ = error.what();
        loaded_ = false;  // the document is newer than the disk
    }
    unsaved_ = 0;
}

// A value of the same length, such as the id counter, writes only a few bytes, everything else the whole file.
void IniFile::SaveDocument() {
    if (unsaved_ == 0) return;
    std::string text = document_.Text();
    if (unsaved_ == 1 && text.size() == savedText_.size()) {
        const auto first = std::mismatch(text.begin(), text.end(), savedText_.begin()).first;
        const auto last = std::mismatch(text.rbegin(), text.rend(), savedText_.rbegin()).first.base();
        files_.Overwrite(path_, first - text.begin(), std::string_view(first, last));
    } else {
        files_.Replace(path_, text);
    }
    savedText_ = std::move(text);
    identity_ = files_.Identity(path_);
}

IniFile::Batch::Batch(IniFile& file) : file_(file) {
    if (file_.openBatches_ == 0) file_.LookAgain();
    ++file_.openBatches_;
}

IniFile::Batch::~Batch() {
    if (--file_.openBatches_ == 0) file_.Commit();
}

}  // namespace korvane
