// The commands for the settings and the mail servers.
#include <algorithm>
#include <ostream>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "shell/cli/session.h"
#include "shell/options/options_commands.h"
#include "shell/options/setting_change.h"
#include "shell/run/requests.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kTakesAtMost = 10s;

SettingInfo FindSetting(const std::string& key) {
    std::vector<std::string> keys;
    for (const SettingInfo& each : AllSettings()) {
        if (EqualsNoCase(each.key, key)) return each;
        keys.push_back(each.key);
    }
    throw Error("There is no setting '" + key + "'." + Nearest(key, keys) + "\n'korvanecore settings list' shows them.");
}

std::string ValueOf(Session& session, const SettingInfo& setting) {
    const std::string* value = session.TheDesk().collection.Find(setting.key);
    const bool hides = setting.isPassword && !session.Given().Has("show-passwords");
    return value == nullptr ? "" : hides && !value->empty() ? kHidden : *value;
}

int List(Session& session, const std::vector<SettingInfo>& settings) {
    QJsonObject object;
    std::vector<std::vector<std::string>> table;
    for (const SettingInfo& each : settings) {
        object.insert(ForJson(each.key), ForJson(ValueOf(session, each)));
        table.push_back({each.key, ValueOf(session, each)});
        if (!session.Quiet()) table.back().push_back(each.meaning);
    }
    session.Json() ? session.PrintJson(object) : session.PrintTable(table);
    return kDone;
}

/// Waits until the running monitor has done it.
void AskMonitor(Session& session, const std::string& key, const std::string& value) {
    const Desk& desk = session.TheDesk();
    const std::string request = LeaveRequest(desk.files, desk.dir, session.Place().number, key, value);
    const auto begin = desk.clock.GetTickCount();
    while (desk.files.Exists(request)) {
        desk.events.Sleep(20ms);
        if (desk.clock.GetTickCount() - begin < kTakesAtMost) continue;
        IgnoreErrors([&] { desk.files.Remove(request); });
        throw Error(
            "The running monitor has not taken the change within 10 s, and nothing was changed.\n"
            "It may be of an older version: end it, and set " +
            key + " again.");
    }
    if (desk.settingsFile.Read(kSettingsSection, key, "") != Trim(value))
        throw Error("The running monitor did not store " + key + "; its log says why.");
}

int SetOne(Session& session, const std::string& key, const std::string& value) {
    const Desk& desk = session.DeskForChanges();
    const SettingInfo setting = FindSetting(key);
    const std::string stored = StoredSetting(desk, setting.key, value);
    if (!session.Runs()) WriteSetting(desk, setting.key, stored);
    if (session.Runs()) AskMonitor(session, setting.key, stored);  // it may just have started, with the old value
    return session.Done(setting.key + (stored.empty() ? " is blank." : " is " + (setting.isPassword ? "set." : stored + ".")),
                        {});
}

}  // namespace

int RunSettings(Session& session) {
    const auto& words = session.Given().arguments;
    const std::string act = words.empty() ? "list" : words.front();
    if (act == "list" && words.size() <= 1) return List(session, AllSettings());
    if (act == "get" && words.size() == 2) {
        const SettingInfo setting = FindSetting(words[1]);
        if (session.Json()) return List(session, {setting});
        session.Place().out << ValueOf(session, setting) << "\n";
        return kDone;
    }
    if (act == "set" && words.size() == 3) return SetOne(session, words[1], words[2]);
    if (act == "set" && words.size() == 2 && Holds(words[1], "="))
        return SetOne(session, words[1].substr(0, words[1].find('=')), words[1].substr(words[1].find('=') + 1));
    const bool isKnown = act == "list" || act == "get" || act == "set";
    throw WrongWords((isKnown ? "something is missing or too much after '" + act + "'."
                              : "'" + act + "' is not understood." + Nearest(act, {"list", "get", "set"})) +
                     "\nUsage: korvanecore settings [list | get <key> | set <key> <value>]");
}

int RunTestMail(Session& session) {
    const Desk& desk = session.DeskForChanges();
    const std::string to = session.Given().arguments.front();
    session.Place().person.shows = !session.Quiet();
    session.Place().person.agrees = true;
    desk.collection.setKvSettingsColValue("HidePasswords", "True");  // in the conversation that is shown; nothing is saved
    bool done = false;
    std::string last;
    const auto ask = [&, isFirst = true](const std::string&, const std::string&, const auto& answered) mutable {
        answered(std::exchange(isFirst, false) ? to : session.Given().Option("from", to));
    };
    const auto tell = [&](const std::string& text) { last = text; };
    TestMailSettings(desk, OptionsFromSettings(desk.collection), ask, tell, [&] { done = true; });
    while (!done)
        desk.events.WaitForEvent(1s);
    session.Say(last);
    if (Holds(last, "FAILED"))
        throw Error("No mail was sent to " + to + ".\n'korvanecore settings list' shows the mail servers.");
    return kDone;
}

}  // namespace korvane
