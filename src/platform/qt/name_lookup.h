// One name lookup that does not block the program. The system's resolver blocks for up to minutes when its name server is silent,
// and cannot be interrupted, so each lookup has a thread that nothing waits for: neither the next lookup nor the end of the
// program.
#pragma once

#include <functional>
#include <memory>
#include <string>

class QHostAddress;
class QSocketNotifier;
template <typename T>
class QList;

namespace korvane {

class NameLookup {
public:
    /// Receives the addresses in the order in which to try them (RFC 6724); none when the name was not found.
    using Found = std::function<void(const QList<QHostAddress>&)>;

    /// Starts the lookup at once, without a cache, and calls `found` once from the event loop of this thread, unless this object
    /// is destroyed before. It may be destroyed in `found`. Throws Error when the system has no thread or descriptor left.
    NameLookup(const std::string& name, Found found);
    ~NameLookup();
    NameLookup(const NameLookup&) = delete;
    NameLookup& operator=(const NameLookup&) = delete;

private:
    struct Answer;

    void OnAnswer();

    std::shared_ptr<Answer> answer_;
    Found found_;
    std::unique_ptr<QSocketNotifier> arrived_;
};

}  // namespace korvane
