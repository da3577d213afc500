// A store that breaks on request: its connections and recordsets hand everything on to those of another store unless a fault of
// the plan says otherwise. An operation that fails has not happened.
#pragma once

#include <memory>
#include <string>
#include <utility>

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
    using Op = StoreOperation;

public:
    /// `store` must outlive this, and this its connections and recordsets.
    explicit FaultyStore(Store& store) : store_(store) {}

    FaultPlan<StoreOperation> faults;

    std::unique_ptr<Connection> NewConnection() override { return std::make_unique<Link>(store_.NewConnection(), faults); }
    std::unique_ptr<Recordset> NewRecordset() override { return std::make_unique<Rows>(store_.NewRecordset(), faults); }
    void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) override {
        faults.Pass(Op::Compact, file);
        store_.Compact(file, copy, copied);
    }
    void Rest() override { store_.Rest(); }

private:
    /// What stands before a connection or a recordset.
    template <class Wrapped>
    struct Hook {
        std::unique_ptr<Wrapped> wrapped;
        FaultPlan<Op>& faults;

        Wrapped& At(Op operation, std::string_view about) {
            faults.Pass(operation, about);
            return *wrapped;
        }
    };

    struct Link : Connection {
        Link(std::unique_ptr<Connection> wrapped, FaultPlan<Op>& faults) : hook{std::move(wrapped), faults} {}
        void Open() override {
            hook.wrapped->SetConnectionString(ConnectionString());
            hook.At(Op::Connect, ConnectionString()).Open();
        }
        void Close() override { hook.wrapped->Close(); }
        void BeginTrans() override { hook.wrapped->BeginTrans(); }
        void CommitTrans() override { hook.At(Op::Commit, ConnectionString()).CommitTrans(); }
        void TryWriting() override { hook.wrapped->TryWriting(); }

        Hook<Connection> hook;
    };

    struct Rows : Recordset {
        Rows(std::unique_ptr<Recordset> wrapped, FaultPlan<Op>& faults) : hook{std::move(wrapped), faults} {}
        void Open(std::string_view query, Connection& connection, CursorType cursor, LockType lock) override {
            source = query;
            hook.At(Op::Open, source).Open(source, *dynamic_cast<Link&>(connection).hook.wrapped, cursor, lock);
        }
        int RecordCount() const override { return hook.wrapped->RecordCount(); }
        bool Eof() const override { return hook.wrapped->Eof(); }
        void MoveNext() override { hook.At(Op::MoveNext, source).MoveNext(); }
        void AddNew() override { hook.At(Op::AddNew, source).AddNew(); }
        void Update() override { hook.At(Op::Update, source).Update(); }
        void Delete() override { hook.At(Op::Delete, source).Delete(); }
        void Close() override { hook.wrapped->Close(); }
        Value Read(std::string_view name) override { return hook.At(Op::Read, name).Fields(name).Value(); }
        void Write(std::string_view name, const Value& value) override { hook.At(Op::Write, name).Fields(name) = value; }

        Hook<Recordset> hook;
        std::string source;
    };

    Store& store_;
};

}  // namespace korvane
