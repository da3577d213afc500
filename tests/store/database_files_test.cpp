#include "store/database_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "store/schema.h"
#include "store/store_rig.h"

namespace korvane {
namespace {

TEST(ConnectionTexts, QuoteAPathThatWouldEndEarly) {
    EXPECT_EQ(OdbcConnectionText("/kv"), "DRIVER={SQLite};DBQ=/kv/kvdata2.mdb;DefaultDir=/kv/;UID=admin;PWD=;");
    EXPECT_EQ(OleDbConnectionText("/kv"), "Provider=SQLite; Data Source=/kv/kvdata2.mdb;Persist Security Info=False;");
    EXPECT_EQ(OleDbConnectionText("/a;b"), "Provider=SQLite; Data Source=\"/a;b/kvdata2.mdb\";Persist Security Info=False;");
    EXPECT_EQ(OdbcConnectionText("/a\"b"), "DRIVER={SQLite};DBQ=\"/a\"\"b/kvdata2.mdb\";DefaultDir=\"/a\"\"b/\";UID=admin;PWD=;");
}

struct DatabaseFilesTest : testing::Test, StoreRig {};

TEST_F(DatabaseFilesTest, TellsWhyTheDatabaseDoesNotOpen) {
    std::string why = "left over";
    EXPECT_FALSE(IsDBConnectOK(store, files, dir, why));
    EXPECT_EQ(why, "The database file (" + dir + "/kvdata2.mdb)does not exist.");
    disk.Replace(DatabasePath(dir), "there");
    EXPECT_TRUE(IsDBConnectOK(store, files, dir, why));
    EXPECT_EQ(why, "");
    store.faults.Add({.operation = StoreOperation::Connect, .description = "file is not a database", .number = 26});
    EXPECT_FALSE(IsDBConnectOK(store, files, dir, why));
    EXPECT_EQ(why, "26 Desc: file is not a database");
}

// The columns of the file that the blank database is made from, as "Servers.strType TEXT COLLATE NOCASE".
std::set<std::string> DeclaredColumns() {
    std::ifstream sql(KORVANE_SOURCE_DIR "/data/kvempty.sql");
    std::set<std::string> columns;
    std::string table;
    for (std::string line; std::getline(sql, line);) {
        const std::vector<std::string> words = Split(line, ' ');
        if (line.starts_with("CREATE TABLE ")) table = words.at(2);
        if (!line.starts_with("    ")) continue;
        std::string name, type;
        std::istringstream(line) >> name >> type;
        const bool noCase = line.find(" COLLATE NOCASE") != std::string::npos;
        columns.insert(table + "." + name + " " + ReplaceAll(type, ",", "") + (noCase ? " COLLATE NOCASE" : ""));
    }
    return columns;
}

TEST(Schema, AgreesWithTheBlankDatabase) {
    const auto declared = [](ColumnKind kind) {
        switch (kind) {
            case ColumnKind::Text:
                return "TEXT COLLATE NOCASE";
            case ColumnKind::DateTime:
                return "TEXT";
            case ColumnKind::Double:
                return "REAL";
            default:
                return "INTEGER";
        }
    };
    std::set<std::string> columns;
    for (const TableSchema& table : DatabaseSchema()) {
        for (const ColumnSchema& column : table.columns) {
            columns.insert(std::string(table.name) + "." + std::string(column.name) + " " + declared(column.kind));
            EXPECT_EQ(KindOfColumn(ToLower(table.name), ToLower(column.name)), column.kind);
        }
    }
    EXPECT_EQ(columns, DeclaredColumns());
    EXPECT_EQ(KindOfColumn("Servers", "strFailText"), std::nullopt);
}

}  // namespace
}  // namespace korvane
