// Where the time of one libcurl transfer went, and the end of the certificates that it verified.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/check_phases.h"

namespace korvane {

class CurlPhases {
public:
    /// `easy` is a CURL handle.
    explicit CurlPhases(void* easy);
    CurlPhases(const CurlPhases&) = delete;
    CurlPhases& operator=(const CurlPhases&) = delete;

    /// Called with each line of the headers.
    void OnHeader(std::string_view line);

    /// Called at the end of the transfer with its CURLcode. `looksUp`: whether the last request went to a name, not to an address.
    CheckPhases Measured(int result, bool looksUp) const;

private:
    enum Moment { Name, Connect, Tls, FirstByte, kMoments };
    /// libcurl adds up the times of all requests, each from its own beginning.
    using Sums = std::array<std::int64_t, kMoments>;

    void WatchCertificates(void* tlsContext);
    void OnCertificate(bool good, int error, std::optional<std::int64_t> end);
    Sums SumsNow() const;
    long Redirects() const;
    std::int64_t ConnectedBeforeTls() const;

    void* const easy_;
    long redirects_ = 0;  ///< before the request of the last headers
    Sums answered_{};     ///< when they came
    Sums before_{};       ///< at the end of the request before it

    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::optional<CheckPhases::Duration> tlsBegan_;  ///< last, since the start

    std::optional<std::int64_t> end_;  ///< the earliest, in seconds since 1970, UTC
    bool hasEnded_ = false;            ///< a certificate was refused because of it
    bool isRefused_ = false;           ///< one was refused because of something else
};

}  // namespace korvane
