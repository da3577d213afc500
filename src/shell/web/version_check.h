// Checks whether this is the newest version, by the version file of the website, and reports the result to the operator.
#pragma once

#include <string>

#include "engine/http_requester.h"
#include "platform/operator.h"
#include "shell/web/web_pages.h"

namespace korvane {

struct LatestVersion {
    bool isLatest = true;
    std::string strCurrent;
    std::string strLatest;    ///< empty when the file contains none
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

    /// Versions are compared as text: "10.0.0" is older than "9.9.9". Without an answer this version counts as the latest.
    LatestVersion IsLatestVersion();

    /// The command that checks for a new version: checks, and then reports or asks. Does nothing while it is already running.
    void CheckForVersion();

private:
    void OfferDownload(const LatestVersion& found);

    Ports ports_;
    std::string version_;
    bool checking_ = false;
};

}  // namespace korvane
