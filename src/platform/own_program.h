// Port: this program, started once more as a child process for a piece of work that may take long, so that the work holds up
// neither the checks nor the windows.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace korvane {

class OwnProgram {
public:
    virtual ~OwnProgram() = default;

    /// A running child. The destructor kills it if it has not ended; nothing is called any more then.
    class Work {
    public:
        virtual ~Work() = default;
    };

    /// Both are called from the pump.
    struct Listener {
        std::function<void(const std::string& line)> line;      ///< each line that the child prints
        std::function<void(const std::string& problem)> ended;  ///< once, last; empty if it ended by itself with status 0
    };

    /// Starts the child with `word` on its command line and `input` as its standard input, and returns at once. It ends with this
    /// process. Throws Error when it cannot be started. `ended` may destroy the Work.
    virtual std::unique_ptr<Work> Start(const std::string& word, const std::string& input, Listener listener) = 0;
};

}  // namespace korvane
