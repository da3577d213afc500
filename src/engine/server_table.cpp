#include "engine/server_table.h"

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

// "IMAP" with the port of HTTPS and "GET / HTTPS/1.0" are odd, but existing entries use them, so they stay.
constexpr ServerType kServerTypes[] = {
    {"HTTP", "http://", "80", "GET / HTTP/1.0", ""},
    {"HTTPS", "https://", "443", "GET / HTTPS/1.0", ""},
    {"PING", "ping", "ICMP", "", "1000"},
    {"FTP", "ftp://", "21", "", "220,QUIT,221"},
    {"CITRIX", "citrix", "1494", "", ""},
    {"POP3", "pop3", "110", "", "+OK,QUIT,+OK"},
    {"POP2", "pop2", "109", "", "+OK"},
    {"POP", "pop", "109", "", "+OK"},
    {"SMTP", "smtp", "25", "", "220,QUIT,221"},
    {"TELNET", "telnet", "23", "", ""},
    {"FINGER", "finger", "79", "", ""},
    {"SNMP", "snmp", "161", "", ""},
    {"SNPP", "snpp", "444", "", ""},
    {"DNS", "dns", "53", "", ""},
    {"IMAP", "imap", "443", "", ""},
    {"IMAP4", "imap4", "143", "", ""},
    {"NNTP", "nntp", "119", "", ""},
    {"ECHO", "echo", "7", "", ""},
    {"GOPHER", "gopher", "70", "", ""},
    {"Other Port", "custom", "", "", ""},
};

Value ColumnOr(Recordset& rs, std::string_view column, int otherwise) {
    const Value value = rs.Fields(column).Value();
    return value.IsEmpty() ? Value(otherwise) : value;
}

}  // namespace

std::span<const ServerType> ServerTypeTable() {
    return kServerTypes;
}

CheckKind CheckKindOf(std::string_view strType) {
    const std::string type = ToLower(strType);
    if (type == "http") return CheckKind::Http;
    if (type == "https") return CheckKind::Https;
    if (type == "ping") return CheckKind::Ping;
    return CheckKind::Tcp;
}

std::string TextOrEmpty(Recordset& rs, const char* column) {
    std::string text;
    IgnoreErrors([&] { text = ColumnText(rs, column); });
    return text;
}

bool IsSet(Recordset& rs, const char* column, bool otherwise) {
    bool set = otherwise;
    IgnoreErrors([&] { set = rs.Fields(column).Value().Bool(); });
    return set;
}

Value TriesOf(Recordset& rs) {
    return ColumnOr(rs, "nTries", kNewTries);
}

Value TimeoutOf(Recordset& rs) {
    return ColumnOr(rs, "nTimeout", static_cast<int>(kNewTimeout.count()));
}

namespace query {

std::string DueBy(DateTime when) {
    return "SELECT  * from servers where dtNextCheck <= #" + QueryDate(when) + "# order by dtNextCheck ";
}

std::string FirstDueBy(DateTime when) {
    return DueBy(when) + "limit 100";
}

std::string IsAnyDueBy(DateTime when) {
    return "SELECT ID FROM servers WHERE dtNextCheck <= #" + QueryDate(when) + "# LIMIT 1";
}

std::string MonitoredAndDueBy(DateTime when) {
    return "SELECT * from servers where bIsMonitoring and strCurStatus <> 'Down-Time'  and strCurStatus <> 'Inactive'  "
           "and dtNextCheck <= #" +
           QueryDate(when) + "# ";
}

std::string FailTextsOf(std::string_view id) {
    return "SELECT * from ResponseFailText where idParent =" + std::string(id);
}

std::string ById(std::int64_t id) {
    return "SELECT * from servers where ID = " + std::to_string(id);
}

}  // namespace query
}  // namespace korvane
