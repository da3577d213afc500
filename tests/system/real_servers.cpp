#include "system/real_servers.h"

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace korvane::test {
namespace {

using namespace std::chrono_literals;

constexpr auto kStartLimit = 20s;

class Loopback {
public:
    explicit Loopback(int port, const std::string& address = "127.0.0.1")
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = inet_addr(address.c_str());
        address_.sin_port = htons(static_cast<std::uint16_t>(port));
    }
    ~Loopback() { close(socket_); }
    Loopback(const Loopback&) = delete;
    Loopback& operator=(const Loopback&) = delete;

    bool Binds() const { return bind(socket_, Address(), sizeof address_) == 0; }
    bool Connects() const { return connect(socket_, Address(), sizeof address_) == 0; }

private:
    const sockaddr* Address() const { return reinterpret_cast<const sockaddr*>(&address_); }
    int socket_;
    sockaddr_in address_{};
};

void Run(const std::string& shellCommands, const PrivateFolder& folder) {
    const Process shell({"sh", "-ec", shellCommands}, folder);
    if (!shell.Ended(kStartLimit) || shell.ExitStatus() != 0) throw std::runtime_error(folder.Read("output"));
}

}  // namespace

std::vector<int> FreePorts(std::size_t count, int low) {
    // Tests that run at the same time start at different places.
    std::vector<int> ports;
    for (int port = low + getpid() * 37 % 4000; ports.size() < count; ++port) {
        if (Loopback(port).Binds()) ports.push_back(port);
    }
    return ports;
}

Server::Server(const std::vector<std::string>& command, const PrivateFolder& folder, const std::vector<int>& ports,
               Process::Rights rights, const std::string& address)
    : process_(command, folder, rights) {
    const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
    for (const int port : ports) {
        while (!Loopback(port, address).Connects()) {
            if (process_.Ended(10ms) || std::chrono::steady_clock::now() > deadline) {
                throw std::runtime_error(command[0] + " does not serve port " + std::to_string(port) + ": " +
                                         folder.Read("output"));
            }
        }
    }
}

WebServer::WebServer() : server_(Prepare(), folder_, {http, httpAbove, https, httpsSelfSigned, httpsOtherName, httpsExpired}) {}

std::vector<std::string> WebServer::Prepare() const {
    MakeCertificates();
    WritePages();
    folder_.Write("nginx.conf", Configuration());
    return {"nginx", "-p", folder_.Path(), "-c", "nginx.conf", "-e", "output"};
}

void WebServer::MakeCertificates() const {
    Run(R"(
cd )" + folder_.Path() +
            R"(
new="-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -batch"
here=subjectAltName=DNS:localhost,IP:127.0.0.1
sign="openssl x509 -req -CA authority.pem -CAkey authority.key -CAcreateserial"
openssl req -x509 $new -subj "/CN=Korvane test authority" -keyout authority.key -out authority.pem
openssl req -x509 $new -subj /CN=localhost -addext $here -keyout self_signed.key -out self_signed.pem
for name in good expired other_name; do openssl req $new -subj /CN=localhost -keyout $name.key -out $name.csr; done
echo $here >here
echo subjectAltName=DNS:other.example >other
$sign -in good.csr -out good.pem -extfile here -days 2
$sign -in expired.csr -out expired.pem -extfile here -days -1
$sign -in other_name.csr -out other_name.pem -extfile other -days 2
)",
        folder_);
}

void WebServer::WritePages() const {
    folder_.Write("users", "operator:{PLAIN}open sesame\n");
    folder_.Write("picture", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    folder_.Write("pages", R"(
location = /page { return 200 "Welcome to Korvane\n"; }
location = /private { auth_basic private; auth_basic_user_file users; echo "Welcome, $remote_user"; }
location = /moved { return 302 /moved-again; }
location = /moved-again { return 301 /page; }
location = /loop { return 302 /loop; }
location = /to-https { return 301 https://localhost:)" +
                               std::to_string(https) + R"(/page; }
location = /empty { return 200 ""; }
location = /slow-empty { echo_sleep 0.7; }
location = /late { echo_sleep 60; echo "Welcome at last"; }
location = /picture { default_type image/png; alias picture; }
location = /big { echo_duplicate 50000000 a; echo end; }
)");
}

std::string WebServer::Configuration() const {
    std::string servers;
    auto add = [&](int port, const std::string& certificate) {
        servers +=
            "server { listen 127.0.0.1:" + std::to_string(port) + (certificate.empty() ? "" : " ssl") + "; include pages; ";
        if (!certificate.empty())
            servers += "ssl_certificate " + certificate + ".pem; ssl_certificate_key " + certificate + ".key; ";
        servers += "}\n";
    };
    add(http, "");
    add(httpAbove, "");
    add(https, "good");
    add(httpsSelfSigned, "self_signed");
    add(httpsOtherName, "other_name");
    add(httpsExpired, "expired");
    return R"(
load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
daemon off;
master_process off;
pid nginx.pid;
error_log output;
events {}
http {
log_format answers "$request_uri $status";
access_log answers answers;
default_type text/html;
client_body_temp_path temporary;
proxy_temp_path temporary;
fastcgi_temp_path temporary;
uwsgi_temp_path temporary;
scgi_temp_path temporary;
)" + servers +
           "}\n";
}

int WebServer::Answers(std::string_view path) const {
    std::istringstream log(folder_.Read("answers"));
    int count = 0;
    for (std::string line; std::getline(log, line);)
        count += line.starts_with(std::string(path) + " ");
    return count;
}

ProxyServer::ProxyServer() : server_(Prepare(), folder_, {port}) {}

// It shares memory under its name with nobody, and leaves it behind when it is killed.
ProxyServer::~ProxyServer() {
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().starts_with(name_ + "-")) std::filesystem::remove(entry.path());
    }
}

std::vector<std::string> ProxyServer::Prepare() const {
    folder_.Write("squid.conf", "http_port 127.0.0.1:" + std::to_string(port) + R"(
http_access allow all
cache deny all
pid_filename none
pinger_enable off
shutdown_lifetime 0 seconds
visible_hostname localhost
access_log stdio:)" + folder_.Path("access.log") +
                                    R"(
cache_log )" + folder_.Path("output") +
                                    R"(
coredump_dir )" + folder_.Path() + "\n");
    return {"squid", "-N", "-n", name_, "-f", folder_.Path("squid.conf")};
}

std::string ServerUser() {
    const passwd* user = geteuid() == 0 ? getpwnam("nobody") : getpwuid(geteuid());
    return user == nullptr ? "" : user->pw_name;
}
std::string ServerGroup() {
    const group* own = geteuid() == 0 ? getgrnam("nogroup") : getgrgid(getegid());
    return own == nullptr ? "" : own->gr_name;
}

std::string DovecotBasics(const PrivateFolder& folder, const std::string& protocols) {
    std::string configuration = R"(
listen = 127.0.0.1
hostname = localhost
submission_relay_host = 127.0.0.1
ssl = no
log_path = /dev/stderr
service anvil {
  chroot =
}
)";
    auto set = [&](const std::string& key, const std::string& value) { configuration += key + " = " + value + "\n"; };
    set("protocols", protocols);
    set("base_dir", folder.Path("base"));
    set("state_dir", folder.Path("state"));
    set("default_internal_user", ServerUser());
    set("default_internal_group", ServerGroup());
    set("default_login_user", ServerUser());
    return configuration;
}

std::string DovecotListener(const std::string& protocol, int port) {
    return "service " + protocol + "-login {\n chroot =\n inet_listener " + protocol + " {\n  port = " + std::to_string(port) +
           "\n }\n}\n";
}

MailServer::MailServer() : server_(Prepare(), folder_, ports) {}

std::vector<std::string> MailServer::Prepare() const {
    folder_.Write("dovecot.conf", DovecotBasics(folder_, "pop3 imap submission") + DovecotListener("pop3", pop3) +
                                      DovecotListener("imap", imap) + DovecotListener("submission", smtp) +
                                      "passdb {\n  driver = static\n}\n");
    return {"dovecot", "-F", "-c", folder_.Path("dovecot.conf")};
}

FtpServer::FtpServer() : server_(Prepare(), folder_, {port}) {}

std::vector<std::string> FtpServer::Prepare() const {
    folder_.Write("vsftpd.conf", "listen=YES\nlisten_address=127.0.0.1\nlisten_port=" + std::to_string(port) + R"(
background=NO
run_as_launching_user=YES
seccomp_sandbox=NO
xferlog_enable=NO
secure_chroot_dir=)" + folder_.Path() +
                                     "\n");
    return {"vsftpd", folder_.Path("vsftpd.conf")};
}

}  // namespace korvane::test
