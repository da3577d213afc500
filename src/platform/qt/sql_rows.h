// The rows of one query, from first to last: a keyset, whose values are read on access, or a static copy.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/qt/sql_table.h"
#include "platform/qt/sql_text.h"
#include "platform/qt/sql_values.h"

namespace korvane {

class SqlRows {
public:
    virtual ~SqlRows() = default;

    virtual int Count() const = 0;

    /// Goes to the next row, at first to the first one; returns false after the last.
    virtual bool Next() = 0;

    /// These concern the current row. They throw Error.
    virtual std::int64_t Key() const = 0;
    virtual Value Read(std::size_t column) = 0;
};

class KeysetRows : public SqlRows {
public:
    /// Reads the keys. Throws Error.
    KeysetRows(SqlSession& session, const SelectText& select, SqlTable& table);

    int Count() const override { return static_cast<int>(keys_.size()); }
    bool Next() override { return at_ < keys_.size() && ++at_ > 0; }
    std::int64_t Key() const override { return keys_[at_ - 1]; }
    Value Read(std::size_t column) override { return table_.Read(std::span(keys_).subspan(at_ - 1), column); }

private:
    SqlTable& table_;
    std::vector<std::int64_t> keys_;
    std::size_t at_ = 0;  // after the current row
};

class StaticRows : public SqlRows {
public:
    /// Copies the rows. Throws Error.
    StaticRows(SqlSession& session, const SelectText& select);
    ~StaticRows() override;

    const std::shared_ptr<const SqlColumns>& Columns() const { return columns_; }

    int Count() const override;
    bool Next() override;
    std::int64_t Key() const override;
    Value Read(std::size_t column) override;

private:
    struct Copies;

    std::shared_ptr<const SqlColumns> columns_;
    std::unique_ptr<Copies> rows_;
    std::size_t at_ = 0;  // after the current row
};

}  // namespace korvane
