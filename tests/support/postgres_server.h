// A real PostgreSQL server of the test program's own: started by the first test that wants it, in a temporary folder with its socket,
// without TCP, and ended with the program. It refuses to run as root; root's tests run it as another user.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "support/temporary_folder.h"

struct passwd;

namespace korvane {

class PostgresServer {
public:
    /// The one of this program.
    static PostgresServer& Running();
    PostgresServer(const PostgresServer&) = delete;

    /// The address of a new empty database, which belongs to the role "korvane".
    std::string NewDatabase();
    std::string Address(const std::string& database) const;
    static std::string NameIn(const std::string& address);

    /// Another program's statement, which may do anything: the first value of its result, or the error.
    std::string Run(const std::string& statement, const std::string& database = "postgres") const;

    void Start();
    /// At once, as a power cut of its machine would.
    void Stop();

private:
    PostgresServer();
    ~PostgresServer();

    std::string Data() const { return folder_.Path() + "/data"; }
    pid_t Launch(std::vector<std::string> words);

    const TemporaryFolder folder_;
    const passwd* user_ = nullptr;
    pid_t process_ = 0;
    int databases_ = 0;
};

}  // namespace korvane
