#include "platform/qt/name_lookup.h"

#include <errno.h>
#include <netdb.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QHostAddress>
#include <QList>
#include <QSocketNotifier>
#include <cstring>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

QList<QHostAddress> AddressesOf(const std::string& name) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_ADDRCONFIG | AI_IDN;
    addrinfo* first = nullptr;
    if (::getaddrinfo(name.c_str(), nullptr, &wanted, &first) != 0) return {};
    QList<QHostAddress> addresses;
    for (const addrinfo* each = first; each != nullptr; each = each->ai_next)
        addresses.append(QHostAddress(each->ai_addr));
    ::freeaddrinfo(first);
    return addresses;
}

}  // namespace

// What the thread leaves as its result. The requester may be gone by then, and the program may be ending. A descriptor announces
// the answer, not an event between threads: such an event gets lost on a wait that begins at the same moment, a readable
// descriptor never does.
struct NameLookup::Answer {
    Answer() : ready(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (ready < 0) throw Error(std::strerror(errno));
    }
    ~Answer() { ::close(ready); }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    const int ready;
    std::promise<QList<QHostAddress>> addresses;
};

NameLookup::NameLookup(const std::string& name, Found found)
    : answer_(std::make_shared<Answer>()),
      found_(std::move(found)),
      arrived_(std::make_unique<QSocketNotifier>(answer_->ready, QSocketNotifier::Read)) {
    QObject::connect(arrived_.get(), &QSocketNotifier::activated, arrived_.get(), [this] { OnAnswer(); });
    try {
        std::thread([answer = answer_, name] {
            answer->addresses.set_value(AddressesOf(name));
            ::eventfd_write(answer->ready, 1);
        }).detach();
    } catch (const std::system_error& error) {
        throw Error(error.what());
    }
}

NameLookup::~NameLookup() = default;

void NameLookup::OnAnswer() {
    arrived_->setEnabled(false);
    const Found found = std::move(found_);  // it may destroy this object
    found(answer_->addresses.get_future().get());
}

}  // namespace korvane
