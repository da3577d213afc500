#include "platform/qt/qt_timer.h"

#include <QString>
#include <QTimer>

#include "platform/qt/qt_interval.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

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

std::unique_ptr<Timer> QtTimers::NewTimer(const std::string& name) {
    return std::make_unique<QtTimer>(name);
}

}  // namespace korvane
