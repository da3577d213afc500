// The command that checks an entry, or an address that is none, with the checkers of the editor's test.
#include <ostream>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "shell/cli/entry_plan.h"
#include "shell/cli/print_phases.h"
#include "shell/cli/session.h"
#include "shell/entry/entry_test.h"
#include "shell/list/entry_acts.h"
#include "shell/list/entry_csv_columns.h"
#include "shell/list/entry_detail_text.h"

namespace korvane {
namespace {

int CountIt(Session& session, const std::vector<Session::Entry>& entries) {
    if (entries.empty()) throw Error("Only an entry can be counted. 'korvanecore list' shows them.");
    const Desk& desk = session.DeskForChanges();
    if (!session.Runs()) throw Error("No monitor runs with this home, so nothing would be checked. Start korvanecore first.");
    const std::string id = session.Find(session.Given().arguments.front()).id;
    const std::string sentence = EntryActs(desk).CheckNow({id});
    session.Notify();
    return session.Done(sentence, {id});
}

/// What is checked, and the entry whose failure texts count; empty for an address.
struct Target {
    EntryFields fields;
    std::string id;
};

Target TargetOf(Session& session, const std::vector<Session::Entry>& entries) {
    const std::string& name = session.Given().arguments.front();
    if (entries.empty()) return {PlanOfOne(session, "", name).rows.front().fields, ""};
    const std::string id = session.Find(name).id;
    if (!session.Given().columns.empty()) return {PlanOfOne(session, id, "").rows.front().fields, id};
    return {ReadAllEntries(session.TheDesk()).at(id), id};
}

}  // namespace

int RunCheck(Session& session) {
    std::vector<std::string> others;
    const auto entries = session.AllThatFit(session.Given().arguments.front(), others);
    if (session.Given().Has("count")) return CountIt(session, entries);
    const Target target = TargetOf(session, entries);
    const Desk& desk = session.TheDesk();
    desk.http.LoadInets(session.Place().ports.newInet);
    const auto begin = desk.clock.GetTickCount();
    const auto result = RunEntryTest(desk, target.fields);
    if (!result) return kFails;
    const auto took = static_cast<double>((desk.clock.GetTickCount() - begin).count());
    const TestVerdict verdict = JudgeEntryTest(target.fields, *result, [&] {
        return target.id.empty() ? UrlFailure{} : FindUrlFailure(desk, result->response, target.id);
    });
    const std::string advice = verdict.failed ? PortAdvice(target.fields) : "";
    const std::string says = TrimAll(verdict.failed ? verdict.text : verdict.text.substr(0, verdict.text.find("\r\n")));
    if (session.Json()) {
        session.PrintJson({{"good", !verdict.failed},
                           {"milliseconds", took},
                           {"phases", PhasesForJson(result->phases)},
                           {"says", ForJson(says)},
                           {"reason", ForJson(result->strReason)},
                           {"response", ForJson(Left(result->response, kMostStoredCharacters))}});
        return verdict.failed ? kFails : kDone;
    }
    session.Say(std::string(verdict.failed ? "FAILS" : "UP") + "  " + target.fields.strType + " " + target.fields.strAddress_IP +
                "  " + MillisecondsInWords(took));
    session.Say(WithoutControls(ReplaceAll(says, "\r\n", " ")));
    if (!advice.empty()) session.Say(WithoutControls(ReplaceAll(advice, "\r\n", " ")));
    for (const std::string& line : PrintPhases(result->phases, desk.clock.Now()))
        session.Say("  " + line);
    return verdict.failed ? kFails : kDone;
}

}  // namespace korvane
