// What the suite of the engine shares: the program with entries, whose first tick comes 2 s after the start.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/world.h"

namespace korvane {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;
using Tray = RecordingOperator::Tray;

const DateTime kStart = DateTime::Of(2026, 11, 21, 15, 0, 0);

/// Entries that are due at once, with other values in some columns.
inline Row With(Row columns, const Entry& entry) {
    columns.merge(entry.AsRow());
    return columns;
}
inline Row Ping(const Row& columns = {}) {
    return With(columns, {.nIntervalSeconds = 300, .strExpectedText = "1000"});
}
inline Row Web(const Row& columns = {}) {
    return With(columns, {.strAddress_IP = "web", .strType = "HTTP", .strPort = "80", .nIntervalSeconds = 300});
}

struct Engine : World {
    explicit Engine(const std::vector<Row>& entries = {}, const std::string& settings = "", DateTime start = kStart)
        : World({.start = start, .settings = settings}) {
        Start();
        net.Host("10.0.0.1").Echo(5ms);
        for (const Row& entry : entries)
            Add(entry);
    }
    /// Their ids are 1, 2, 3 ...
    void Add(Row entry) {
        entry["ID"] = ++last;
        rows.AddRow("Servers", entry);
    }
    void Change(std::int64_t id, const Row& columns) { rows.Change("Servers", id, columns); }
    /// The texts of columns, with "," between them.
    std::string Of(std::int64_t id, const std::string& columns) {
        std::string texts;
        for (const Row row = rows.Server(id); const std::string& column : Split(columns, ','))
            texts += "," + row.at(column).Text();
        return texts.substr(1);
    }
    /// The commands since the last call.
    Texts TakeStarted() {
        Texts commands;
        for (const auto& [command, style] : std::exchange(processes.started, {}))
            commands.push_back(ReplaceAll(command, home, "~"));
        return commands;
    }

    std::int64_t last = 0;
    VirtualPage& page = net.Page("http://web");
};

}  // namespace korvane
