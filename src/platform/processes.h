// Port: programs of the system that are started and left to themselves: commands, and the user's browser.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace korvane {

/// Variables of an environment, as name and value. None of the texts contains a NUL.
using Variables = std::vector<std::pair<std::string, std::string>>;

enum class WindowStyle { Hidden = 0, Normal = 1 };

class Processes {
public:
    virtual ~Processes() = default;

    /// Starts a command line and returns at once with its process id, or 0 when the system gave none. The command has no input,
    /// its output is discarded, it outlives this program (unless a service manager ends it together with the service), and it
    /// leaves no zombie when it ends. A line with quotes, variables, pipes or other shell characters is run by the shell; a plain
    /// one is started directly, so that a missing program throws Error with the reason; built-in commands of the shell (cd, exec)
    /// then count as missing. `style` matters only where a program has a window of its own. The environment is that of this program
    /// with `variables` added, which replace those of the same name.
    virtual int Shell(const std::string& command, WindowStyle style, const Variables& variables = {}) = 0;

    /// Returns what the user has chosen for files with this extension ("htm", without a dot): the name of a desktop entry, or a
    /// command. Empty: nothing.
    virtual std::string DefaultProgram(const std::string& extension) = 0;
    bool HasDefaultProgram(const std::string& extension) { return !DefaultProgram(extension).empty(); }

    using NotOpened = std::function<void(const std::string& why)>;

    /// Open the page in the user's browser, or the file in the user's text editor, and return at once whether a program was
    /// started. `notOpened` is called once when no program takes it: from this call or, when the started programs give up, from
    /// the pump. Whether a program that keeps running shows the page is not known.
    virtual bool OpenPage(const std::string& path, const NotOpened& notOpened) = 0;
    virtual bool OpenText(const std::string& path, const NotOpened& notOpened) = 0;
};

}  // namespace korvane
