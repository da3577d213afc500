// All notification addresses in one place: those that new entries start with, those of the four resource monitors, and those of
// the server entries, one at a time or all at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "notify/global_email.h"
#include "platform/connection.h"
#include "shell/entry/form_input.h"
#include "shell/options/resource_emails.h"
#include "shell/run/desk.h"

namespace korvane {

/// The texts in the window's boxes, as typed.
struct GlobalEmailFields {
    std::string strToList1;
    std::string strToList2;
    std::string strFrom;
    std::string strSubject;

    std::string strEmailCPU;
    std::string strEmailDisk;
    std::string strEmailMemory;
    std::string strEmailServices;

    std::string strEmailList1;
    std::string strEmailList2;
    std::string strEmailFrom;
    std::string strEmailText;
};

using GlobalEmailInput = FormInput<GlobalEmailFields>;

/// The inputs in three groups of four: the global values, the addresses of the monitors in the order of ResourceMonitor, and the
/// values of a server, in the order of the global ones. A global value has the column of the servers that it is given to.
std::span<const GlobalEmailInput> GlobalEmailInputs();

/// Each routine opens the database separately: nothing stays open between two of them. Throws nothing; store errors are logged
/// and returned, with an empty text for success.
class GlobalEmailWalk {
public:
    /// `monitors` must outlive this.
    GlobalEmailWalk(const Desk& desk, ResourceEmailFiles& monitors);

    /// Call it once, before everything else: reads the global values and the addresses of the monitors, and goes to the first
    /// entry.
    std::string Open(GlobalEmailFields& fields);

    /// Writes both to their files and reports that it is done.
    void SaveGlobalValues(const GlobalEmailFields& fields);

    // The moves stay within the entries.
    void MoveFirst() { position_ = 0; }
    void MovePrevious();
    void MoveNext();
    void MoveLast();

    /// Fills in the addresses of the current entry; if there is none, they and the title become empty.
    std::string ReadServer(GlobalEmailFields& fields);

    /// Returns whether the entry that was read or updated last existed.
    bool HasServer() const { return hasServer_; }
    /// The name of the entry that was read last.
    const std::string& Title() const { return title_; }
    /// "Server: 1 of 20".
    std::string Position() const;

    /// Writes its four fields to the current entry. Shows a message if there is none.
    std::string UpdateServer(const GlobalEmailFields& fields);

    /// Asks whether to update all entries, without waiting for the answer.
    void AskUpdateAll(std::function<void()> yes) const;

    /// Writes the global values to all entries, or to none if that fails. `shown` receives the position at each entry. Goes to
    /// the last entry.
    std::string UpdateAll(const GlobalEmailFields& fields, const std::function<void(const std::string& position)>& shown);

private:
    std::string OnDatabase(std::string_view routine, const std::function<void(Connection& connection)>& work);
    std::string OnCurrentServer(std::string_view routine, const std::function<void(Recordset& row)>& work);

    const Desk desk_;
    ResourceEmailFiles& monitors_;
    std::vector<std::int64_t> ids_;  ///< of the entries, in their order
    std::size_t position_ = 0;       ///< of the current one
    std::string title_;
    bool hasServer_ = false;
};

}  // namespace korvane
