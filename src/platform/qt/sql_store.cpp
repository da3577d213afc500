#include "platform/qt/sql_store.h"

#include <future>

#include "platform/qt/sql_compaction.h"
#include "platform/qt/sql_recordset.h"

namespace korvane {
namespace {

constexpr std::chrono::milliseconds kGlanceEvery{100};

}  // namespace

QtSqlStore::QtSqlStore(ColumnKindOf kindOf, std::chrono::milliseconds busyTimeout) : state_(std::make_shared<SqlStoreState>()) {
    state_->kindOf = std::move(kindOf);
    state_->busyTimeout = busyTimeout;
}

std::unique_ptr<Connection> QtSqlStore::NewConnection() {
    return std::make_unique<QtSqlConnection>(state_);
}

std::unique_ptr<Recordset> QtSqlStore::NewRecordset() {
    return std::make_unique<QtSqlRecordset>(state_);
}

void QtSqlStore::Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) {
    auto work = std::async(std::launch::async, [&] {
        SqlSession session(file, state_->busyTimeout, state_->kindOf);
        CompactDatabase(session, copy, copied);
    });
    while (work.wait_for(kGlanceEvery) != std::future_status::ready)
        glance_();
    work.get();
}

void QtSqlStore::Rest() {
    state_->kept.reset();
}

}  // namespace korvane
