// Several changes of the store that become durable together, so that a loop waits for the disk once and not once a row.
#pragma once

#include "base/ignore_errors.h"
#include "platform/connection.h"

namespace korvane {

/// No event may be delivered while one is alive: everybody else would find the store locked.
class WriteBatch {
public:
    /// Throws Error when the store can't be written now.
    explicit WriteBatch(Connection& connection) : connection_(connection) { connection_.BeginTrans(); }
    /// What was changed before a failure stays.
    ~WriteBatch() {
        if (!ended_) IgnoreErrors([&] { connection_.CommitTrans(); });
    }
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /// Throws Error; nothing of the batch has then been changed.
    void Commit() {
        ended_ = true;
        connection_.CommitTrans();
    }

private:
    Connection& connection_;
    bool ended_ = false;
};

}  // namespace korvane
