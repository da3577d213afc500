#include "platform/curl/curl_phases.h"

#include <curl/curl.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <time.h>

#include "base/ignore_errors.h"

namespace korvane {
namespace {

using Duration = CheckPhases::Duration;

constexpr CURLINFO kSums[] = {CURLINFO_NAMELOOKUP_TIME_T, CURLINFO_CONNECT_TIME_T, CURLINFO_APPCONNECT_TIME_T,
                              CURLINFO_STARTTRANSFER_TIME_T};

// Another TLS library would hand out contexts of its own. Asking takes libcurl longer than all the rest here.
bool UsesOpenSsl() {
    static const char* const library = curl_version_info(CURLVERSION_NOW)->ssl_version;
    static const bool uses = library != nullptr && std::string_view(library).starts_with("OpenSSL/");
    return uses;
}

// The place in a TLS context where its CurlPhases is found again.
int OwnIndex() {
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
}

std::optional<std::int64_t> EndOf(X509* certificate) {
    tm utc{};
    if (certificate == nullptr || ASN1_TIME_to_tm(X509_get0_notAfter(certificate), &utc) != 1) return std::nullopt;
    return timegm(&utc);
}

std::optional<DateTime> InLocalTime(std::int64_t seconds) {
    std::optional<DateTime> when;
    const time_t moment = seconds;
    tm local{};
    if (localtime_r(&moment, &local) == nullptr) return when;
    IgnoreErrors([&] {
        when = DateTime::Of(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    });
    return when;
}

}  // namespace

CurlPhases::CurlPhases(void* easy) : easy_(easy) {
    if (!UsesOpenSsl()) return;
    constexpr auto onTlsBegins = +[](CURL*, void* tlsContext, void* self) {
        static_cast<CurlPhases*>(self)->WatchCertificates(tlsContext);
        return CURLE_OK;
    };
    curl_easy_setopt(easy_, CURLOPT_SSL_CTX_FUNCTION, onTlsBegins);
    curl_easy_setopt(easy_, CURLOPT_SSL_CTX_DATA, this);
}

// What is seen here decides nothing: the verdict on each certificate stays what it is.
void CurlPhases::WatchCertificates(void* tlsContext) {
    tlsBegan_ = std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now() - start_);
    auto* const context = static_cast<SSL_CTX*>(tlsContext);
    constexpr auto onCertificate = +[](int good, X509_STORE_CTX* store) {
        const auto* ssl = static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
        auto* const self = static_cast<CurlPhases*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), OwnIndex()));
        self->OnCertificate(good == 1, X509_STORE_CTX_get_error(store), EndOf(X509_STORE_CTX_get_current_cert(store)));
        return good;
    };
    if (SSL_CTX_set_ex_data(context, OwnIndex(), this) == 1)
        SSL_CTX_set_verify(context, SSL_CTX_get_verify_mode(context), onCertificate);
}

// Called with each certificate of the chain, from the authority to the server's own.
void CurlPhases::OnCertificate(bool good, int error, std::optional<std::int64_t> end) {
    const bool ended = !good && error == X509_V_ERR_CERT_HAS_EXPIRED;
    hasEnded_ = hasEnded_ || ended;
    isRefused_ = isRefused_ || (!good && !ended);
    if (end && (!end_ || *end < *end_)) end_ = end;
}

CurlPhases::Sums CurlPhases::SumsNow() const {
    Sums sums{};
    for (int i = 0; i < kMoments; ++i) {
        curl_off_t sum = 0;
        curl_easy_getinfo(easy_, kSums[i], &sum);
        sums[static_cast<std::size_t>(i)] = sum;
    }
    return sums;
}

long CurlPhases::Redirects() const {
    long count = 0;
    curl_easy_getinfo(easy_, CURLINFO_REDIRECT_COUNT, &count);
    return count;
}

// When a request is answered, all its sums but that of the body stand.
void CurlPhases::OnHeader(std::string_view line) {
    if (!line.starts_with("HTTP/")) return;
    if (const long redirects = Redirects(); redirects != redirects_) {
        before_ = answered_;
        redirects_ = redirects;
    }
    answered_ = SumsNow();
}

// libcurl tells of a connection only when its handshake has succeeded. Returns 0 when the last request had none.
std::int64_t CurlPhases::ConnectedBeforeTls() const {
    curl_off_t redirected = 0;
    curl_easy_getinfo(easy_, CURLINFO_REDIRECT_TIME_T, &redirected);
    return tlsBegan_ && tlsBegan_->count() > redirected ? tlsBegan_->count() - redirected : 0;
}

CheckPhases CurlPhases::Measured(int result, bool looksUp) const {
    const Sums& before = Redirects() == redirects_ ? before_ : answered_;
    Sums sums = SumsNow();
    if (sums[Connect] == before[Connect]) sums[Connect] += ConnectedBeforeTls();
    CheckPhases phases;
    std::int64_t reached = 0;
    const auto phase = [&](Moment moment) -> std::optional<Duration> {
        const std::int64_t at = sums[moment] - before[moment];
        if (at <= 0) return std::nullopt;
        const Duration took(std::max<std::int64_t>(at - reached, 0));
        reached = at;
        return took;
    };
    if (looksUp) phases.name = phase(Name);
    phases.connect = phase(Connect);
    phases.tls = phase(Tls);
    phases.firstByte = phase(FirstByte);
    curl_off_t whole = 0;
    curl_easy_getinfo(easy_, CURLINFO_TOTAL_TIME_T, &whole);
    if (whole > 0) phases.whole = Duration(whole);
    const bool ofAnotherHost = result == CURLE_PEER_FAILED_VERIFICATION && !hasEnded_;
    if (end_ && !isRefused_ && !ofAnotherHost) phases.certificateEnd = InLocalTime(*end_);
    return phases;
}

}  // namespace korvane
