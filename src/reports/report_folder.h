// The folder tree of the published pages and the templates they are merged into.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/files.h"
#include "store/settings_collection.h"

namespace korvane {

constexpr std::string_view kGroupTemplate = "grouptmp.htm";
constexpr std::string_view kSummaryTemplate = "summaryreporttmp.htm";
constexpr std::string_view kFailureTemplate = "failurereporttmp.htm";
constexpr std::string_view kGraphTemplate = "dailyreporttmp.htm";

/// The whole file, or the empty text when there is none or it can't be read.
std::string ReadFileText(Files& files, const std::string& path);

/// Hands on a text piece by piece; it can be called again for the same text.
using Pieces = std::function<void(const TakeText& take)>;

/// Replaces the file in one step with the text and a line end behind it, so that a browser never reads half a page. Whether that
/// worked; if not, `strReason` tells why.
bool WriteFileText(Files& files, const std::string& path, const Pieces& text, std::string& strReason);

/// What stands in a page in place of [[REPORT]], [[TOTAL]], [[DATE]] and [[GROUP]].
struct PageContents {
    std::string report;
    int total = 0;
    std::string group;
};

class ReportFolder {
public:
    /// All are borrowed and must outlive this. `dir` is where the templates and the pictures are.
    ReportFolder(Files& files, const Clock& clock, const SettingsCollection& settings, std::string dir)
        : files_(files), clock_(clock), settings_(settings), dir_(std::move(dir)) {}

    /// "<ReportPath>/R<idCustomer>"; both setting and names as they stand.
    std::string CustomerFolder(const std::string& idCustomer) const;
    /// The group's folder inside it.
    std::string GroupFolder(const std::string& idCustomer, const std::string& strGroup) const;

    /// The store takes names that differ only in case for one group: until the next call its folder is spelt as here, whichever
    /// of its servers asks.
    void EnterGroup(const std::string& strGroup) { group_ = strGroup; }

    /// An existing folder, or one that can't be made, is no error here: the write that follows tells.
    void CreateFolder(const std::string& path);

    /// The template with its placeholders replaced in their order; text that came in for one is searched for the next. Empty
    /// without the template.
    std::string Merge(std::string_view templateFile, const PageContents& contents);

    /// Throws Error with the path when the page can't be written, or when a name or a link would lead it away from its place below
    /// "ReportPath". A page that is a link itself is replaced.
    void Write(const std::string& path, const std::string& page);

    /// Merges and writes a page whose report is too long to be held. A placeholder never lies across two pieces of `report`,
    /// which takes the place of that of `contents`.
    void WriteLong(const std::string& path, std::string_view templateFile, const PageContents& contents, const Pieces& report);

    /// False also where there can be no such file.
    bool Exists(const std::string& path);

    /// Brings the pictures along, all of them, unless the folder has its mark: citrix.gif.
    void EnsurePictures();

private:
    void MergeInPieces(std::string_view templateFile, const PageContents& contents, const Pieces& report, const TakeText& take);
    void WritePieces(const std::string& path, const Pieces& page);
    bool IsInPlace(const std::string& path, std::size_t levels) const;
    bool LeadsOut(const std::string& folder, std::string& strReason);

    Files& files_;
    const Clock& clock_;
    const SettingsCollection& settings_;
    std::string dir_;
    std::string group_;
};

}  // namespace korvane
