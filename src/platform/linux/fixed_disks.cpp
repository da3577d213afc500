#include "platform/linux/fixed_disks.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace korvane {
namespace {

/// Keeps signals for the main thread.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

std::optional<DiskSpace> AskKernel(const MountedDisk& disk) {
    for (const std::string& path : disk.paths) {
        struct stat status {};
        struct statvfs space {};
        if (::stat(path.c_str(), &status) != 0) continue;
        if (disk.statDevice != 0 && status.st_dev != disk.statDevice) continue;  // something else is mounted over it
        if (::statvfs(path.c_str(), &space) != 0) continue;
        const auto block = static_cast<double>(space.f_frsize);
        return DiskSpace{block * static_cast<double>(space.f_blocks), block * static_cast<double>(space.f_bavail)};
    }
    return std::nullopt;
}

struct FixedDisks::Answers {
    struct Answer {
        bool asked = false;
        std::optional<DiskSpace> last;
    };
    std::mutex mutex;
    std::condition_variable came;
    std::map<std::string, Answer> byDevice;
};

FixedDisks::FixedDisks(SystemFolders folders, AskDisk ask)
    : folders_(std::move(folders)), ask_(std::move(ask)), answers_(std::make_shared<Answers>()) {}

FixedDisks::~FixedDisks() = default;

DiskSpace FixedDisks::Sum(std::chrono::milliseconds limit) {
    const auto disks = FixedDisksOf(ReadKernelFile(folders_.proc + "/self/mountinfo").value_or(""), folders_);
    std::vector<std::string> asked;
    std::unique_lock lock(answers_->mutex);
    std::erase_if(answers_->byDevice, [&](const auto& known) {  // unmounted
        return !known.second.asked &&
               std::none_of(disks.begin(), disks.end(), [&](const auto& disk) { return disk.device == known.first; });
    });
    for (const MountedDisk& disk : disks) {
        Answers::Answer& answer = answers_->byDevice[disk.device];
        if (answer.asked) continue;
        try {
            const SignalsBlocked blocked;
            std::thread([answers = answers_, ask = ask_, disk] {
                const auto space = ask(disk);
                const std::lock_guard taken(answers->mutex);
                answers->byDevice[disk.device] = {.asked = false, .last = space};
                answers->came.notify_all();
            }).detach();
            answer.asked = true;
            asked.push_back(disk.device);
        } catch (const std::system_error&) {  // no thread available: the last answer stays
        }
    }
    answers_->came.wait_for(lock, limit, [&] {
        return std::none_of(asked.begin(), asked.end(), [&](const auto& device) { return answers_->byDevice[device].asked; });
    });
    DiskSpace sum;
    for (const MountedDisk& disk : disks) {
        const DiskSpace space = answers_->byDevice[disk.device].last.value_or(DiskSpace{});
        sum.total += space.total;
        sum.free += space.free;
    }
    return sum;
}

}  // namespace korvane
