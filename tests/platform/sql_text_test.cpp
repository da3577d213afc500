// Connection strings and queries in the program's own form.
#include "platform/qt/sql_text.h"

#include <gtest/gtest.h>

#include "base/error.h"

namespace korvane {
namespace {

TEST(SqlText, ConnectionStringsNameTheFile) {
    const struct {
        const char* text;
        const char* file;
    } cases[] = {
        {"DRIVER={SQLite};DBQ=/a b/kvdata2.mdb;DefaultDir=/a b/;UID=admin;PWD=;", "/a b/kvdata2.mdb"},
        {"Provider=SQLite; Data Source=/a/kvdata2.mdb;Persist Security Info=False;", "/a/kvdata2.mdb"},
        {"DRIVER={a;DBQ=no};PWD=x=y;DBQ=\"/a;DBQ=b/c\" ;UID=admin", "/a;DBQ=b/c"},
        {";;UID;DBQ=;dbq=/x", "/x"},
        {"DBQ=\"/a\"\"b;c\"\"\";UID=admin", "/a\"b;c\""},
        {"DBQ=\"/unclosed;DBQ=/no", "/unclosed;DBQ=/no"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(DatabaseFileOf(c.text), c.file) << c.text;
    for (const char* text : {"", "DRIVER={SQLite};UID=admin", "DBQ", "PWD={DBQ=/a}", "DBQ=;"})
        EXPECT_THROW(DatabaseFileOf(text), Error) << text;
}

TEST(SqlText, DatesBecomeTheStoredForm) {
    const struct {
        const char* query;
        const char* stored;
    } cases[] = {
        {"dt <= #11/21/2026 3:04:05 PM# order", "dt <= '2026-11-21 15:04:05' order"},
        {"#1/2/2026##12/31/2026 12:00:00 AM#", "'2026-01-02 00:00:00''2026-12-31 00:00:00'"},
        {"a = '#1/2/2026' and [b#1] = \"#\" and `#` = 'it''s #' or c > #9/5/2026 9:05:30 am#",
         "a = '#1/2/2026' and [b#1] = \"#\" and `#` = 'it''s #' or c > '2026-09-05 09:05:30'"},
        {"unclosed 'text #1/2/2026#", "unclosed 'text #1/2/2026#"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(WithStoredDates(c.query), c.stored);
    for (const char* query : {"dt < #11/21/2026", "dt < #2/30/2026#", "dt < ##", "dt < #' or ''='#"})
        EXPECT_THROW(WithStoredDates(query), Error) << query;
}

TEST(SqlText, RowsOfOneTableAreTold) {
    const struct {
        const char* query;
        const char* table;
        const char* withIds;
    } cases[] = {
        {"SELECT  * from servers order by dtNextCheck ; ", "servers", "SELECT `ID` FROM `servers` order by dtNextCheck"},
        {"select*from[Servers]where id < 0", "Servers", "SELECT `ID` FROM `Servers` where id < 0 ORDER BY k "},
        {"SELECT * FROM servers", "servers", "SELECT `ID` FROM `servers`  ORDER BY k "},
        {"SELECT * FROM S limit 1", "S", "SELECT `ID` FROM `S`  ORDER BY k limit 1"},
        {"SELECT id,idparent from R\nwhere a='order' or b in (select c from d order by c)", "R",
         "SELECT `ID` FROM `R` where a='order' or b in (select c from d order by c) ORDER BY k "},
        {"SELECT idparent from R", "R", "SELECT `ID` FROM (SELECT idparent from R ORDER BY k )"},
        {"SELECT a from R where 1 group by a", "R", "SELECT `ID` FROM (SELECT a from R where 1 group by a)"},
        {"SELECT distinct ID FROM S", "", "SELECT `ID` FROM (SELECT distinct ID FROM S)"},
        {"SELECT count(*), id FROM S", "", "SELECT `ID` FROM (SELECT count(*), id FROM S)"},
        {"SELECT * FROM S, R where 1", "", "SELECT `ID` FROM (SELECT * FROM S, R where 1)"},
        {"SELECT * FROM S whereas", "", "SELECT `ID` FROM (SELECT * FROM S whereas)"},
    };
    for (const auto& c : cases) {
        SelectText select = ParseSelect(c.query);
        if (select.LacksOrder()) select.OrderBy("k");
        EXPECT_EQ(select.table, c.table);
        EXPECT_EQ(select.Selecting("`ID`"), c.withIds);
    }
}

}  // namespace
}  // namespace korvane
