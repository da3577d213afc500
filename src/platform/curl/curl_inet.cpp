#include "platform/curl/curl_inet.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "platform/curl/curl_phases.h"
#include "platform/curl/curl_pump.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;

constexpr const char* kWebSchemes = "http,https";
constexpr long kRedirects = 20;  // as browsers do

constexpr std::string_view kEncoded = " \"<>`";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

constexpr std::size_t kLargestBody = std::size_t{64} * 1024 * 1024;

constexpr std::string_view kBinaryFamilies[] = {"image/", "audio/", "video/", "font/"};
constexpr std::string_view kBinaryTypes[] = {
    "application/octet-stream", "application/zip", "application/gzip", "application/x-gzip", "application/pdf",
};

// libcurl must be set up once per process and cannot have a second owner, so this is the only static here. The set-up waits for
// the first transfer: a program without web checks should not hold libcurl's TLS library in memory.
void NeedCurl() {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (ready != CURLE_OK) throw Error(curl_easy_strerror(ready));
}

// Commands that the program starts would inherit libcurl's own sockets, which would keep the connection open.
curl_socket_t OpenSocket(void* /*unused*/, curlsocktype /*purpose*/, curl_sockaddr* address) {
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

struct UrlCleanup {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

// Returns the host that libcurl goes to for a redirect from `base`; empty when libcurl cannot read it.
std::string HostOfRedirect(const std::string& base, const std::string& location) {
    const std::unique_ptr<CURLU, UrlCleanup> url(curl_url());
    constexpr unsigned kAsRedirect = CURLU_URLENCODE | CURLU_ALLOW_SPACE | CURLU_NON_SUPPORT_SCHEME;
    for (const std::string& part : {base, location})
        if (!url || curl_url_set(url.get(), CURLUPART_URL, part.c_str(), kAsRedirect) != CURLUE_OK) return "";
    char* host = nullptr;
    if (curl_url_get(url.get(), CURLUPART_HOST, &host, 0) != CURLUE_OK) return "";
    const std::unique_ptr<char, decltype(&curl_free)> owner(host, &curl_free);
    return host;
}

std::size_t EndOfHost(std::string_view url) {
    const auto scheme = url.find("://");
    const auto end = url.find_first_of("/?#", scheme == std::string_view::npos ? 0 : scheme + 3);
    return end == std::string_view::npos ? url.size() : end;
}

/// Returns whether the host of a URL, or of "host:port", is a name. RFC 3986, section 3.2.2: an IPv6 address stands in brackets.
bool NamesHost(std::string url) {
    url.resize(EndOfHost(url));
    if (const auto before = url.find_last_of("/@"); before != std::string::npos) url.erase(0, before + 1);
    if (url.starts_with('[')) return false;
    std::array<unsigned char, 4> bytes{};
    return ::inet_pton(AF_INET, url.substr(0, url.find(':')).c_str(), bytes.data()) != 1;
}

bool IsHashName(std::string_view name) {
    constexpr std::size_t kHashDigits = 8;
    return name.size() == kHashDigits + 2 && name.ends_with(".0") && name.find_first_not_of("0123456789abcdef") == kHashDigits;
}

// Returns the folder in which each authority is a file named by the hash of its subject ("002c0b4f.0", see openssl-rehash(1)),
// empty when the system has none. A transfer reads there the one file it needs, while the bundle of all authorities takes 20 ms
// of CPU and a megabyte for each transfer.
std::string SystemTrustFolder() {
    const char* folder = curl_version_info(CURLVERSION_NOW)->capath;
    if (folder == nullptr) return {};
    std::error_code unreadable;
    const std::filesystem::directory_iterator files(folder, unreadable);
    // A folder with only a few hashed names holds local additions; the other authorities are then in the bundle alone.
    constexpr auto kWholeSet = 50;
    const auto hashed =
        std::count_if(begin(files), end(files), [](const auto& file) { return IsHashName(file.path().filename().native()); });
    return hashed >= kWholeSet ? folder : "";
}

// Returns whether a Content-Type (RFC 9110, section 8.3) denotes pictures, sound, films, archives or non-text documents.
bool IsBinaryType(std::string_view contentType) {
    const std::string type = ToLower(TrimAll(contentType.substr(0, contentType.find(';'))));
    return std::any_of(std::begin(kBinaryFamilies), std::end(kBinaryFamilies),
                       [&](std::string_view family) { return type.starts_with(family); }) ||
           std::find(std::begin(kBinaryTypes), std::end(kBinaryTypes), type) != std::end(kBinaryTypes);
}

/// Collects the body of a response while it arrives. Accepts at most 64 MB, of the bytes and of their text; holds at most twice that.
class Body {
public:
    /// Adds the next piece; returns false when the rest is not needed. `expectedSize` is -1 when it is unknown.
    bool Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize) {
        const auto expected = static_cast<std::size_t>(std::max<std::int64_t>(expectedSize, 0));
        if (expected > kLargestBody || piece.size() > kLargestBody - bytes_.size()) verdict_ = Verdict::TooLarge;
        if (piece.find('\0') != std::string_view::npos || (bytes_.empty() && IsBinaryType(contentType)))
            verdict_ = Verdict::Binary;
        if (verdict_ != Verdict::Text) return false;
        if (bytes_.empty()) bytes_.reserve(expected);
        bytes_ += piece;
        return true;
    }

    /// Returns whether Take has refused a piece; TakeText gives the reason.
    bool Refused() const { return verdict_ != Verdict::Text; }

    /// Returns all of it in UTF-8 and keeps nothing.
    std::string TakeText() {
        if (verdict_ == Verdict::Binary) throw TypeMismatchError();
        if (verdict_ == Verdict::TooLarge || Utf8Size(bytes_) > kLargestBody) throw Error("The answer is larger than 64 MB");
        return ToUtf8(std::move(bytes_));
    }

private:
    enum class Verdict { Text, Binary, TooLarge };
    Verdict verdict_ = Verdict::Text;
    std::string bytes_;
};

struct EasyCleanup {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};

// One request in libcurl's terms, and its response.
class Exchange {
public:
    Exchange(const Inet::Request& request, const CurlInet::Options& options, const std::string& trustFolder)
        : easy_(curl_easy_init()) {
        if (!easy_) throw std::bad_alloc();
        SetTarget(request);
        SetLimits(request);
        SetPrivacy();
        SetReceivers();
        SetRedirects(request.Redirects);
        if (request.phases != nullptr) Measure();
        if (!options.userAgent.empty()) Set(CURLOPT_USERAGENT, options.userAgent.c_str());
        SetTrust(options.caBundle, trustFolder);
    }

    CURL* Handle() const { return easy_.get(); }

    int ResponseCode() const {
        long code = 0;
        curl_easy_getinfo(Handle(), CURLINFO_RESPONSE_CODE, &code);
        return static_cast<int>(code);
    }

    /// Called at the end of the transfer.
    void GivePhases(const Inet::Request& request, int result) const {
        if (!phases_) return;
        const char* last = nullptr;
        curl_easy_getinfo(Handle(), CURLINFO_EFFECTIVE_URL, &last);
        const bool named = request.AccessType == InetAccess::NamedProxy;
        *request.phases = phases_->Measured(result, NamesHost(named ? request.Proxy : last == nullptr ? "" : last));
    }

    /// Nobody will call TakeText: the page is not kept.
    void DropBody() { dropsBody_ = true; }

    std::string ErrorText(CURLcode result) const { return words_[0] != '\0' ? words_.data() : curl_easy_strerror(result); }

    std::string TakeText(CURLcode result) {
        if (otherHost_) throw OtherHostError(*otherHost_);
        if (result != CURLE_OK && !body_.Refused()) throw Error(ErrorText(result));
        return body_.TakeText();
    }

private:
    template <class Value>
    void Set(CURLoption option, Value value) {
        const CURLcode result = curl_easy_setopt(easy_.get(), option, value);
        if (result != CURLE_OK) throw Error(curl_easy_strerror(result));
    }

    void SetTarget(const Inet::Request& request) {
        if (request.RemotePort < 0 || request.RemotePort > 65535)
            throw Error("Invalid port number: " + std::to_string(request.RemotePort));
        const bool named = request.AccessType == InetAccess::NamedProxy;
        Set(CURLOPT_URL, EncodeUrl(request.URL).c_str());
        Set(CURLOPT_PROXY, named ? request.Proxy.c_str() : "");
        Set(CURLOPT_NOPROXY, "");  // otherwise the environment would decide
        if (request.RemotePort > 0) Set(CURLOPT_PORT, static_cast<long>(request.RemotePort));
        if (request.UserName.empty()) return;
        Set(CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
        Set(CURLOPT_USERNAME, request.UserName.c_str());
        Set(CURLOPT_PASSWORD, request.Password.c_str());
    }

    void SetLimits(const Inet::Request& request) {
        const auto timeout =
            std::min<milliseconds::rep>(milliseconds(request.RequestTimeout).count(), std::numeric_limits<int>::max());
        Set(CURLOPT_TIMEOUT_MS, static_cast<long>(timeout));
        Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout));
        Set(CURLOPT_DEFAULT_PROTOCOL, "http");
        Set(CURLOPT_PROTOCOLS_STR, kWebSchemes);
        Set(CURLOPT_REDIR_PROTOCOLS_STR, kWebSchemes);
        Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        Set(CURLOPT_NOSIGNAL, 1L);
        Set(CURLOPT_QUICK_EXIT, 1L);  // a name server that never answers does not delay the end of the transfer
    }

    // A check must neither benefit nor suffer from an earlier one.
    void SetPrivacy() {
        Set(CURLOPT_FRESH_CONNECT, 1L);
        Set(CURLOPT_FORBID_REUSE, 1L);
        Set(CURLOPT_DNS_CACHE_TIMEOUT, 0L);
        Set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
        Set(CURLOPT_COOKIEFILE, "");  // cookies in memory: sites that set a cookie and redirect would otherwise redirect for ever
    }

    // libcurl's own default applies only where the system has no folder.
    void SetTrust(const std::string& bundle, const std::string& folder) {
        Set(CURLOPT_SSL_VERIFYPEER, 1L);
        Set(CURLOPT_SSL_VERIFYHOST, 2L);
        if (bundle.empty() && folder.empty()) return;
        Set(CURLOPT_CAINFO, bundle.empty() ? nullptr : bundle.c_str());
        Set(CURLOPT_CAPATH, bundle.empty() ? folder.c_str() : nullptr);
    }

    void SetReceivers() {
        Set(CURLOPT_ERRORBUFFER, words_.data());
        Set(CURLOPT_WRITEFUNCTION, &Exchange::OnBody);
        Set(CURLOPT_WRITEDATA, this);
        Set(CURLOPT_OPENSOCKETFUNCTION, &OpenSocket);
    }

    void SetRedirects(InetRedirects redirects) {
        Set(CURLOPT_FOLLOWLOCATION, redirects == InetRedirects::None ? 0L : 1L);
        Set(CURLOPT_MAXREDIRS, kRedirects);
        staysAtHost_ = redirects == InetRedirects::SameHost;
        if (staysAtHost_) ReadHeaders();
    }

    void ReadHeaders() {
        Set(CURLOPT_HEADERFUNCTION, &Exchange::OnHeader);
        Set(CURLOPT_HEADERDATA, this);
        Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    }

    void Measure() {
        phases_.emplace(Handle());
        ReadHeaders();
    }

    // libcurl follows a redirect only after all headers, so ending the transfer here leaves the other host alone.
    static std::size_t OnHeader(const char* bytes, std::size_t /*one*/, std::size_t count, void* self) noexcept {
        Exchange& exchange = *static_cast<Exchange*>(self);
        if (exchange.phases_) exchange.phases_->OnHeader({bytes, count});
        if (!exchange.staysAtHost_) return count;
        try {
            return exchange.StaysAtHost({bytes, count}) ? count : count + 1;
        } catch (const std::bad_alloc&) {
            return count + 1;
        }
    }

    bool StaysAtHost(std::string_view header) {
        constexpr std::string_view kLocation = "location:";
        const bool redirects = ResponseCode() / 100 == 3 && EqualsNoCase(header.substr(0, kLocation.size()), kLocation);
        if (!redirects) return true;
        const char* current = nullptr;
        curl_easy_getinfo(Handle(), CURLINFO_EFFECTIVE_URL, &current);
        const std::string base = current != nullptr ? current : "", location = TrimAll(header.substr(kLocation.size()));
        const std::string host = HostOfRedirect(base, location);
        if (!host.empty() && EqualsNoCase(host, HostOfRedirect(base, base))) return true;
        otherHost_ = host.empty() ? location : host;
        return false;
    }

    // Exceptions must not pass through libcurl; any return value but `count` ends the transfer.
    static std::size_t OnBody(const char* bytes, std::size_t /*one*/, std::size_t count, void* self) noexcept {
        Exchange& exchange = *static_cast<Exchange*>(self);
        if (exchange.dropsBody_) return count;
        const char* type = nullptr;
        curl_off_t size = -1;
        curl_easy_getinfo(exchange.Handle(), CURLINFO_CONTENT_TYPE, &type);
        curl_easy_getinfo(exchange.Handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
        try {
            return exchange.body_.Take({bytes, count}, type != nullptr ? type : "", size) ? count : count + 1;
        } catch (const std::bad_alloc&) {
            return count + 1;
        }
    }

    std::unique_ptr<CURL, EasyCleanup> easy_;
    std::array<char, CURL_ERROR_SIZE> words_{};
    Body body_;
    bool dropsBody_ = false;
    bool staysAtHost_ = false;
    std::optional<CurlPhases> phases_;      ///< if they are measured
    std::optional<std::string> otherHost_;  ///< to which a redirect was refused
};

// Registers the transfer with its slot for as long as it is on the stack.
class Executing {
public:
    Executing(CurlPump*& slot, CurlPump& pump) : slot_(slot) { slot_ = &pump; }
    ~Executing() { slot_ = nullptr; }
    Executing(const Executing&) = delete;
    Executing& operator=(const Executing&) = delete;

private:
    CurlPump*& slot_;
};

}  // namespace

std::string EncodeUrl(std::string_view typed) {
    std::string url = TrimAll(typed);
    const std::string rest = url.substr(EndOfHost(url));
    url.resize(url.size() - rest.size());
    for (const char c : rest) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && kEncoded.find(c) == std::string_view::npos) {
            url += c;
        } else {
            url += '%';
            url += kHexDigits[byte >> 4];
            url += kHexDigits[byte & 0x0F];
        }
    }
    return url;
}

CurlInet::CurlInet(Events& events, const Clock& clock, Options options)
    : events_(events), clock_(clock), options_(std::move(options)), trustFolder_(SystemTrustFolder()) {}

std::string CurlInet::OpenURL(const Request& request) {
    if (transfer_ != nullptr) throw Error("Still executing last request");
    if (request.RequestTimeout <= std::chrono::seconds::zero()) throw Error("Operation timed out after 0 milliseconds");
    responseCode_ = 0;
    NeedCurl();
    Exchange exchange(request, options_, trustFolder_);
    CurlPump pump(events_, clock_, exchange.Handle());
    const Executing executing(transfer_, pump);
    const std::optional<int> result = pump.Perform();
    responseCode_ = exchange.ResponseCode();
    exchange.GivePhases(request, result.value_or(CURLE_ABORTED_BY_CALLBACK));
    if (!result) throw Error("Request cancelled");
    return exchange.TakeText(static_cast<CURLcode>(*result));
}

struct CurlInet::Started {
    Started(CurlInet& inet, const Request& request)
        : exchange(request, inet.options_, inet.trustFolder_), pump(inet.events_, inet.clock_, exchange.Handle()) {
        exchange.DropBody();
        pump.Begin();
    }

    Exchange exchange;
    CurlPump pump;
};

CurlInet::~CurlInet() = default;

void CurlInet::Start(const Request& request) {
    started_.reset();
    responseCode_ = 0;
    NeedCurl();
    started_ = std::make_unique<Started>(*this, request);
}

std::optional<std::string> CurlInet::Outcome() {
    const std::optional<int> result = started_ ? started_->pump.Look() : std::nullopt;
    if (!result) return std::nullopt;
    responseCode_ = started_->exchange.ResponseCode();
    const auto code = static_cast<CURLcode>(*result);
    const std::string error = code == CURLE_OK ? "" : started_->exchange.ErrorText(code);
    started_.reset();
    return error;
}

void CurlInet::Cancel() {
    started_.reset();
    if (transfer_ != nullptr) transfer_->Stop();
}

}  // namespace korvane
