// Port: programs of the system, started and left to themselves: commands, and the browser of the person at the desk.
#pragma once

#include <functional>
#include <string>

namespace korvane {

enum class WindowStyle { Hidden = 0, Normal = 1 };

class Processes {
public:
    virtual ~Processes() = default;

    /// Starts a command line and returns at once with its process id, or 0 when the system gave none. The command reads nothing,
    /// what it prints is dropped, it outlives this program (unless a service manager ends it together with the service), and
    /// nothing of it is left behind when it ends. A line with quotes, variables, pipes or other signs of the shell goes to the
    /// shell; a plain one is started directly, so that a program that is not there throws Error with the reason; words that only
    /// a shell knows (cd, exec) are not there. `style` matters only where a program has a window of its own.
    virtual int Shell(const std::string& command, WindowStyle style) = 0;

    /// What the person at this desk has for files with this extension ("htm", without a dot): the name of a desktop entry, or
    /// a command. Blank: nothing.
    virtual std::string DefaultProgram(const std::string& extension) = 0;
    bool HasDefaultProgram(const std::string& extension) { return !DefaultProgram(extension).empty(); }

    using NotOpened = std::function<void(const std::string& why)>;

    /// Open the page in the browser, and the file in the text editor, of the person at this desk, and return at once: whether a
    /// program was started. `notOpened` is called once when none takes it, from here or, when those that were started give up,
    /// from the pump. That a program that goes on shows the page is not known.
    virtual bool OpenPage(const std::string& path, const NotOpened& notOpened) = 0;
    virtual bool OpenText(const std::string& path, const NotOpened& notOpened) = 0;
};

}  // namespace korvane
