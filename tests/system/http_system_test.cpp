// HTTP and HTTPS checks with nothing replaced but the operator: the requester over libcurl against nginx, directly and through
// squid.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "engine/http_requester.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_timer.h"
#include "support/recording_operator.h"
#include "system/real_servers.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;

class HttpSystem : public testing::Test {
protected:
    void SetUp() override {
        KORVANE_NEEDS("nginx");
        web_ = std::make_unique<WebServer>();
        settings_.setKvSettingsColValue("ProxyName", "");
        settings_.setKvSettingsColValue("ProxyPort", "");
        http_.LoadInets([this] {
            return std::make_unique<CurlInet>(events_, clock_,
                                              CurlInet::Options{.caBundle = web_->Authority(), .userAgent = "Korvane"});
        });
    }

    std::string Address(int port, const std::string& path, const std::string& scheme = "http") const {
        return scheme + "://127.0.0.1:" + std::to_string(port) + path;
    }
    TimedCheckResult Get(const std::string& url) { return http_.getURLData2({.strURL = url, .nTimeout = 5s}); }

    int argc_ = 1;
    char name_[5] = "test";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication application_{argc_, argv_};
    SystemClock clock_;
    QtEvents events_;
    QtTimers timers_;
    RecordingOperator person_;
    SettingsCollection settings_;
    std::unique_ptr<Timer> TimerProgress_ = timers_.NewTimer("TimerProgress");
    const CycleState state_;
    RequestProgress progress_{{events_, person_, state_, *TimerProgress_}};
    HttpRequester http_{{settings_, events_, clock_, progress_}};
    std::unique_ptr<WebServer> web_;
};

TEST_F(HttpSystem, PagesAndTheirReasons) {
    struct Case {
        std::string url, response, reason;  ///< parts of what comes back; blank means that nothing does
    };
    const std::string gone = "http://127.0.0.1:" + std::to_string(FreePorts(1)[0]) + "/";
    const std::vector<Case> cases = {
        {Address(web_->http, "/page"), "Welcome to Korvane\n", ""},
        {Address(web_->httpAbove, "/page"), "Welcome to Korvane\n", ""},
        {Address(web_->http, "/no-such-page"), "404 Not Found", ""},
        {Address(web_->http, "/private"), "401 Authorization Required", ""},
        {Address(web_->http, "/moved"), "Welcome to Korvane\n", ""},
        {Address(web_->http, "/to-https"), "Welcome to Korvane\n", ""},
        {Address(web_->http, "/loop"), "", "redirect"},
        {Address(web_->http, "/picture"), "Binary Data Returned", ""},
        {Address(web_->https, "/page", "https"), "Welcome to Korvane\n", ""},
        {Address(web_->httpsSelfSigned, "/page", "https"), "", "certificate"},
        {Address(web_->httpsOtherName, "/page", "https"), "", "certificate"},
        {Address(web_->httpsExpired, "/page", "https"), "", "certificate"},
        {gone, "", "onnect"},
    };
    for (const auto& [url, response, reason] : cases) {
        SCOPED_TRACE(url);
        const TimedCheckResult result = Get(url);
        EXPECT_EQ(result.response.empty(), response.empty()) << result.response;
        EXPECT_NE(result.response.find(response), std::string::npos) << result.response;
        EXPECT_EQ(result.strReason.empty(), reason.empty()) << result.strReason;
        EXPECT_NE(result.strReason.find(reason), std::string::npos) << result.strReason;
        EXPECT_TRUE(reason.empty() || result.strReason.starts_with("Reason '")) << result.strReason;
    }
}

TEST_F(HttpSystem, PortAndAuthenticationOfTheEntry) {
    const auto port = static_cast<std::int16_t>(web_->http);
    HttpRequester::Request request{
        .strURL = "http://127.0.0.1/private", .strUser = "operator", .strPassword = "open sesame", .nPort = port};
    EXPECT_EQ(http_.getURLData2(request).response, "Welcome, operator\n");
    request.strPassword = "open barley";
    EXPECT_NE(http_.getURLData2(request).response.find("401"), std::string::npos);
    // The next user of the slot brings nothing along.
    request.strUser = request.strPassword = "";
    EXPECT_NE(http_.getURLData2(request).response.find("401"), std::string::npos);
}

TEST_F(HttpSystem, BlankAndLateAnswers) {
    EXPECT_EQ(Get(Address(web_->http, "/empty")).strReason, "No Response Returned.");
    // An answer is noted after it was sent; when the next one comes, all before it are noted.
    Get(Address(web_->http, "/page"));
    EXPECT_EQ(web_->Answers("/empty"), 11);
    EXPECT_EQ(Get(Address(web_->http, "/slow-empty")).strReason, "No Response Returned.");
    Get(Address(web_->http, "/page"));
    EXPECT_EQ(web_->Answers("/slow-empty"), 1);

    const TimedCheckResult late = http_.getURLData2({.strURL = Address(web_->http, "/late"), .nTimeout = 1s});
    EXPECT_TRUE(late.strReason.starts_with("Reason '")) << late.strReason;
    EXPECT_EQ(late.response, "");
    EXPECT_GE(late.nResponseMs, 1s);

    const TimedCheckResult big = Get(Address(web_->http, "/big"));
    EXPECT_EQ(big.response.size(), 50'000'004u) << big.strReason;
    EXPECT_TRUE(big.response.ends_with("end\n"));
}

TEST_F(HttpSystem, ThroughAProxy) {
    KORVANE_NEEDS("squid");
    const ProxyServer proxy;
    settings_.setKvSettingsColValue("ProxyName", "127.0.0.1");
    settings_.setKvSettingsColValue("ProxyPort", std::to_string(proxy.port));
    EXPECT_EQ(Get(Address(web_->http, "/page")).response, "Welcome to Korvane\n");
    EXPECT_EQ(Get(Address(web_->https, "/page", "https")).response, "Welcome to Korvane\n");
    EXPECT_NE(Get(Address(web_->httpsExpired, "/page", "https")).strReason.find("certificate"), std::string::npos);
    EXPECT_NE(proxy.Log().find("GET " + Address(web_->http, "/page")), std::string::npos) << proxy.Log();
    EXPECT_NE(proxy.Log().find("CONNECT 127.0.0.1:" + std::to_string(web_->https)), std::string::npos);
}

}  // namespace
}  // namespace korvane::test
