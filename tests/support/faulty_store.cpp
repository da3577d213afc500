#include "support/faulty_store.h"

#include <string>
#include <utility>

namespace korvane {
namespace {

using Plan = FaultPlan<StoreOperation>;

class FaultyConnection : public Connection {
public:
    FaultyConnection(std::unique_ptr<Connection> connection, Plan& faults)
        : connection_(std::move(connection)), faults_(faults) {}

    Connection& Wrapped() { return *connection_; }

    void Open() override {
        faults_.Pass(StoreOperation::Connect, ConnectionString());
        connection_->SetConnectionString(ConnectionString());
        connection_->Open();
    }
    void Close() override { connection_->Close(); }
    void BeginTrans() override { connection_->BeginTrans(); }
    void CommitTrans() override {
        faults_.Pass(StoreOperation::Commit, ConnectionString());
        connection_->CommitTrans();
    }
    void TryWriting() override { connection_->TryWriting(); }

private:
    std::unique_ptr<Connection> connection_;
    Plan& faults_;
};

class FaultyRecordset : public Recordset {
public:
    FaultyRecordset(std::unique_ptr<Recordset> recordset, Plan& faults) : recordset_(std::move(recordset)), faults_(faults) {}

    void Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) override {
        source_ = source;
        faults_.Pass(StoreOperation::Open, source);
        recordset_->Open(source, dynamic_cast<FaultyConnection&>(connection).Wrapped(), cursor, lock);
    }
    int RecordCount() const override { return recordset_->RecordCount(); }
    bool Eof() const override { return recordset_->Eof(); }
    void MoveNext() override {
        faults_.Pass(StoreOperation::MoveNext, source_);
        recordset_->MoveNext();
    }
    void AddNew() override {
        faults_.Pass(StoreOperation::AddNew, source_);
        recordset_->AddNew();
    }
    void Update() override {
        faults_.Pass(StoreOperation::Update, source_);
        recordset_->Update();
    }
    void Delete() override {
        faults_.Pass(StoreOperation::Delete, source_);
        recordset_->Delete();
    }
    void Close() override { recordset_->Close(); }

protected:
    korvane::Value Read(std::string_view name) override {
        faults_.Pass(StoreOperation::Read, name);
        return recordset_->Fields(name).Value();
    }
    void Write(std::string_view name, const korvane::Value& value) override {
        faults_.Pass(StoreOperation::Write, name);
        recordset_->Fields(name) = value;
    }

private:
    std::unique_ptr<Recordset> recordset_;
    Plan& faults_;
    std::string source_;
};

}  // namespace

std::unique_ptr<Connection> FaultyStore::NewConnection() {
    return std::make_unique<FaultyConnection>(store_.NewConnection(), faults);
}

std::unique_ptr<Recordset> FaultyStore::NewRecordset() {
    return std::make_unique<FaultyRecordset>(store_.NewRecordset(), faults);
}

void FaultyStore::Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) {
    faults.Pass(StoreOperation::Compact, file);
    store_.Compact(file, copy, copied);
}

}  // namespace korvane
