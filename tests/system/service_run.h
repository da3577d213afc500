// The program as a service manager starts it, in a home of its own, and its stop.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/text.h"
#include "system/service_manager.h"

namespace korvane::test {

constexpr std::chrono::seconds kLimit{60};  ///< nothing here takes so long
constexpr std::chrono::seconds kLongestStop{5};

constexpr const char* kReady = "READY=1";

/// The columns and the values of a row.
struct NewEntry {
    std::string columns;
    std::string values;
};

/// An entry that is due, with the id 1.
inline NewEntry DueEntry(const std::string& type, const std::string& address, int port, const std::string& more = "",
                         const std::string& moreValues = "") {
    return {"ID, strDesc, strType, strAddress_IP, strPort, dtNextCheck" + more,
            "1, 'amid', '" + type + "', '" + address + "', '" + std::to_string(port) + "', '2026-01-01 00:00:00'" + moreValues};
}

class Service : public testing::Test {
protected:
    /// A home that was set up before; `settings` are lines of its file.
    void Prepare(const std::string& settings, const NewEntry& entry = {}) {
        home.Write("kvurlwatchn.ini", "[Setup]\nDone=True\n[Settings]\nbALLInDB=True\n" + settings);
        std::filesystem::copy_file(std::string(KORVANE_DIST_DIR) + "/kvempty.mdb", database,
                                   std::filesystem::copy_options::overwrite_existing);
        if (!entry.columns.empty()) Query("INSERT INTO Servers (" + entry.columns + ") VALUES (" + entry.values + ")");
    }

    std::string Query(const std::string& sql) const { return Rows(database, sql); }

    /// `more` are variables.
    void Start(const std::vector<std::string>& more = {}) {
        manager = std::make_unique<ServiceManagerEnd>();
        std::vector<std::string> words = {"NOTIFY_SOCKET=" + manager->Address()};
        words.insert(words.end(), more.begin(), more.end());
        StartBy(words, home);
    }
    /// `words`, for env(1), come before the home and the program. Its output goes to the file of that folder.
    void StartBy(std::vector<std::string> words, const PrivateFolder& folder) {
        words.insert(words.begin(),
                     {"env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "SYSTEMD_EXEC_PID", "-u", "WATCHDOG_PID"});
        words.push_back("KORVANE_HOME=" + home.Path());
        words.push_back(std::string(KORVANE_DIST_DIR) + "/korvanecore");
        process.reset();
        std::filesystem::remove(folder.Path("output"));
        process = std::make_unique<Process>(words, folder);
    }

    template <class Condition>
    bool Waited(Condition condition, std::chrono::seconds limit = kLimit) const {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline || process->Ended(std::chrono::milliseconds(20))) return false;
        }
        return true;
    }
    /// Stops it as the manager does.
    void Stop() {
        const auto begun = std::chrono::steady_clock::now();
        process->Signal(SIGTERM);
        ASSERT_TRUE(process->Ended(kLimit));
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begun);
        RecordProperty("stop_ms", static_cast<int>(took.count()));
        EXPECT_LT(took, kLongestStop);
        EXPECT_EQ(process->ExitStatus(), 0) << home.Read("output");
        EXPECT_EQ(manager->Count("STOPPING=1"), 1);
        EXPECT_EQ(manager->Told().back().text, "STATUS=Service Stopped.");
        EXPECT_EQ(Query("PRAGMA integrity_check"), "ok\n");
    }

    const PrivateFolder home;
    const std::string database = home.Path("kvdata2.mdb");
    std::unique_ptr<ServiceManagerEnd> manager;
    std::unique_ptr<Process> process;
};

}  // namespace korvane::test
