// The main window with 500 entries: a refresh of its list, alone and with the painting that follows, beside what the store needs
// to give the rows. On the platform without a screen, where painting goes to memory.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/desktop_test.h"
#include "shell/list/entry_detail.h"
#include "shell/list/server_list.h"

namespace korvane {
namespace {

constexpr int kEntries = 500;

std::vector<Entry> Entries() {
    std::vector<Entry> entries;
    for (int i = 0; i < kEntries; ++i)
        entries.push_back({.strGroup = "Group" + std::to_string(i % 20),
                           .strDesc = "Server number " + std::to_string(i),
                           .strAddress_IP = "server" + std::to_string(i) + ".example.com/status",
                           .strType = "HTTP",
                           .strPort = "80",
                           .strExpectedText = "Welcome",
                           .nAveResponse = 12.5 * i,
                           .dtNextCheck = DateTime::Of(2026, 11, 21, 15, i % 60, i % 59)});
    return entries;
}

/// The whole program with its window, in virtual time.
struct Desktop {
    Desktop() {
        window->Attach(world->run, [] {});
        world->Start();
        world->rows.AddMany(Entries());
        window->show();
        QApplication::processEvents();
    }
    ~Desktop() { window.reset(); }  // its timers are those of the program

    std::unique_ptr<frmMonitor> window;
    std::unique_ptr<World> world = std::make_unique<World>(World::Setup{.makeFace = [this](Timers& timers) {
        NeedDesktop();
        window = std::make_unique<frmMonitor>(timers);
        return WorldFace{.person = window.get(), .window = window.get()};
    }});
};

void Refresh(benchmark::State& state) {
    Desktop desktop;
    for (auto _ : state)
        desktop.window->RefreshURLList();
}

void RefreshSortedAndPainted(benchmark::State& state) {
    Desktop desktop;
    desktop.window->ListView1->sortByColumn(column::ShortName, Qt::AscendingOrder);
    for (auto _ : state) {
        desktop.window->RefreshURLList();
        QApplication::processEvents();
    }
}

/// With the chip of the state that most entries have, and words that a tenth of them holds.
void RefreshFiltered(benchmark::State& state) {
    Desktop desktop;
    desktop.window->findChild<QAbstractButton*>("chipUp")->setChecked(true);
    desktop.window->findChild<QLineEdit*>("txtFind")->setText("Server number 1");
    for (auto _ : state)
        desktop.window->RefreshURLList();
}

/// One more letter and one less, each until the list is painted.
void KeyInFind(benchmark::State& state) {
    Desktop desktop;
    auto& find = *desktop.window->findChild<QLineEdit*>("txtFind");
    find.setFocus();
    for (bool more = true; auto _ : state) {
        QTest::keyClick(&find, more ? Qt::Key_7 : Qt::Key_Backspace);
        QApplication::processEvents();
        more = !more;
    }
}

/// A filter of 10,000 letters in 2,000 words.
void LongFilter(benchmark::State& state) {
    Desktop desktop;
    QString words;
    for (int i = 0; words.size() < 10'000; ++i)
        words += QString::number(1000 + i) + " ";
    for (auto _ : state) {
        desktop.window->findChild<QLineEdit*>("txtFind")->setText(words);
        desktop.window->findChild<QLineEdit*>("txtFind")->clear();
    }
}

/// Two entries have a hundred thousand failures each.
void AddFailures(Desktop& desktop) {
    desktop.world->rows.Connected()->Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200000) INSERT INTO Failures (ID, IDParent, "
        "nFailCount, nFailMax, strReason, strAction, dateFail) SELECT i, i % 2 + 1, 1, 3, 'Connection timed out', 'None.', "
        "datetime('2026-01-01', i * 60 || ' seconds') FROM n");
}

void DetailAlone(benchmark::State& state) {
    Desktop desktop;
    AddFailures(desktop);
    for (auto _ : state)
        benchmark::DoNotOptimize(LoadEntryDetail(desktop.world->run.TheDesk(), 1, desktop.world->world.clock.Now()));
}

/// The strip with the details of one entry after the other, with the painting.
void ShowDetailAndPaint(benchmark::State& state) {
    Desktop desktop;
    AddFailures(desktop);
    desktop.window->resize(1280, 800);
    desktop.window->RefreshURLList();
    const auto& model = static_cast<ServerListModel&>(*desktop.window->ListView1->model());
    const QModelIndex entries[] = {model.index(model.RowOf("1"), 0), model.index(model.RowOf("2"), 0)};
    for (int i = 0; auto _ : state) {
        desktop.window->ListView1->setCurrentIndex(entries[++i % 2]);
        QApplication::processEvents();
    }
}

void RowsAlone(benchmark::State& state) {
    Desktop desktop;
    for (auto _ : state)
        benchmark::DoNotOptimize(LoadServerList(desktop.world->run.TheDesk(), true));
}

void QueryAlone(benchmark::State& state) {
    TestDatabase database;
    database.AddMany(Entries());
    for (auto _ : state) {
        const auto conn = database.TheStore().NewConnection();
        conn->SetConnectionString(database.DriverString());
        conn->Open();
        const auto rs = database.TheStore().NewRecordset();
        rs->Open("SELECT * from servers order by dtNextCheck ", *conn, CursorType::Static, LockType::Optimistic);
        benchmark::DoNotOptimize(rs->RecordCount());
    }
}

void StatusLine(benchmark::State& state) {
    Desktop desktop;
    for (auto _ : state)
        desktop.window->StatusLine("3:04:05 PM", "Success: Found 'Welcome' in the response of server number 17");
}

BENCHMARK(Refresh)->Unit(benchmark::kMillisecond);
BENCHMARK(RefreshSortedAndPainted)->Unit(benchmark::kMillisecond);
BENCHMARK(RefreshFiltered)->Unit(benchmark::kMillisecond);
BENCHMARK(KeyInFind)->Unit(benchmark::kMillisecond);
BENCHMARK(LongFilter)->Unit(benchmark::kMillisecond);
BENCHMARK(DetailAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(ShowDetailAndPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(RowsAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(QueryAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(StatusLine)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
