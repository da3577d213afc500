// The settings file on disk. Each write is on the disk when it returns, everything else in the file stays byte for byte, and what
// an operator changes meanwhile is seen at the next access. A file that is there but makes no sense is never written to.
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

/// Nothing in here throws: what cannot be read has its default, what cannot be written is not written.
class IniFile {
public:
    /// The file need not exist; its first write makes it. With a blank path there is no file: defaults are read, nothing is
    /// written.
    IniFile(Files& files, std::string path) : files_(files), path_(std::move(path)) {}
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    const std::string& Path() const { return path_; }

    /// The value, cut to kIniValueLimit characters and without blanks around it; the default when nothing is left. Names of
    /// sections and keys in any case.
    std::string Read(std::string_view section, std::string_view key, std::string_view defaultValue);

    /// On the disk when it returns, unless a Batch is open. Line ends in the value become blanks. An existing key keeps its
    /// spelling.
    void Write(std::string_view section, std::string_view key, std::string_view value);

    /// Why the file can't be used, in words; blank when it can be (a missing file can).
    std::string Problem();

    /// Why the last write failed; blank when it succeeded.
    const std::string& LastWriteError() const { return lastWriteError_; }

    /// Collects the writes of its lifetime into one that happens at its end. Reads see them at once. May be nested.
    /// Hold none while events are delivered.
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
    std::optional<FileIdentity> identity_;  ///< of the file that document_ was read from; nothing: there was none
    bool loaded_ = false;
    std::string problem_;
    std::string lastWriteError_;
    int openBatches_ = 0;
    std::vector<PendingWrite> pending_;
    IniDocument::Result unsaved_;  ///< what the pending writes changed in document_
    std::string unsavedValue_;     ///< the value of the only one that changed something
};

}  // namespace korvane
