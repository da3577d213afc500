// Several changes of the store that become durable together, so that a loop waits for the disk once instead of once per row.
#pragma once

#include "base/ignore_errors.h"
#include "platform/connection.h"

namespace korvane {

/// No event may be delivered while a batch exists: the store is locked for everyone else.
class WriteBatch {
public:
    /// Throws Error when the store cannot be written now.
    explicit WriteBatch(Connection& connection) : connection_(connection) { connection_.BeginTrans(); }
    /// Changes from before a failure stay.
    ~WriteBatch() {
        if (!ended_) IgnoreErrors([&] { connection_.CommitTrans(); });
    }
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /// Throws Error; nothing of the batch is then written.
    void Commit() {
        ended_ = true;
        connection_.CommitTrans();
    }

private:
    Connection& connection_;
    bool ended_ = false;
};

}  // namespace korvane
