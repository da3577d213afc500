// The folder tree of the published pages, and the templates of the pages.
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

/// Passes on a text piece by piece; can be called again for the same text.
using Pieces = std::function<void(const TakeText& take)>;

/// The replacements for [[REPORT]], [[TOTAL]], [[DATE]] and [[GROUP]] in a page.
struct PageContents {
    std::string report;
    int total = 0;
    std::string group;
};

class ReportFolder {
public:
    /// Holds references; everything must outlive this. `dir` is the folder of the templates and the pictures.
    ReportFolder(Files& files, const Clock& clock, const SettingsCollection& settings, std::string dir)
        : files_(files), clock_(clock), settings_(settings), dir_(std::move(dir)) {}

    /// Returns "<ReportPath>/R<idCustomer>"; setting and names stay unchanged.
    std::string CustomerFolder(const std::string& idCustomer) const;
    /// Returns the group's folder inside it.
    std::string GroupFolder(const std::string& idCustomer, const std::string& strGroup) const;

    /// The store treats names that differ only in case as one group: until the next call, its folder has this spelling for all of
    /// its servers.
    void EnterGroup(const std::string& strGroup) { group_ = strGroup; }

    /// Ignores an existing folder, and one that cannot be created: the following write then fails.
    void CreateFolder(const std::string& path);

    /// Returns the template with its placeholders replaced in order; an inserted text is searched for the following placeholders.
    /// Empty without the template.
    std::string Merge(std::string_view templateFile, const PageContents& contents);

    /// Replaces the page in one step by the text and a line end, so that a browser never reads half a page. Throws Error with the
    /// path when the page cannot be written, or when a name or a link would lead outside its place below
    /// "ReportPath". A page that is a link itself is replaced.
    void Write(const std::string& path, const std::string& page);

    /// Merges and writes a page whose report is too long for memory. A placeholder must not span two pieces of `report`, which
    /// replaces the report of `contents`.
    void WriteLong(const std::string& path, std::string_view templateFile, const PageContents& contents, const Pieces& report);

    /// Replaces a file for other programs in the report folder itself, in the same way and exactly by the pieces of `text`.
    void WriteFigures(const std::string& name, const Pieces& text);

    /// Returns false also where no such file is possible.
    bool Exists(const std::string& path);

    /// Copies all the pictures, unless the folder already has the marking picture citrix.gif.
    void EnsurePictures();

private:
    void MergeInPieces(std::string_view templateFile, const PageContents& contents, const Pieces& report, const TakeText& take);
    void WritePieces(const std::string& path, const Pieces& page);
    bool IsInPlace(const std::string& path, std::size_t levels) const;
    void RequireInside(const std::string& folder);
    std::string Root() const { return settings_.getKvSettingsColVal("ReportPath"); }

    Files& files_;
    const Clock& clock_;
    const SettingsCollection& settings_;
    std::string dir_;
    std::string group_;
};

}  // namespace korvane
