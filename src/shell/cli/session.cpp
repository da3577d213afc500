#include "shell/cli/session.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QJsonDocument>
#include <algorithm>
#include <functional>
#include <optional>
#include <ostream>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/cli/help.h"
#include "shell/list/entry_csv_columns.h"
#include "shell/list/list_filter.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kNames = "SELECT ID, strDesc, strAddress_IP FROM Servers ORDER BY ID";
constexpr const char* kGap = "  ";

std::string Characters(std::string_view text, std::size_t width) {
    std::size_t count = 0;
    for (const char byte : text)
        count += (static_cast<unsigned char>(byte) & 0xC0) != 0x80 ? 1 : 0;
    return std::string(text) + std::string(count < width ? width - count : 0, ' ');
}

std::size_t WidthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string OwnerOf(const std::string& home) {
    struct stat status {};
    return ::stat(home.c_str(), &status) == 0 && status.st_uid != ::geteuid() ? std::to_string(status.st_uid) : "";
}

/// Returns the value with each text in it changed.
QJsonValue WithTexts(const QJsonValue& value, const std::function<QString(const QString& text)>& change) {
    if (value.isString()) return change(value.toString());
    if (value.isArray()) {
        QJsonArray array;
        for (const QJsonValue each : value.toArray())
            array.append(WithTexts(each, change));
        return array;
    }
    if (!value.isObject()) return value;
    QJsonObject object = value.toObject();
    for (auto each = object.begin(); each != object.end(); ++each)
        each.value() = WithTexts(each.value(), change);
    return object;
}

}  // namespace

void CommandOperator::StatusLine(const std::string& /*time*/, const std::string& text) {
    if (shows) out_ << WithoutControls(text) << std::endl;
}

void CommandOperator::ShowMessage(const std::string& /*title*/, const std::string& text) {
    errors_ << "korvanecore: " << ReplaceAll(text, "\r\n", "\n") << std::endl;
}

bool CommandOperator::AskYesNo(const std::string& title, const std::string& text) {
    if (!agrees) ShowMessage(title, text);
    return agrees;
}

int RunCommandWords(const std::vector<std::string>& words, const CommandPlace& place) {
    std::optional<Session> session;
    const auto fails = [&](const std::string& why, int end) {
        place.errors << "korvanecore: " << WithoutControls(session ? session->Shown(why) : why) << std::endl;
        return end;
    };
    try {
        session.emplace(place, ReadWords(words));
        const Command& command = *session->Given().command;
        if (session->Given().Has("help")) {
            place.out << (command.word == "help" ? HelpText() : HelpOf(command));
            return kDone;
        }
        return command.run(*session);
    } catch (const WrongWords& error) {
        return fails(error.what(), kWrongWords);
    } catch (const std::exception& error) {
        return fails(error.what(), kNotDone);
    }
}

const Desk& Session::TheDesk() {
    if (run_ != nullptr) return run_->TheDesk();
    const std::string database = DatabasePath(Home());
    if (!place_.options.isShared && !place_.ports.files.Exists(database))
        throw Error(Home() + " is no home: it has no " + std::string(kDatabaseFile) +
                    ".\nName another with --home or KORVANE_HOME, or start korvanecore once without a command to make one.");
    run_ = std::make_unique<Run>(place_.ports, place_.options);
    run_->TheDesk().settings.LoadValues();
    run_->TheDesk().alertPath.Load();
    return run_->TheDesk();
}

const Desk& Session::DeskForChanges() {
    const Desk& desk = TheDesk();
    const std::string owner = OwnerOf(Home());
    if (!owner.empty())
        throw Error("The home " + Home() + " belongs to user " + owner +
                    ", and nothing was changed.\nRun this as that user: sudo -u '#" + owner + "' korvanecore ...");
    if (::faccessat(AT_FDCWD, Home().c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        throw Error("The home " + Home() + " cannot be written, and nothing was changed.");
    return desk;
}

void Session::Notify() {
    if (Runs()) IgnoreErrors([&] { LeaveRequest(place_.ports.files, Home(), "look"); });
}

std::vector<Session::Entry> Session::AllThatFit(const std::string& name, std::vector<std::string>& others) {
    const Desk& desk = TheDesk();
    const auto connection = OpenDatabase(desk.store, desk.dir);
    std::vector<Entry> fitting;
    const std::string wanted = FoldCase(name);
    for (const auto row = OpenRows(desk.store, *connection, kNames, CursorType::Static); !row->Eof(); row->MoveNext()) {
        Entry each{ColumnText(*row, "ID"), ColumnText(*row, "strDesc"), ColumnText(*row, "strAddress_IP")};
        if (each.id == name) return {each};
        if (FoldCase(each.name) == wanted || FoldCase(each.address) == wanted) fitting.push_back(each);
        others.insert(others.end(), {each.name, each.address});
    }
    std::erase(others, "");
    return fitting;
}

Session::Entry Session::Find(const std::string& name) {
    std::vector<std::string> others;
    const std::vector<Entry> fitting = AllThatFit(name, others);
    if (fitting.empty())
        throw Error("There is no entry '" + name + "'." + Nearest(name, others) + "\n'korvanecore list' shows them.");
    if (fitting.size() == 1) return fitting.front();
    std::string text =
        "'" + name + "' fits " + std::to_string(fitting.size()) + " entries, and nothing was done. Name one by its id:";
    for (const Entry& each : fitting)
        text += "\n  " + each.id + "  " + each.name + "  " + each.address;
    throw Error(text);
}

std::vector<std::string> Session::FindAll() {
    std::vector<std::string> ids;
    for (const std::string& name : words_.arguments)
        if (const std::string id = Find(name).id; std::ranges::find(ids, id) == ids.end()) ids.push_back(id);
    return ids;
}

bool Session::Hides() const {
    return run_ != nullptr && !words_.Has("show-passwords") && run_->TheDesk().hiddenPasswords.IsOn();
}

std::string Session::Shown(const std::string& text) const {
    return Hides() ? run_->TheDesk().hiddenPasswords.Shown(text) : text;
}

void Session::Say(const std::string& text) const {
    if (!Quiet()) place_.out << WithoutControls(Shown(text)) << "\n";
}

void Session::PrintTable(std::vector<std::vector<std::string>> rows) const {
    for (auto& row : rows)
        std::ranges::transform(row, row.begin(), [this](const std::string& cell) { return Shown(cell); });
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], WidthOf(row[i]));
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += (i == 0 ? "" : kGap) + Characters(OneLine(row[i], row[i].size()), i + 1 == row.size() ? 0 : widths[i]);
        line = line.substr(0, line.find_last_not_of(' ') + 1);
        place_.out << (place_.width == 0 ? line : Left(line, place_.width)) << "\n";
    }
}

void Session::PrintJson(const QJsonObject& object) const {
    const auto shown = [this](const QString& text) { return ForJson(Shown(text.toStdString())); };
    place_.out
        << QJsonDocument(Hides() ? WithTexts(object, shown).toObject() : object).toJson(QJsonDocument::Compact).toStdString()
        << "\n";
}

int Session::Done(const std::string& sentence, const std::vector<std::string>& ids) const {
    if (!Json()) {
        Say(sentence);
        return kDone;
    }
    PrintJson({{"done", ForJson(sentence)}, {"ids", ForJson(ids)}});
    return kDone;
}

QString ForJson(const std::string& text) {
    return QString::fromStdString(text);
}

QJsonArray ForJson(const std::vector<std::string>& texts) {
    QJsonArray array;
    for (const std::string& text : texts)
        array.append(ForJson(text));
    return array;
}

}  // namespace korvane
