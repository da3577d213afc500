#include "reports/report_folder.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <vector>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

/// This picture marks the whole set as present.
constexpr const char* kPictureMark = "citrix.gif";

/// Greatest depth of a folder and a page below the report folder: "R<idCustomer>/<strGroup>/<page>".
constexpr std::size_t kFolderLevels = 2;
constexpr std::size_t kPageLevels = 3;

constexpr std::string_view kReportMark = "[[REPORT]]";

}  // namespace

std::string ReadFileText(Files& files, const std::string& path) {
    std::optional<std::string> text;
    IgnoreErrors([&] { text = files.Read(path); });
    return text.value_or("");
}

bool WriteFileText(Files& files, const std::string& path, const Pieces& text, std::string& strReason) {
    try {
        files.PublishPage(path, [&](const TakeText& take) {
            text(take);
            take("\r\n");
        });
        return true;
    } catch (const std::exception& error) {
        strReason = error.what();
        return false;
    }
}

std::string ReportFolder::CustomerFolder(const std::string& idCustomer) const {
    return settings_.getKvSettingsColVal("ReportPath") + "/R" + idCustomer;
}

std::string ReportFolder::GroupFolder(const std::string& idCustomer, const std::string& strGroup) const {
    return CustomerFolder(idCustomer) + "/" + (EqualsNoCase(strGroup, group_) ? group_ : strGroup);
}

// The names come unchecked from the database and may contain anything.
bool ReportFolder::IsInPlace(const std::string& path, std::size_t levels) const {
    const std::string root = settings_.getKvSettingsColVal("ReportPath") + "/";
    if (!path.starts_with(root) || path.find('\0') != std::string::npos) return false;
    const std::vector<std::string> names = Split(std::string_view(path).substr(root.size()), '/');
    const bool leadsAway =
        std::any_of(names.begin(), names.end(), [](const std::string& name) { return name == "." || name == ".."; });
    return !leadsAway && names.size() <= levels;
}

// Someone who may write into the report folder must not be able to make this program write elsewhere. The report folder itself
// may be a link.
bool ReportFolder::LeadsOut(const std::string& folder, std::string& strReason) {
    try {
        std::string root = files_.RealPath(settings_.getKvSettingsColVal("ReportPath"));
        if (!root.ends_with('/')) root += '/';
        if (files_.RealPath(folder).starts_with(root)) return false;
        strReason = "a link leads out of the report folder";
    } catch (const std::exception& error) {
        strReason = error.what();
    }
    return true;
}

void ReportFolder::CreateFolder(const std::string& path) {
    std::string strReason;
    if (!IsInPlace(path, kFolderLevels) || LeadsOut(path, strReason)) return;
    IgnoreErrors([&] { files_.CreateFolder(path); });
}

std::string ReportFolder::Merge(std::string_view templateFile, const PageContents& contents) {
    std::string page;
    MergeInPieces(
        templateFile, contents, [&](const TakeText& take) { take(contents.report); },
        [&](std::string_view piece) { page += piece; });
    return page;
}

// Merging piece by piece gives the same result as merging the whole: a report begins and ends with a tag.
void ReportFolder::MergeInPieces(std::string_view templateFile, const PageContents& contents, const Pieces& report,
                                 const TakeText& take) {
    const std::string total = std::to_string(contents.total);
    const std::string date = clock_.Now().Text();
    const TakeText fillIn = [&](std::string_view piece) {
        take(ReplaceAll(ReplaceAll(ReplaceAll(piece, "[[TOTAL]]", total), "[[DATE]]", date), "[[GROUP]]", contents.group));
    };
    const std::string page = ReadFileText(files_, dir_ + "/" + std::string(templateFile));
    std::size_t at = 0;
    for (std::size_t end; (end = page.find(kReportMark, at)) != std::string::npos; at = end + kReportMark.size()) {
        fillIn(std::string_view(page).substr(at, end - at));
        report(fillIn);
    }
    fillIn(std::string_view(page).substr(at));
}

void ReportFolder::Write(const std::string& path, const std::string& page) {
    WritePieces(path, [&](const TakeText& take) { take(page); });
}

void ReportFolder::WriteLong(const std::string& path, std::string_view templateFile, const PageContents& contents,
                             const Pieces& report) {
    WritePieces(path, [&](const TakeText& take) { MergeInPieces(templateFile, contents, report, take); });
}

void ReportFolder::WritePieces(const std::string& path, const Pieces& page) {
    std::string strReason = "it is not below the report folder";
    const bool written = IsInPlace(path, kPageLevels) && !LeadsOut(path.substr(0, path.rfind('/')), strReason) &&
                         WriteFileText(files_, path, page, strReason);
    if (!written) throw Error("The page " + path + " can't be written: " + strReason);
}

bool ReportFolder::Exists(const std::string& path) {
    bool exists = false;
    IgnoreErrors([&] { exists = files_.Exists(path); });
    return exists;
}

// Pictures get the same access rights as pages, so that everyone who may read a page sees them too.
void ReportFolder::EnsurePictures() {
    const std::string from = dir_ + "/i/";
    const std::string to = settings_.getKvSettingsColVal("ReportPath") + "/i/";
    if (files_.Exists(to + kPictureMark)) return;
    std::string strReason;
    if (LeadsOut(to, strReason)) throw Error("The pictures can't be written: " + strReason);
    files_.CreateFolder(settings_.getKvSettingsColVal("ReportPath") + "/i");
    std::vector<std::string> names = files_.FileNames(dir_ + "/i");
    const bool hasMark = std::erase(names, kPictureMark) > 0;
    if (hasMark) names.emplace_back(kPictureMark);  // last: the set is complete once it exists
    for (const std::string& name : names)
        files_.PublishPage(to + name, [&](const TakeText& take) { take(files_.Read(from + name).value_or("")); });
}

}  // namespace korvane
