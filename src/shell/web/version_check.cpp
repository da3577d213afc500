#include "shell/web/version_check.h"

#include <chrono>
#include <cstddef>
#include <string_view>

#include "base/raised_flag.h"
#include "base/text.h"
#include "shell/run/message_title.h"
#include "shell/web/web_addresses.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kTimeout = 7s;

// The version file, in characters.
constexpr std::size_t kBeforeVersion = 8;
constexpr std::size_t kVersionLength = 5;
constexpr std::size_t kBeforeFeatures = 14;

/// Longest text of the features in a message box: the file at the address may have any size.
constexpr std::size_t kMostShown = 4000;

std::string_view Behind(const std::string& text, std::size_t characters) {
    return std::string_view(text).substr(Left(text, characters).size());
}

// An error page instead of the file also has some text there.
bool LooksLikeVersion(const std::string& text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

}  // namespace

LatestVersion VersionCheck::IsLatestVersion() {
    LatestVersion found{.isLatest = true,
                        .strCurrent = version_,
                        .strLatest = version_,
                        .strFeatures = "Temporarily unavailable...  Please try agian later."};
    const std::string response =
        ports_.http.getURLData2({.strURL = std::string(kVersionFileAddress), .nTimeout = kTimeout, .nPort = 80}).response;
    if (response.empty()) return found;
    found.strLatest = Left(Behind(response, kBeforeVersion), kVersionLength);
    found.strFeatures = Behind(response, kBeforeFeatures);
    const std::string latest = Trim(found.strLatest);
    const std::string current = Trim(found.strCurrent);
    if (!LooksLikeVersion(latest)) found.strLatest.clear();
    found.isLatest = found.strLatest.empty() ? current.empty() : current >= latest;
    return found;
}

void VersionCheck::CheckForVersion() {
    if (checking_) return;
    const RaisedFlag checking(checking_);
    const LatestVersion found = IsLatestVersion();
    if (found.isLatest) {
        ports_.person.ShowMessage(kMessageTitle, "You have the latest version (" + found.strCurrent +
                                                     ").  It has these features that the previous version did not:\r\n" +
                                                     Left(found.strFeatures, kMostShown));
    } else if (found.strLatest.empty()) {
        ports_.person.ShowMessage(
            kMessageTitle,
            "The Korvane Server could not be reached.  Please check your internet connection and try again later.");
    } else {
        OfferDownload(found);
    }
}

void VersionCheck::OfferDownload(const LatestVersion& found) {
    const std::string question = "The newer version (" + found.strLatest + ") of Korvane is available. \r\nYou have version (" +
                                 found.strCurrent + ")\r\nWould you like to download this version now?\r\nFrom " +
                                 std::string(kDownloadPageAddress);
    ports_.person.Ask("A New Version is Available", question,
                      [&pages = ports_.pages] { pages.Show(std::string(kInstallerAddress)); });
}

}  // namespace korvane
