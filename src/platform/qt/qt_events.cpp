#include "platform/qt/qt_events.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEventLoop>
#include <QObject>
#include <QSocketNotifier>
#include <thread>
#include <utility>

#include "platform/qt/qt_interval.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;

class NotifierWatch : public Events::Watch {
public:
    NotifierWatch(int descriptor, std::function<void()> readable) : notifier_(descriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, std::move(readable));
    }

private:
    QSocketNotifier notifier_;
};

}  // namespace

// Its only event ends a wait and does nothing else. One timer is enough for nested waits: the outer wait ends with the event in
// which the inner one ran, even if the inner wait replaced its limit.
class QtEvents::LimitTimer : public QObject {
public:
    void Start(milliseconds limit) { timer_.start(QtInterval(limit), Qt::PreciseTimer, this); }
    void Stop() { timer_.stop(); }

protected:
    void timerEvent(QTimerEvent* /*event*/) override { timer_.stop(); }

private:
    QBasicTimer timer_;
};

QtEvents::QtEvents() : limit_(std::make_unique<LimitTimer>()) {}

QtEvents::~QtEvents() = default;

void QtEvents::DoEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void QtEvents::WaitForEvent(milliseconds limit) {
    if (limit <= milliseconds::zero()) return DoEvents();
    limit_->Start(limit);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    limit_->Stop();
    QCoreApplication::processEvents(
        QEventLoop::AllEvents);  // events from other threads and from the desktop have only woken the loop so far
}

void QtEvents::Sleep(milliseconds time) {
    std::this_thread::sleep_for(time);
}

std::unique_ptr<Events::Watch> QtEvents::WatchReadable(int descriptor, std::function<void()> readable) {
    return std::make_unique<NotifierWatch>(descriptor, std::move(readable));
}

}  // namespace korvane
