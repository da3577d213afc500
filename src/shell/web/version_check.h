// Whether this is the newest version, by the version file of the website, and what the operator is told of it.
#pragma once

#include <string>

#include "engine/http_requester.h"
#include "platform/operator.h"
#include "shell/web/web_pages.h"

namespace korvane {

struct LatestVersion {
    bool isLatest = true;
    std::string strCurrent;
    std::string strLatest;    ///< blank when the file names none
    std::string strFeatures;  ///< the whole rest of the file, however long
};

/// Waits through the event pump for up to some seconds, so it must outlive the windows whose commands call it.
class VersionCheck {
public:
    struct Ports {
        HttpRequester& http;
        Operator& person;
        WebPages& pages;
    };

    /// `version` is "major.minor.revision" of this program.
    VersionCheck(const Ports& ports, std::string version) : ports_(ports), version_(std::move(version)) {}

    /// Versions are compared as text: "10.0.0" is older than "9.9.9". No answer counts as the latest version.
    LatestVersion IsLatestVersion();

    /// The check-for-version command: looks, and tells or asks. Does nothing while it is under way.
    void CheckForVersion();

private:
    void OfferDownload(const LatestVersion& found);

    Ports ports_;
    std::string version_;
    bool checking_ = false;
};

}  // namespace korvane
