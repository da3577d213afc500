// What can be done to one or more entries at once without their editor. Each act changes all of the entries or, when the store
// refuses one of them, none; entries that no longer exist are skipped.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/connection.h"
#include "shell/entry/entry_inputs.h"
#include "shell/run/desk.h"

namespace korvane {

/// The program holds no more: the operator can add one as long as there are fewer. On a shared list the setting `MaxEntries` may
/// raise it, up to 100,000.
int MostEntries(const Desk& desk);
/// The same as messages name it.
std::string MostEntriesText(const Desk& desk);

/// An input of the editor and the text for it.
using EntryChange = std::pair<std::string EntryFields::*, std::string>;

class EntryActs {
public:
    using Ids = std::vector<std::string>;  ///< decimal

    explicit EntryActs(const Desk& desk) : desk_(desk) {}

    /// Returns the present texts of these inputs, of each entry that exists. Throws Error.
    std::vector<EntryFields> Read(const Ids& ids, const std::vector<std::string EntryFields::*>& inputs);

    // These return a sentence on the outcome, and throw Error when nothing was changed.

    /// Makes them due at once, before all others. Entries that are not monitored stay as they are.
    std::string CheckNow(const Ids& ids);
    std::string Pause(const Ids& ids);
    /// They begin as "UP", as when the editor's mark is set, and are due at once: a paused entry may be due hours later.
    std::string Resume(const Ids& ids);
    /// Stores the texts as the editor does. Throws Error for a text that the editor would not store.
    std::string Set(const Ids& ids, const std::vector<EntryChange>& changes);

    /// Removes them with everything that belongs to them. The maintenance reports errors.
    void Delete(const Ids& ids);

    /// Copies the entry with reset counters and without its rules. Returns the new id; empty if there is no such entry.
    std::string Copy(const std::string& id) { return CopyRow(id, false); }
    /// Copies it with its rules, as "Copy of ...".
    std::string Duplicate(const std::string& id) { return CopyRow(id, true); }

private:
    std::size_t ForEach(const Ids& ids, const std::function<bool(Recordset& row)>& change);
    std::size_t SetMonitoring(const Ids& ids, bool on);
    DateTime BeforeAllOthers();
    std::string CopyRow(const std::string& id, bool withRules);
    void CopyRules(Connection& connection, const std::string& from, const std::string& to);

    Desk desk_;
};

/// Returns "1 entry" or "3 entries".
std::string CountedEntries(std::size_t count);

/// Returns the address at which a browser shows what an entry of this type watches; empty for a type that is no web page.
std::string PageOfEntry(const std::string& strType, const std::string& strAddress_IP, const std::string& strPort);

}  // namespace korvane
