// A store that breaks on request: its connections and recordsets hand everything on to those of another store unless a fault of
// the plan says otherwise. An operation that fails has not happened.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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
    Execute,   ///< [statement]
};

class FaultyStore : public Store {
    using Op = StoreOperation;

public:
    /// `store` must outlive this, and this its connections and recordsets.
    explicit FaultyStore(Store& store) : store_(store) {}

    FaultPlan<StoreOperation> faults;
    bool staysOpen = false;  ///< does not rest: opening the file again and again is most of what a long run costs

    std::unique_ptr<Connection> NewConnection() override { return std::make_unique<Link>(store_.NewConnection(), faults); }
    std::unique_ptr<Recordset> NewRecordset() override { return std::make_unique<Rows>(store_.NewRecordset(), faults); }
    void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) override {
        faults.Pass(Op::Compact, file, store_).Compact(file, copy, copied);
    }
    void Rest() override {
        if (!staysOpen) store_.Rest();
    }
    bool InUse() const override { return store_.InUse(); }

private:
    struct Link : Connection {
        Link(std::unique_ptr<Connection> wrapped, FaultPlan<Op>& plan) : link(std::move(wrapped)), faults(plan) {}
        void Open() override {
            link->SetConnectionString(ConnectionString());
            At(Op::Connect).Open();
        }
        void Close() override { link->Close(); }
        void BeginTrans() override { link->BeginTrans(); }
        void CommitTrans() override { At(Op::Commit).CommitTrans(); }
        void Execute(std::string_view statement, const std::vector<Value>& values) override {
            At(Op::Execute, statement).Execute(statement, values);
        }
        void TryWriting() override { link->TryWriting(); }
        bool HasTable(std::string_view name) override { return link->HasTable(name); }
        bool TryTakeDuty(std::string_view name) override { return link->TryTakeDuty(name); }
        void ReleaseDuty(std::string_view name) override { link->ReleaseDuty(name); }
        std::optional<DateTime> Now() override { return link->Now(); }
        Connection& At(Op operation) { return At(operation, ConnectionString()); }
        Connection& At(Op operation, std::string_view about) { return faults.Pass(operation, about, *link); }

        std::unique_ptr<Connection> link;
        FaultPlan<Op>& faults;
    };

    struct Rows : Recordset {
        Rows(std::unique_ptr<Recordset> wrapped, FaultPlan<Op>& plan) : rows(std::move(wrapped)), faults(plan) {}
        void Open(std::string_view query, Connection& connection, CursorType cursor, LockType lock) override {
            source = query;
            At(Op::Open, source).Open(source, *dynamic_cast<Link&>(connection).link, cursor, lock);
        }
        int RecordCount() const override { return rows->RecordCount(); }
        bool Eof() const override { return rows->Eof(); }
        void MoveNext() override { At(Op::MoveNext, source).MoveNext(); }
        bool TryLock() override { return rows->TryLock(); }
        void AddNew() override { At(Op::AddNew, source).AddNew(); }
        void Update() override { At(Op::Update, source).Update(); }
        void Delete() override { At(Op::Delete, source).Delete(); }
        void Close() override { rows->Close(); }
        Value Read(std::string_view name) override { return At(Op::Read, name).Fields(name).Value(); }
        void Write(std::string_view name, const Value& value) override { At(Op::Write, name).Fields(name) = value; }
        Recordset& At(Op operation, std::string_view about) { return faults.Pass(operation, about, *rows); }

        std::unique_ptr<Recordset> rows;
        FaultPlan<Op>& faults;
        std::string source;
    };

    Store& store_;
};

}  // namespace korvane
