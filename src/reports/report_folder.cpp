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
constexpr const char* kLineEnd = "\r\n";  // after each page

// Returns an empty text when the file does not exist or cannot be read.
std::string FileText(Files& files, const std::string& path) {
    std::optional<std::string> text;
    IgnoreErrors([&] { text = files.Read(path); });
    return text.value_or("");
}

}  // namespace

std::string ReportFolder::CustomerFolder(const std::string& idCustomer) const {
    return Root() + "/R" + idCustomer;
}

std::string ReportFolder::GroupFolder(const std::string& idCustomer, const std::string& strGroup) const {
    return CustomerFolder(idCustomer) + "/" + (EqualsNoCase(strGroup, group_) ? group_ : strGroup);
}

// The names come unchecked from the database and may contain anything.
bool ReportFolder::IsInPlace(const std::string& path, std::size_t levels) const {
    const std::string root = Root() + "/";
    if (!path.starts_with(root) || path.find('\0') != std::string::npos) return false;
    const std::vector<std::string> names = Split(std::string_view(path).substr(root.size()), '/');
    const bool leadsAway =
        std::any_of(names.begin(), names.end(), [](const std::string& name) { return name == "." || name == ".."; });
    return !leadsAway && names.size() <= levels;
}

// Someone who may write into the report folder must not be able to make this program write elsewhere. The report folder itself
// may be a link.
void ReportFolder::RequireInside(const std::string& folder) {
    std::string root = files_.RealPath(Root());
    if (!root.ends_with('/')) root += '/';
    if (!(files_.RealPath(folder) + "/").starts_with(root)) throw Error("a link leads out of the report folder");
}

void ReportFolder::CreateFolder(const std::string& path) {
    if (!IsInPlace(path, kFolderLevels)) return;
    IgnoreErrors([&] {
        RequireInside(path);
        files_.CreateFolder(path);
    });
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
    const std::string page = FileText(files_, dir_ + "/" + std::string(templateFile));
    std::size_t at = 0;
    for (std::size_t end; (end = page.find(kReportMark, at)) != std::string::npos; at = end + kReportMark.size()) {
        fillIn(std::string_view(page).substr(at, end - at));
        report(fillIn);
    }
    fillIn(std::string_view(page).substr(at));
}

void ReportFolder::Write(const std::string& path, const std::string& page) {
    WritePieces(path, [&](const TakeText& take) {
        take(page);
        take(kLineEnd);
    });
}

void ReportFolder::WriteFigures(const std::string& name, const Pieces& text) {
    WritePieces(Root() + "/" + name, text);
}

void ReportFolder::WriteLong(const std::string& path, std::string_view templateFile, const PageContents& contents,
                             const Pieces& report) {
    WritePieces(path, [&](const TakeText& take) {
        MergeInPieces(templateFile, contents, report, take);
        take(kLineEnd);
    });
}

void ReportFolder::WritePieces(const std::string& path, const Pieces& page) {
    try {
        if (!IsInPlace(path, kPageLevels)) throw Error("it is not below the report folder");
        RequireInside(path.substr(0, path.rfind('/')));
        files_.PublishPage(path, page);
    } catch (const std::exception& error) {
        throw Error("The page " + path + " can't be written: " + error.what());
    }
}

bool ReportFolder::Exists(const std::string& path) {
    bool exists = false;
    IgnoreErrors([&] { exists = files_.Exists(path); });
    return exists;
}

// Pictures get the same access rights as pages, so that everyone who may read a page sees them too.
void ReportFolder::EnsurePictures() {
    const std::string from = dir_ + "/i/";
    const std::string to = Root() + "/i/";
    if (files_.Exists(to + kPictureMark)) return;
    try {
        RequireInside(to);
    } catch (const std::exception& error) {
        throw Error("The pictures can't be written: " + std::string(error.what()));
    }
    files_.CreateFolder(Root() + "/i");
    std::vector<std::string> names = files_.FileNames(dir_ + "/i");
    const bool hasMark = std::erase(names, kPictureMark) > 0;
    if (hasMark) names.emplace_back(kPictureMark);  // last: the set is complete once it exists
    for (const std::string& name : names)
        files_.PublishPage(to + name, [&](const TakeText& take) { take(files_.Read(from + name).value_or("")); });
}

}  // namespace korvane
