// The notification addresses of everything in one place: those that new entries begin with, those of the four resource monitors,
// and those of the server entries, one at a time or all at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "notify/global_email.h"
#include "platform/connection.h"
#include "shell/run/desk.h"

namespace korvane {

/// What the window has in its boxes, as typed.
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

enum class ResourceMonitor { CPU, Disk, Memory, Services };

/// The addresses in the settings of the resource monitors.
class ResourceEmails {
public:
    virtual ~ResourceEmails() = default;
    /// From its settings file; blank when there is none.
    virtual std::string getEmail(ResourceMonitor monitor) = 0;
    /// Into its settings file, the rest of which stays.
    virtual void setEmail(ResourceMonitor monitor, const std::string& email) = 0;
    /// The four monitors read their settings files again.
    virtual void LoadData() = 0;
};

/// Each routine works on the database by itself: nothing is open between two of them. Throws nothing; errors of the store are
/// logged and returned, blank when all went well.
class GlobalEmailWalk {
public:
    /// `monitors` must outlive this.
    GlobalEmailWalk(const Desk& desk, ResourceEmails& monitors);

    /// Once, before everything else: the global values and the addresses of the monitors. Stands on the first entry then.
    std::string Open(GlobalEmailFields& fields);

    /// Writes both to their files and says that it is done.
    void SaveGlobalValues(const GlobalEmailFields& fields);

    // Inside the entries: there is nothing before the first and behind the last.
    void MoveFirst() { position_ = 0; }
    void MovePrevious();
    void MoveNext();
    void MoveLast();

    /// Fills in the addresses of the current entry; they and the title are blank when there is none.
    std::string ReadServer(GlobalEmailFields& fields);

    /// Whether the entry that was read or updated last was there.
    bool HasServer() const { return hasServer_; }
    /// The name of the entry that was read last.
    const std::string& Title() const { return title_; }
    /// "Server: 1 of 20".
    std::string Position() const;

    /// Writes its four fields to the current entry. A message says so when there is none.
    std::string UpdateServer(const GlobalEmailFields& fields);

    /// Asks whether all entries are to be updated, and goes on.
    void AskUpdateAll(std::function<void()> yes) const;

    /// Writes the global values to all entries, or to none when that fails. `shown` hears the position at each of them.
    /// Stands on the last entry then.
    std::string UpdateAll(const GlobalEmailFields& fields, const std::function<void(const std::string& position)>& shown);

private:
    std::string OnDatabase(std::string_view routine, const std::function<void(Connection& connection)>& work);
    std::string OnCurrentServer(std::string_view routine, const std::function<void(Recordset& row)>& work);

    const Desk desk_;
    ResourceEmails& monitors_;
    std::vector<std::int64_t> ids_;  ///< of the entries, in their order
    std::size_t position_ = 0;       ///< of the current one
    std::string title_;
    bool hasServer_ = false;
};

/// What the status line says on an input of the window, by the name of the control; blank for one without help.
std::string_view HelpOnGlobalEmailInput(std::string_view control);

}  // namespace korvane
