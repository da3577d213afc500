// A store that breaks on request: its connections and recordsets hand everything on to those of another store unless a fault of
// the plan says otherwise. An operation that fails has not happened.
#pragma once

#include <memory>

#include "platform/connection.h"
#include "support/fault_plan.h"

namespace korvane {

/// In brackets what a fault can be about.
enum class StoreOperation {
    Connect,   ///< Connection::Open [connection string]
    Open,      ///< Recordset::Open [query]
    Read,      ///< Fields(...).Value() [column]
    Write,     ///< Fields(...) = [column]
    MoveNext,  ///< [query]
    AddNew,    ///< [query]
    Update,    ///< [query]
    Delete,    ///< [query]
    Compact,   ///< [file]
    Commit,    ///< [connection string]
};

class FaultyStore : public Store {
public:
    /// `store` must outlive this, and this its connections and recordsets.
    explicit FaultyStore(Store& store) : store_(store) {}

    FaultPlan<StoreOperation> faults;

    std::unique_ptr<Connection> NewConnection() override;
    std::unique_ptr<Recordset> NewRecordset() override;
    void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) override;
    void Rest() override { store_.Rest(); }

private:
    Store& store_;
};

}  // namespace korvane
