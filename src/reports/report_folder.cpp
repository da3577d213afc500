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

/// Its presence stands for the whole set of pictures.
constexpr const char* kPictureMark = "citrix.gif";

/// How far down from the report folder a folder and a page may lie: "R<idCustomer>/<strGroup>/<page>".
constexpr std::size_t kFolderLevels = 2;
constexpr std::size_t kPageLevels = 3;

}  // namespace

std::string ReadFileText(Files& files, const std::string& path) {
    std::optional<std::string> text;
    IgnoreErrors([&] { text = files.Read(path); });
    return text.value_or("");
}

bool WriteFileText(Files& files, const std::string& path, std::string_view text, std::string& strReason) {
    try {
        files.Publish(path, std::string(text) + "\r\n");
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

// The names come out of the database as they stand, and may hold anything.
bool ReportFolder::IsInPlace(const std::string& path, std::size_t levels) const {
    const std::string root = settings_.getKvSettingsColVal("ReportPath") + "/";
    if (!path.starts_with(root) || path.find('\0') != std::string::npos) return false;
    const std::vector<std::string> names = Split(std::string_view(path).substr(root.size()), '/');
    const bool leadsAway =
        std::any_of(names.begin(), names.end(), [](const std::string& name) { return name == "." || name == ".."; });
    return !leadsAway && names.size() <= levels;
}

void ReportFolder::CreateFolder(const std::string& path) {
    if (IsInPlace(path, kFolderLevels)) IgnoreErrors([&] { files_.CreateFolder(path); });
}

std::string ReportFolder::Merge(std::string_view templateFile, const PageContents& contents) {
    std::string page = ReadFileText(files_, dir_ + "/" + std::string(templateFile));
    page = ReplaceAll(page, "[[REPORT]]", contents.report);
    page = ReplaceAll(page, "[[TOTAL]]", std::to_string(contents.total));
    page = ReplaceAll(page, "[[DATE]]", clock_.Now().Text());
    return ReplaceAll(page, "[[GROUP]]", contents.group);
}

void ReportFolder::Write(const std::string& path, const std::string& page) {
    std::string strReason = "it is not below the report folder";
    const bool written = IsInPlace(path, kPageLevels) && WriteFileText(files_, path, page, strReason);
    if (!written) throw Error("The page " + path + " can't be written: " + strReason);
}

bool ReportFolder::Exists(const std::string& path) {
    bool exists = false;
    IgnoreErrors([&] { exists = files_.Exists(path); });
    return exists;
}

// Pictures are published as pages are, so that whoever may read a page sees them too.
void ReportFolder::EnsurePictures() {
    const std::string from = dir_ + "/i/";
    const std::string to = settings_.getKvSettingsColVal("ReportPath") + "/i/";
    if (files_.Exists(to + kPictureMark)) return;
    files_.CreateFolder(settings_.getKvSettingsColVal("ReportPath") + "/i");
    std::vector<std::string> names = files_.FileNames(dir_ + "/i");
    const bool hasMark = std::erase(names, kPictureMark) > 0;
    if (hasMark) names.emplace_back(kPictureMark);  // last: the set is whole when it is there
    for (const std::string& name : names)
        files_.Publish(to + name, files_.Read(from + name).value_or(""));
}

}  // namespace korvane
