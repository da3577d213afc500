#include "reports/published_figures.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>
#include <utility>
#include <vector>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/database_files.h"
#include "store/last_checks.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kEach = 1min;
constexpr std::size_t kMostCharacters = 1000;
constexpr double kMostNumber = 1e15;  // beyond any count or time: not even a damaged row makes a file that cannot be read

constexpr std::string_view kColumns =
    "SELECT Servers.ID, strGroup, strDesc, strAddress_IP, strType, strCurStatus, nSuccess, nFail, nTriesCur, nPercentUp, "
    "nAveResponse, nAveSession, datelastcheck";
constexpr std::string_view kWithCertificate = ", dtCertificate FROM Servers LEFT JOIN LastChecks ON LastChecks.ID = Servers.ID";

using Number = std::optional<double>;

/// The time of writing.
struct Present {
    DateTime now;  ///< local
    DateTime utc;
};

/// Return what a column means as a figure; nothing: it has none. Throw Error.
Number Count(const Value& value, const Present& /*present*/) {
    return value.Double();
}
Number Seconds(const Value& milliseconds, const Present& /*present*/) {
    return milliseconds.Double() / 1000;
}
Number SecondsOrNone(const Value& milliseconds, const Present& present) {
    return milliseconds.Double() == 0 ? Number() : Seconds(milliseconds, present);
}
Number UnixTime(const Value& when, const Present& present) {
    return static_cast<double>((present.utc - (present.now - when.When())).Seconds());
}
Number DaysUntil(const Value& when, const Present& present) {
    return static_cast<double>(std::chrono::floor<std::chrono::days>(when.When() - present.now).count());
}
Number State(const Value& word, const Present& /*present*/) {
    constexpr std::string_view kWords[] = {"UP", "Failing", "DOWN"};
    const auto is = [text = word.Text()](std::string_view other) { return EqualsNoCase(text, other); };
    return static_cast<double>(std::find_if(std::begin(kWords), std::end(kWords), is) - std::begin(kWords));
}

struct Figure {
    std::string_view metric;  ///< its name after "korvane_"
    std::string_view type;
    std::string_view help;
    std::string_view key;  ///< in status.json
    std::string_view column = "";
    Number (*of)(const Value& value, const Present& present) = nullptr;
};

/// One series an entry.
constexpr Figure kOfEntry[] = {
    {"entry_state", "gauge", "0 is up, 1 failing, 2 down, 3 anything else.", "code", "strCurStatus", State},
    {"entry_passed_checks_total", "counter", "Checks that passed, since the last reset.", "passed", "nSuccess", Count},
    {"entry_failed_checks_total", "counter", "Checks that failed, since the last reset.", "failed", "nFail", Count},
    {"entry_failures_in_a_row", "gauge", "Checks that failed since the last one that passed.", "failuresInARow", "nTriesCur",
     Count},
    {"entry_up_percent", "gauge", "Share of the checks that passed, since the last reset.", "upPercent", "nPercentUp", Count},
    {"entry_response_seconds", "gauge", "Average response time, since the last reset.", "responseSeconds", "nAveResponse",
     Seconds},
    {"entry_recent_response_seconds", "gauge", "Average response time of the last checks, an hour of them at most.",
     "recentResponseSeconds", "nAveSession", SecondsOrNone},
    {"entry_last_check_timestamp_seconds", "gauge", "When the last check of the entry was counted.", "lastCheck", "datelastcheck",
     UnixTime},
    {"entry_certificate_days", "gauge", "Whole days until the certificate of the last check ends, below 0 after it.",
     "certificateDays", "dtCertificate", DaysUntil},
};

constexpr Figure kLastCheck{"last_check_timestamp_seconds", "gauge", "When the working loop finished its last check.",
                            "lastCheck"};
constexpr Figure kLastTurn{"loop_timestamp_seconds", "gauge", "When the working loop ended its last turn.", "loop"};

/// The texts of an entry: the columns, and their names as labels and in status.json.
constexpr std::pair<std::string_view, std::string_view> kTexts[] = {
    {"ID", "id"}, {"strDesc", "name"}, {"strGroup", "group"}, {"strType", "type"}, {"strAddress_IP", "address"}};

struct EntryFigures {
    std::string texts[std::size(kTexts)];
    std::string state;
    std::vector<Number> numbers;
};

// Both formats quote alike once there are no control characters.
std::string Quoted(const std::string& text) {
    return '"' + ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\"", "\\\"") + '"';
}

std::string CellText(Recordset& rs, std::string_view column) {
    std::string text;
    IgnoreErrors([&] { text = OneLine(rs.Fields(column).Value().Text(), kMostCharacters); });
    return text;
}

EntryFigures FiguresOf(Recordset& rs, const Present& present) {
    EntryFigures entry{.texts = {}, .state = CellText(rs, "strCurStatus"), .numbers = {}};
    for (std::size_t i = 0; i < std::size(kTexts); ++i)
        entry.texts[i] = CellText(rs, kTexts[i].first);
    for (const Figure& figure : kOfEntry) {
        Number number;
        IgnoreErrors([&] { number = figure.of(rs.Fields(figure.column).Value(), present); });
        const bool usable = number && std::abs(*number) < kMostNumber;
        entry.numbers.push_back(usable ? number : Number());
    }
    return entry;
}

std::string Family(const Figure& figure) {
    const std::string name = "korvane_" + std::string(figure.metric);
    return "# HELP " + name + " " + std::string(figure.help) + "\n# TYPE " + name + " " + std::string(figure.type) + "\n";
}

std::string Sample(const Figure& figure, const std::string& labels, const Number& number) {
    return number ? "korvane_" + std::string(figure.metric) + labels + " " + FormatGeneral(*number) + "\n" : "";
}

std::string Labels(const EntryFigures& entry) {
    std::string labels;
    for (std::size_t i = 0; i < std::size(kTexts); ++i)
        labels += (i == 0 ? "{" : ",") + std::string(kTexts[i].second) + "=" + Quoted(entry.texts[i]);
    return labels + "}";
}

std::string Member(std::string_view key, const Number& number) {
    return number ? ",\"" + std::string(key) + "\":" + FormatGeneral(*number) : "";
}

std::string Object(const EntryFigures& entry) {
    std::string object = "{\"id\":" + entry.texts[0];
    for (std::size_t i = 1; i < std::size(kTexts); ++i)
        object += ",\"" + std::string(kTexts[i].second) + "\":" + Quoted(entry.texts[i]);
    object += ",\"state\":" + Quoted(entry.state);
    for (std::size_t i = 0; i < std::size(kOfEntry); ++i)
        object += Member(kOfEntry[i].key, entry.numbers[i]);
    return object + "}";
}

Number UnixTimeOf(const std::optional<DateTime>& utc) {
    return utc ? static_cast<double>(utc->Seconds()) : Number();
}

}  // namespace

bool PublishedFigures::IsOn() const {
    const std::string* value = ports_.settings.Find("Figures");
    return value != nullptr && *value == "True";
}

void PublishedFigures::Write(Connection& connection) {
    const Present present{ports_.clock.Now(), ports_.clock.UtcNow()};
    std::vector<EntryFigures> entries;
    const auto open = [&](std::string_view query) {
        return OpenRows(ports_.store, connection, query, CursorType::Static, LockType::BatchOptimistic);
    };
    // A row that is no longer kept up would tell of a certificate that has been renewed.
    const bool hasCertificates = KeepsLastChecks(ports_.settings) && connection.HasTable("LastChecks");
    const auto rs =
        open(std::string(kColumns).append(hasCertificates ? kWithCertificate : " FROM Servers") + " ORDER BY Servers.ID");
    for (; !rs->Eof(); rs->MoveNext())
        entries.push_back(FiguresOf(*rs, present));
    rs->Close();
    written_ = ports_.clock.GetTickCount();

    const std::pair<Figure, Number> ofLoop[] = {{kLastTurn, UnixTimeOf(lastTurn_)}, {kLastCheck, UnixTimeOf(lastCheck_)}};
    folder_.WriteFigures("metrics.prom", [&](const TakeText& take) {
        for (const auto& [figure, number] : ofLoop)
            take(Family(figure) + Sample(figure, "", number));
        for (std::size_t i = 0; i < std::size(kOfEntry); ++i) {
            take(Family(kOfEntry[i]));
            for (const EntryFigures& entry : entries)
                take(Sample(kOfEntry[i], Labels(entry), entry.numbers[i]));
        }
    });
    folder_.WriteFigures("status.json", [&](const TakeText& take) {
        take("{\"program\":\"Korvane\"");
        for (const auto& [figure, number] : ofLoop)
            take(Member(figure.key, number));
        take(",\"entries\":[");
        for (const EntryFigures& entry : entries)
            take((&entry == &entries.front() ? "\n" : ",\n") + Object(entry));
        take("\n]}\n");
    });
}

void PublishedFigures::NoteTurn(std::optional<DateTime> lastCheck) {
    lastTurn_ = ports_.clock.UtcNow();
    if (lastCheck) lastCheck_ = lastCheck;
    if (IsOn() && written_ && ports_.clock.GetTickCount() - *written_ < kEach) return;
    const std::string problem = Problem();
    if (problem != std::exchange(toldProblem_, problem) && !problem.empty()) ports_.status.setStatusMSG("Figures: " + problem);
}

// Writes the figures if they are on, and returns what is wrong with them.
std::string PublishedFigures::Problem() {
    const std::string* value = ports_.settings.Find("Figures");
    if (value == nullptr || value->empty() || *value == "False") return "";
    if (!IsOn()) return "'" + *value + "' is not \"True\" or \"False\".";
    written_ = ports_.clock.GetTickCount();  // what fails is tried again in a minute, too
    try {
        Write(*OpenDatabase(ports_.store, dir_));
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

}  // namespace korvane
