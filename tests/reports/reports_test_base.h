// A test's own small database, templates that show nothing but their four placeholders, and pages in memory.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/text.h"
#include "reports/reports_rig.h"
#include "support/faulty_files.h"
#include "support/faulty_store.h"

namespace korvane {

class ReportsTest : public testing::Test {
protected:
    ReportsTest() {
        disk.CreateFolder(dir + "/i");
        for (const char* name : {"grouptmp.htm", "summaryreporttmp.htm", "failurereporttmp.htm", "dailyreporttmp.htm"})
            disk.Replace(dir + "/" + name, "[[REPORT]]|[[TOTAL]]|[[DATE]]|[[GROUP]]");
        for (const char* name : {"citrix.gif", "up.gif"})
            disk.Replace(dir + "/i/" + name, name);
    }

    /// An entry with the defaults of the schema but for what is given; it is in group "Web" of customer 0 otherwise.
    void AddServer(int id, Row columns) {
        columns.merge(Row{{"ID", id}, {"strGroup", "Web"}, {"strDesc", "entry"}, {"strAddress_IP", "10.0.0.1"}});
        database.AddRow("Servers", columns);
    }
    void AddResponse(int id, int idParent, const char* txtType, DateTime dtCur, double nAveResponse) {
        database.AddRow(
            "Response",
            {{"id", id}, {"idParent", idParent}, {"txtType", txtType}, {"dtCur", dtCur}, {"nAveResponse", nAveResponse}});
    }
    void AddFailure(int id, int idParent, Row columns) {
        columns.merge(Row{{"ID", id}, {"IDParent", idParent}, {"nTimeout", 15}, {"strPort", "4000"}, {"nFailMax", 3}});
        database.AddRow("Failures", columns);
    }

    /// Of the folder "Reports".
    std::string Page(const std::string& name) const { return disk.Text(dir + "/Reports/" + name); }
    bool HasPage(const std::string& name) { return disk.Exists(dir + "/Reports/" + name); }

    const DateTime now = DateTime::Of(2026, 11, 21, 15, 4, 5);
    TestDatabase database;
    const std::string dir = database.Folder();
    MemoryFiles disk;
    FaultyFiles files{disk};
    FaultyStore store{database.TheStore()};
    VirtualWorld world{now};
    ReportsRig rig{files, store, world.events, world, dir};
};

}  // namespace korvane
