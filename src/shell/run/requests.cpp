#include "shell/run/requests.h"

#include <exception>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kRequestFolder = "/kvrequests";
constexpr std::string_view kRequestEnding = ".request";
constexpr int kLooksAfterChange = 3;

}  // namespace

Requests::Requests(const Ports& ports, const std::string& dir, std::function<void()> look,
                   std::function<void(const std::string& key, const std::string& value)> set)
    : ports_(ports),
      folder_(dir + kRequestFolder),
      look_(std::move(look)),
      set_(std::move(set)),
      timer_(ports.timers.NewTimer("TimerRequests")) {
    timer_->SetInterval(1000ms);
    timer_->OnTick([this] { IgnoreErrors([this] { Look(); }); });
}

void Requests::Look() {
    const auto identity = ports_.files.Identity(folder_);
    if (!identity) return;
    if (identity != seen_) looks_ = kLooksAfterChange;
    seen_ = identity;
    if (looks_ == 0) return;
    --looks_;
    bool found = false;
    for (const std::string& name : ports_.files.FileNames(folder_)) {
        if (!name.ends_with(kRequestEnding)) continue;
        found = true;
        Take(folder_ + "/" + name);
    }
    if (found) look_();
}

void Requests::Take(const std::string& path) {
    std::string text, key;
    IgnoreErrors([&] { text = ports_.files.Read(path).value_or(""); });
    if (const auto end = text.find('='); end != std::string::npos) key = text.substr(0, end);
    try {
        if (!key.empty()) set_(key, text.substr(key.size() + 1));
        if (!key.empty()) ports_.log.Info("The setting " + key + " was changed from the command line.");
    } catch (const std::exception& error) {
        const std::string what = "The setting " + key + " was not changed from the command line: ";
        ports_.log.WriteLog(kLogOrdinary, kLogError, what + error.what());
    }
    ports_.files.Remove(path);
}

std::string LeaveRequest(Files& files, const std::string& dir, const std::string& name, const std::string& key,
                         const std::string& value) {
    files.CreatePrivateFolder(dir + kRequestFolder);
    const std::string path = dir + kRequestFolder + "/" + name + std::string(kRequestEnding);
    files.Replace(path, key.empty() ? "" : key + "=" + value);
    return path;
}

}  // namespace korvane
