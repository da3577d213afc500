// The settings file on disk. Each write is on the disk when it returns, the rest of the file stays unchanged byte for byte, and
// an operator's edits are seen at the next access. An existing file that cannot be understood is never written.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "store/ini_document.h"

namespace korvane {

/// Values are read up to this many characters.
constexpr std::size_t kIniValueLimit = 250;

/// Nothing here throws: what cannot be read has its default, what cannot be written is not written.
class IniFile {
public:
    /// The file need not exist; the first write creates it. With an empty path there is no file: defaults are read, nothing is
    /// written.
    IniFile(Files& files, std::string path) : files_(files), path_(std::move(path)) {}
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    const std::string& Path() const { return path_; }

    /// Returns the value, cut to kIniValueLimit characters and without spaces around it; the default when nothing is left.
    /// Section and key names are case-insensitive.
    std::string Read(std::string_view section, std::string_view key, std::string_view defaultValue);

    /// The value is on the disk when this returns, unless a Batch is open. Line ends in the value become spaces. An existing key
    /// keeps its spelling.
    void Write(std::string_view section, std::string_view key, std::string_view value);

    /// Returns why the file cannot be used, in words; empty when it can be (a missing file can).
    std::string Problem();

    /// Returns why the last write failed; empty when it succeeded.
    const std::string& LastWriteError() const { return lastWriteError_; }

    /// Combines all writes during its lifetime into one at its end. Reads see them at once. May be nested. Must not exist while
    /// events are delivered.
    class Batch {
    public:
        explicit Batch(IniFile& file);
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        IniFile& file_;
    };

private:
    struct PendingWrite {
        std::string section, key, value;
    };

    void LookAgain();
    bool ChangedOnDisk();
    void Load();
    void ChangeInMemory(const PendingWrite& write);
    void Commit();
    void SaveDocument();

    Files& files_;
    std::string path_;
    IniDocument document_;
    std::optional<FileIdentity> identity_;  ///< of the file that document_ was read from; nothing if there was none
    bool loaded_ = false;
    std::string problem_;
    std::string lastWriteError_;
    int openBatches_ = 0;
    std::vector<PendingWrite> pending_;
    int unsaved_ = 0;        ///< how many values the pending writes changed in document_
    std::string savedText_;  ///< that of the file
};

}  // namespace korvane
