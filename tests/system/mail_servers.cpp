#include "system/mail_servers.h"

#include <pwd.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace korvane::test {
namespace {

using namespace std::chrono_literals;

constexpr auto kDeliveryLimit = 20s;
constexpr auto kStartLimit = 20s;

std::string Script(const std::string& name) {
    return std::string(KORVANE_SOURCE_DIR) + "/tests/system/" + name;
}

// Servers of other users pass through on their way to what is theirs.
void LetThrough(const PrivateFolder& folder) {
    fs::permissions(folder.Path(), fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
}

std::vector<ArrivedMail> TakeMailsFrom(const std::string& folder) {
    FILE* output = popen(("/usr/bin/python3 '" + Script("read_mail.py") + "' '" + folder + "'").c_str(), "r");
    QByteArray json;
    for (int byte = fgetc(output); byte != EOF; byte = fgetc(output))
        json += static_cast<char>(byte);
    if (pclose(output) != 0) throw std::runtime_error("a mail could not be read");

    const auto text = [](const QJsonValue& value) { return value.toString().toStdString(); };
    std::vector<ArrivedMail> mails;
    for (const QJsonValue mail : QJsonDocument::fromJson(json).array()) {
        std::vector<MailPart> parts;
        for (const QJsonValue part : mail["parts"].toArray()) {
            parts.push_back({text(part["type"]), text(part["filename"]),
                             QByteArray::fromBase64(part["payload"].toString().toLatin1()).toStdString()});
        }
        mails.push_back({text(mail["trace"]), text(mail["headers"]), text(mail["sender"][0]), text(mail["sender"][1]),
                         static_cast<std::int64_t>(mail["date"].toDouble()), parts, text(mail["defects"])});
    }
    return mails;
}

}  // namespace

LoginServer::LoginServer(int relayPort) : server_(Prepare(relayPort), folder_, ports) {}

std::vector<std::string> LoginServer::Prepare(int relayPort) const {
    LetThrough(folder_);
    fs::create_directory(Mailboxes());
    Forget();
    folder_.Write("users", std::string(kUser) + ":{PLAIN}" + kPassword + "\n");
    // Postfix waits until a table is two seconds old, so it is made to look so.
    folder_.Write("after_login", "echo \"$IP OK\" >" + LastClient() + "\ntouch -d @0 " + LastClient() + "\nexec \"$@\"\n");
    folder_.Write("dovecot.conf", DovecotBasics(folder_, "pop3 submission") + DovecotListener("pop3", pop3) +
                                      DovecotListener("submission", submission) + R"(
submission_relay_host = 127.0.0.21
submission_relay_port = )" + std::to_string(relayPort) +
                                      R"(
auth_mechanisms = plain login cram-md5
auth_failure_delay = 0
passdb {
  driver = passwd-file
  args = )" + folder_.Path("users") +
                                      R"(
}
userdb {
  driver = static
  args = uid=)" + ServerUser() +
                                      " gid=" + ServerGroup() + " home=" + folder_.Path("home") + R"(
}
first_valid_uid = 1
first_valid_gid = 1
mail_location = maildir:~/empty
service anvil {
  unix_listener anvil-auth-penalty {
    mode = 0
  }
}
service auth {
  unix_listener )" + AuthSocket() + R"( {
    mode = 0666
  }
}
service pop3 {
  executable = pop3 after-login
}
service after-login {
  executable = script-login /bin/sh )" +
                                      folder_.Path("after_login") + R"(
  unix_listener after-login {
  }
}
)");
    return {"dovecot", "-F", "-c", folder_.Path("dovecot.conf")};
}

void LoginServer::Forget() const {
    folder_.Write("client", "");
    fs::last_write_time(LastClient(), fs::file_time_type::clock::now() - 1h);
}

// No names are looked up anywhere, headers stay as they came, and nobody waits as a punishment.
constexpr const char* kPostfixConfiguration = R"(
compatibility_level = 3.6
maillog_file = /dev/stdout
myhostname = mail.korvane.example
mydestination =
alias_maps =
inet_protocols = ipv4
inet_interfaces = loopback-only
disable_dns_lookups = yes
smtpd_peername_lookup = no
local_header_rewrite_clients =
mynetworks =
virtual_mailbox_domains = korvane.example
virtual_mailbox_maps = inline:{operator@korvane.example=box/, second@korvane.example=box/, person@elsewhere.example=box/}
default_transport = virtual
smtpd_error_sleep_time = 0
smtpd_sasl_type = dovecot
smtpd_relay_restrictions = permit_mynetworks, permit_sasl_authenticated, reject_unauth_destination
)";

Postfix::Postfix(const LoginServer& logins)
    : logins_(logins), server_(Prepare(), folder_, {port}, Process::Rights::Own, kTrusting) {}

std::vector<std::string> Postfix::Prepare() const {
    LetThrough(folder_);
    for (const char* name : {"etc", "queue", "data"})
        fs::create_directory(folder_.Path(name));
    const std::string user = std::to_string(getpwnam(ServerUser().c_str())->pw_uid);
    std::string configuration = kPostfixConfiguration;
    auto set = [&](const std::string& key, const std::string& value) { configuration += key + " = " + value + "\n"; };
    set("queue_directory", folder_.Path("queue"));
    set("data_directory", folder_.Path("data"));
    set("virtual_mailbox_base", logins_.Mailboxes());
    set("virtual_uid_maps", "static:" + user);
    set("virtual_gid_maps", "static:" + user);
    set("smtpd_sasl_path", logins_.AuthSocket());
    folder_.Write("etc/main.cf", configuration);
    folder_.Write("etc/master.cf", Services());
    const Process layout(
        {"sh", "-ec", "chown postfix " + folder_.Path("data") + "; postfix -c " + folder_.Path("etc") + " check"}, folder_);
    if (!layout.Ended(kStartLimit) || layout.ExitStatus() != 0) throw std::runtime_error(folder_.Read("output"));
    // It changes its user for a moment, after which it would outlive a test that was killed; so it has a time to end by itself.
    return {"/usr/lib/postfix/sbin/master", "-d", "-s", "-e", "600", "-c", folder_.Path("etc")};
}

std::string Postfix::Services() const {
    std::ostringstream services;
    auto add = [&](const char* name, const char* kind, const char* isPrivate, const char* most, const char* program) {
        services << name << " " << kind << " " << isPrivate << " - n - " << most << " " << program << "\n";
    };
    add("cleanup", "unix", "n", "0", "cleanup");
    services << "qmgr unix n - n 300 1 qmgr\n";
    add("rewrite", "unix", "-", "-", "trivial-rewrite");
    for (const char* name : {"bounce", "defer", "trace"})
        add(name, "unix", "-", "0", "bounce");
    for (const char* name : {"error", "retry"})
        add(name, "unix", "-", "-", "error");
    add("proxymap", "unix", "-", "-", "proxymap");
    services << "virtual unix - n n - - virtual\n";
    add("anvil", "unix", "-", "1", "anvil");
    add("postlog", "unix-dgram", "n", "1", "postlogd");

    auto listen = [&](const char* address, const std::string& options) {
        services << address << ":" << port << " inet n - n - - smtpd " << options << "\n";
    };
    const std::string logins = "-o smtpd_sasl_auth_enable=yes";
    const std::string only = logins + " -o smtpd_sasl_mechanism_filter=";
    listen(kTrusting, "-o mynetworks=127.0.0.0/8");
    listen(kAllLogins, logins);
    listen(kCramMD5, only + "cram-md5");
    listen(kLogin, only + "login");
    listen(kPlain, only + "plain");
    listen(kNoRelay, "");
    // Tables are read when a process begins, so each serves one connection.
    listen(kAfterPop, "-o max_use=1 -o smtpd_relay_restrictions=check_client_access,texthash:" + logins_.LastClient() +
                          ",reject_unauth_destination");
    return services.str();
}

// A mail goes from one of these folders to the next in this order, and leaves the last when it has been delivered.
bool Postfix::QueueIsEmpty() const {
    for (const char* queue : {"incoming", "active", "deferred"}) {
        for (const auto& entry : fs::recursive_directory_iterator(folder_.Path("queue/") + queue)) {
            if (!entry.is_directory()) return false;
        }
    }
    return true;
}

std::vector<ArrivedMail> Postfix::TakeMails() const {
    const auto deadline = std::chrono::steady_clock::now() + kDeliveryLimit;
    while (!QueueIsEmpty()) {
        if (server_.Running().Ended(5ms) || std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("Postfix does not deliver: " + folder_.Read("output"));
    }
    return TakeMailsFrom(logins_.Mailboxes() + "/box/new");
}

Aiosmtpd::Aiosmtpd() : server_(Prepare(), folder_, {port}, Process::Rights::Nobody, kCritical) {}

std::vector<std::string> Aiosmtpd::Prepare() const {
    fs::create_directory(folder_.Path("box"));
    fs::copy_file(Script("mail_aiosmtpd.py"), folder_.Path("server.py"));
    const auto serve = [](const char* address, const char* mode) { return std::string(address) + "=" + mode; };
    return {"/usr/bin/python3",
            folder_.Path("server.py"),
            std::to_string(port),
            folder_.Path("box"),
            serve(kOpen, "open"),
            serve(kLogins, "LOGIN,PLAIN"),
            serve(kLogin, "LOGIN"),
            serve(kPlain, "PLAIN"),
            serve(kClosing, "MAIL:421 4.3.2 System not accepting network messages"),
            serve(kFull, "RCPT:452 4.3.1 Insufficient system storage"),
            serve(kCritical, "DATA:554 5.6.0 This is not welcome")};
}

std::vector<ArrivedMail> Aiosmtpd::TakeMails() const {
    return TakeMailsFrom(folder_.Path("box"));
}

}  // namespace korvane::test
