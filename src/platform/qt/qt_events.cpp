#include "platform/qt/qt_events.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>
#include <algorithm>
#include <limits>
#include <thread>
#include <utility>

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// Qt stores intervals in an int: anything longer than 24 days becomes 24 days.
int QtInterval(milliseconds interval) {
    return static_cast<int>(std::clamp<milliseconds::rep>(interval.count(), 0, std::numeric_limits<int>::max()));
}

class NotifierWatch : public Events::Watch {
public:
    NotifierWatch(int descriptor, std::function<void()> readable) : notifier_(descriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, std::move(readable));
    }

private:
    QSocketNotifier notifier_;
};

class QtTimer : public Timer {
public:
    explicit QtTimer(const std::string& name) {
        timer_.setObjectName(QString::fromStdString(name));
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Fire(); });
    }

protected:
    void Arm(milliseconds interval) override {
        timer_.setTimerType(interval >= 1s ? Qt::CoarseTimer : Qt::PreciseTimer);
        timer_.start(QtInterval(interval));
    }
    void Disarm() override { timer_.stop(); }

private:
    QTimer timer_;
};

}  // namespace

QtEvents::QtEvents() : limit_(std::make_unique<QTimer>()) {
    limit_->setSingleShot(true);
    limit_->setTimerType(Qt::PreciseTimer);
}

QtEvents::~QtEvents() = default;

void QtEvents::DoEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void QtEvents::WaitForEvent(milliseconds limit) {
    if (limit <= milliseconds::zero()) return DoEvents();
    limit_->start(QtInterval(limit));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    limit_->stop();
    DoEvents();  // events from other threads and from the desktop have only woken the loop so far
}

void QtEvents::Sleep(milliseconds time) {
    std::this_thread::sleep_for(time);
}

std::unique_ptr<Events::Watch> QtEvents::WatchReadable(int descriptor, std::function<void()> readable) {
    return std::make_unique<NotifierWatch>(descriptor, std::move(readable));
}

std::unique_ptr<Timer> QtTimers::NewTimer(const std::string& name) {
    return std::make_unique<QtTimer>(name);
}

}  // namespace korvane
