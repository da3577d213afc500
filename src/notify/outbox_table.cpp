#include "notify/outbox_table.h"

#include "base/ignore_errors.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kCreateOutbox =
    "CREATE TABLE IF NOT EXISTS MailOutbox (ID INTEGER PRIMARY KEY AUTOINCREMENT, IDParent INTEGER, strEvent TEXT, nOutage "
    "INTEGER, strEmailFrom TEXT, strEmailList TEXT, strEmailLeft TEXT, strSubject TEXT, strBody TEXT, strMessageID TEXT, "
    "dtCreated TEXT, nTries INTEGER, dtNextTry TEXT, strState TEXT, dtState TEXT, strReceipt TEXT, strLastError TEXT)";
constexpr std::string_view kNoOutboxRow = "SELECT * FROM MailOutbox WHERE ID = -1";
constexpr std::string_view kWaitingMails =
    "SELECT ID, IDParent, strEvent, nOutage, strEmailLeft, dtCreated, strReceipt FROM MailOutbox WHERE strState = 'waiting' "
    "ORDER BY ID";
constexpr std::string_view kLastTaken =
    "SELECT ID, strReceipt, dtState FROM MailOutbox WHERE strReceipt <> '' ORDER BY dtState DESC, ID DESC LIMIT 1";

constexpr std::string_view kAmongTheLast = " AND ID > (SELECT max(ID) FROM MailOutbox) - 1000 ORDER BY ID DESC LIMIT 5";

constexpr std::string_view kWaitingState = "waiting";
constexpr std::string_view kSentState = "sent";
constexpr std::string_view kGivenUpState = "given up";

constexpr std::string_view kEventWords[] = {"failure", "recovery", "other"};

std::string RowOf(std::int64_t id) {
    return "SELECT * FROM MailOutbox WHERE ID = " + std::to_string(id);
}

MailEvent EventOf(const std::string& word) {
    for (const MailEvent event : {MailEvent::Failure, MailEvent::Recovery})
        if (word == kEventWords[static_cast<int>(event)]) return event;
    return MailEvent::Other;
}

std::string Joined(const std::vector<std::string>& recipients) {
    std::string list;
    for (const std::string& recipient : recipients)
        list += (list.empty() ? "" : ";") + recipient;
    return list;
}

std::vector<std::string> Recipients(const std::string& list) {
    std::vector<std::string> recipients;
    for (const std::string& part : Split(list, ';'))
        if (std::string recipient = Trim(WithoutLineEnds(part)); !recipient.empty()) recipients.push_back(std::move(recipient));
    return recipients;
}

std::string CellText(Recordset& rs, std::string_view column) {
    std::string text;
    IgnoreErrors([&] { text = rs.Fields(column).Value().Text(); });
    return text;
}

std::int64_t CellNumber(Recordset& rs, std::string_view column) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = rs.Fields(column).Value().Int64(); });
    return number;
}

OutboxMail HeadOf(Recordset& rs) {
    OutboxMail mail;
    mail.idEntry = CellNumber(rs, "IDParent");
    mail.event = EventOf(CellText(rs, "strEvent"));
    mail.nOutage = CellNumber(rs, "nOutage");
    mail.recipients = Recipients(CellText(rs, "strEmailLeft"));
    mail.created = DateTime::FromStored(CellText(rs, "dtCreated")).value_or(DateTime::Last());
    mail.untouched = CellText(rs, "strReceipt").empty();
    return mail;
}

}  // namespace

std::vector<std::string> OutboxTable::Statements() {
    return {std::string(kCreateOutbox)};
}

bool OutboxTable::Exists(Connection& conn) {
    return conn.HasTable("MailOutbox");
}

std::int64_t OutboxTable::Add(Connection& conn, const OutboxMail& mail) {
    if (!Exists(conn)) conn.Execute(kCreateOutbox);
    const auto rs = OpenRows(store_, conn, kNoOutboxRow);
    rs->AddNew();
    rs->Fields("IDParent") = mail.idEntry;
    rs->Fields("strEvent") = kEventWords[static_cast<int>(mail.event)];
    rs->Fields("nOutage") = mail.nOutage;
    rs->Fields("strEmailFrom") = mail.mail.strFrom;
    rs->Fields("strEmailList") = Joined(mail.recipients);
    rs->Fields("strEmailLeft") = Joined(mail.recipients);
    rs->Fields("strSubject") = mail.mail.strSubject;
    rs->Fields("strBody") = mail.mail.strBody;
    rs->Fields("strMessageID") = mail.messageId;
    rs->Fields("dtCreated") = mail.created.Stored();
    rs->Fields("nTries") = 0;
    rs->Fields("dtNextTry") = mail.created.Stored();
    rs->Fields("strState") = kWaitingState;
    rs->Fields("strReceipt") = "";
    rs->Update();
    return rs->Fields("ID").Value().Int64();
}

std::int64_t OutboxTable::Add(const OutboxMail& mail) {
    const auto conn = OpenDatabase(store_, dir_);
    return Add(*conn, mail);
}

void OutboxTable::Rewrite(Connection& conn, std::int64_t id, const Notification& mail) {
    const auto rs = OpenRows(store_, conn, RowOf(id));
    rs->Fields("strEvent") = kEventWords[static_cast<int>(MailEvent::Other)];
    rs->Fields("strSubject") = mail.strSubject;
    rs->Fields("strBody") = mail.strBody;
    rs->Update();
}

std::optional<OutboxMail> OutboxTable::Read(std::int64_t id) {
    const auto conn = OpenDatabase(store_, dir_);
    const auto rs = OpenRows(store_, *conn, RowOf(id), CursorType::Static);
    if (rs->Eof() || CellText(*rs, "strState") != kWaitingState) return std::nullopt;
    OutboxMail mail = HeadOf(*rs);
    if (mail.recipients.empty()) return std::nullopt;
    const std::vector<std::string> all = Recipients(CellText(*rs, "strEmailList"));
    mail.mail.strTo1 = all.empty() ? mail.recipients.front() : all.front();
    mail.mail.strFrom = CellText(*rs, "strEmailFrom");
    mail.mail.strSubject = CellText(*rs, "strSubject");
    mail.mail.strBody = CellText(*rs, "strBody");
    // The name after the "@" was the machine's; without a usable one each try would look like another mail.
    mail.messageId = Trim(WithoutLineEnds(CellText(*rs, "strMessageID")));
    if (mail.messageId.empty()) mail.messageId = "<outbox." + std::to_string(id) + "@korvane>";
    return mail;
}

template <class Change>
void OutboxTable::ChangeRow(std::int64_t id, Change change) {
    const auto conn = OpenDatabase(store_, dir_);
    const auto rs = OpenRows(store_, *conn, RowOf(id));
    if (rs->Eof()) return;
    change(*rs);
    rs->Update();
}

// A text of megabytes need not stay when everybody has it.
void OutboxTable::NoteTaken(std::int64_t id, const std::vector<std::string>& left, const std::string& receipt, DateTime now) {
    ChangeRow(id, [&](Recordset& rs) {
        rs.Fields("strEmailLeft") = Joined(left);
        rs.Fields("strReceipt") = receipt;
        rs.Fields("dtState") = now.Stored();
        if (!left.empty()) return;
        rs.Fields("strState") = kSentState;
        rs.Fields("strBody") = "";
    });
}

void OutboxTable::NoteFailure(std::int64_t id, int tries, DateTime nextTry, const std::string& reason) {
    ChangeRow(id, [&](Recordset& rs) {
        rs.Fields("nTries") = tries;
        rs.Fields("dtNextTry") = nextTry.Stored();
        rs.Fields("strLastError") = reason;
    });
}

void OutboxTable::NoteGivenUp(std::int64_t id, DateTime now) {
    ChangeRow(id, [&](Recordset& rs) {
        rs.Fields("strState") = kGivenUpState;
        rs.Fields("dtState") = now.Stored();
    });
}

OutboxTable::Contents OutboxTable::Look() {
    Contents contents;
    const auto conn = OpenDatabase(store_, dir_);
    if (!Exists(*conn)) return contents;
    const auto rs = OpenRows(store_, *conn, kWaitingMails, CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext())
        contents.waiting.push_back({CellNumber(*rs, "ID"), HeadOf(*rs)});
    const auto last = OpenRows(store_, *conn, kLastTaken, CursorType::Static);
    if (last->Eof()) return contents;
    contents.lastReceipt = CellText(*last, "strReceipt");
    contents.lastTaken = DateTime::FromStored(CellText(*last, "dtState"));
    return contents;
}

std::vector<OutboxTable::Receipt> OutboxTable::MailsOf(Connection& conn, std::int64_t idEntry) {
    std::vector<Receipt> mails;
    if (!Exists(conn)) return mails;
    const auto rs =
        OpenRows(store_, conn,
                 "SELECT ID, strEvent, dtCreated, strEmailList, strEmailLeft, strState, strReceipt, strLastError FROM "
                 "MailOutbox WHERE IDParent = " +
                     std::to_string(idEntry) + std::string(kAmongTheLast),
                 CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext()) {
        const auto text = [&](const char* column) { return CellText(*rs, column); };
        mails.push_back({EventOf(text("strEvent")), DateTime::FromStored(text("dtCreated")), text("strEmailList"),
                         text("strEmailLeft"), text("strState"), text("strReceipt"), text("strLastError")});
    }
    return mails;
}

void OutboxTable::Forget(DateTime before) {
    const auto conn = OpenDatabase(store_, dir_);
    if (!Exists(*conn)) return;
    const auto rs =
        OpenRows(store_, *conn, "SELECT ID FROM MailOutbox WHERE strState <> 'waiting' AND dtState < '" + before.Stored() + "'");
    for (; !rs->Eof(); rs->MoveNext())
        rs->Delete();
}

}  // namespace korvane
