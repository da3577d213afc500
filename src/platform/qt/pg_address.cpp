#include "platform/qt/pg_address.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kSchemes[] = {"postgresql://", "postgres://"};

/// The settings file cuts a value there.
constexpr std::size_t kMostOfAddress = 249;

/// One thread does everything, so a server that is gone must be noticed soon. The times are in seconds, but for the last one.
constexpr std::pair<const char*, const char*> kOwnParameters[] = {
    {"application_name", "korvane"}, {"connect_timeout", "5"},  {"keepalives_idle", "10"},
    {"keepalives_interval", "5"},    {"keepalives_count", "3"}, {"tcp_user_timeout", "10000"},
};

[[noreturn]] void Refuse(const std::string& why) {
    throw Error("The setting Database is no address of a database server: " + why);
}

[[noreturn]] void RefusePassword() {
    throw Error(
        "The setting Database must not contain a password. It belongs into the file ~/.pgpass of the user that runs the program "
        "(host:port:database:user:password, mode 600), or into the environment variable PGPASSWORD.");
}

std::string Decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        unsigned byte = 0;
        const char* const end = text.data() + std::min(i + 3, text.size());
        if (std::from_chars(text.data() + i + 1, end, byte, 16).ptr != text.data() + i + 3 || byte == 0)
            Refuse("a '%' in it is not followed by two hexadecimal digits.");
        decoded += static_cast<char>(byte);
        i += 2;
    }
    // The driver would end the value there.
    if (decoded.find(';') != std::string::npos) Refuse("it contains a semicolon.");
    return decoded;
}

std::string TakeUntil(std::string_view& text, std::string_view ends) {
    const std::size_t end = std::min(text.find_first_of(ends), text.size());
    std::string taken(text.substr(0, end));
    text.remove_prefix(end);
    return taken;
}

bool IsPort(std::string_view text) {
    unsigned port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc() && end == text.data() + text.size() && port >= 1 && port <= 65535;
}

// "host:port"; an IPv6 address stands between brackets.
void ReadHost(const std::string& text, PgAddress& address, bool& hasPort) {
    const std::size_t colon = text.find(':', text.starts_with('[') ? std::min(text.find(']'), text.size()) : 0);
    std::string host = text.substr(0, colon);
    const std::string port = colon == std::string::npos ? "" : text.substr(colon + 1);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    if (!port.empty() && !IsPort(port)) Refuse("a port in it is not a number from 1 to 65535.");
    hasPort = hasPort || !port.empty();
    address.hosts += (address.hosts.empty() ? "" : ",") + Decoded(host);
    address.ports += (address.ports.empty() ? "" : ",") + (port.empty() ? "5432" : port);
}

void ReadAuthority(std::string authority, PgAddress& address) {
    if (const std::size_t at = authority.rfind('@'); at != std::string::npos) {
        if (authority.find(':') < at) RefusePassword();
        address.user = Decoded(authority.substr(0, at));
        authority.erase(0, at + 1);
    }
    bool hasPort = false;
    if (!authority.empty())
        for (const std::string& host : Split(authority, ','))
            ReadHost(host, address, hasPort);
    if (!hasPort) address.ports.clear();
}

void ReadParameter(const std::string& text, PgAddress& address) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) Refuse("what follows its '?' is not of the form name=value&name=value.");
    const std::string name = Decoded(text.substr(0, equals)), value = Decoded(text.substr(equals + 1));
    if (EqualsNoCase(name, "password") || EqualsNoCase(name, "sslpassword")) RefusePassword();
    if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") != std::string::npos) Refuse("a parameter's name is not one.");
    const std::pair<std::string_view, std::string*> parts[] = {
        {"host", &address.hosts}, {"port", &address.ports}, {"user", &address.user}, {"dbname", &address.database}};
    const auto part = std::find_if(std::begin(parts), std::end(parts), [&](const auto& each) { return each.first == name; });
    (part == std::end(parts) ? address.parameters[name] : *part->second) = value;
}

std::string Quoted(const std::string& value) {
    return '\'' + ReplaceAll(ReplaceAll(value, "\\", "\\\\"), "'", "\\'") + '\'';
}

}  // namespace

std::string PgAddress::Shown() const {
    return "'" + database + "'" + (hosts.empty() ? "" : " on " + hosts);
}

std::string PgAddress::ConnectOptions() const {
    std::string options = ports.empty() ? "" : "port=" + Quoted(ports);
    for (const auto& [name, value] : parameters)
        options += (options.empty() ? "" : " ") + name + "=" + Quoted(value);
    return options;
}

PgAddress ParsePgAddress(const std::string& text) {
    std::string_view rest = text;
    const auto scheme = std::find_if(std::begin(kSchemes), std::end(kSchemes), [&](auto each) { return rest.starts_with(each); });
    if (scheme == std::end(kSchemes)) Refuse("it does not begin with postgresql://");
    if (text.size() > kMostOfAddress)
        Refuse("it is longer than 249 characters. The client library's service file can hold a part of it.");
    if (std::any_of(text.begin(), text.end(), IsControl)) Refuse("it contains a control character.");
    rest.remove_prefix(scheme->size());
    PgAddress address;
    ReadAuthority(TakeUntil(rest, "/?"), address);
    if (rest.starts_with('/')) address.database = Decoded(TakeUntil(rest, "?").substr(1));
    if (rest.size() > 1)
        for (const std::string& parameter : Split(rest.substr(1), '&'))
            ReadParameter(parameter, address);
    if (address.database.empty()) Refuse("it names no database.");
    for (const auto& [name, value] : kOwnParameters)
        address.parameters.try_emplace(name, value);
    // After a failover the other host takes the changes.
    if (address.hosts.find(',') != std::string::npos) address.parameters.try_emplace("target_session_attrs", "read-write");
    return address;
}

}  // namespace korvane
