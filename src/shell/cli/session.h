// One command while it runs: its words, the home that it works on, and where its output goes. The home is opened when it is first
// needed, and nothing of it is started: a monitor may run with it at the same time.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "platform/operator.h"
#include "shell/cli/words.h"
#include "shell/run/requests.h"
#include "shell/run/run.h"

namespace korvane {

/// The operator at the command line, who has said all with the command: messages go to standard error, status lines are shown only
/// while `shows`, and questions are answered with Yes only while `agrees`.
class CommandOperator : public Operator {
public:
    CommandOperator(std::ostream& out, std::ostream& errors) : out_(out), errors_(errors) {}

    bool WindowVisible() const override { return false; }
    void StatusLine(const std::string& time, const std::string& text) override;
    void ShowMessage(const std::string& title, const std::string& text) override;
    bool AskYesNo(const std::string& title, const std::string& text) override;

    bool shows = false;
    bool agrees = false;

private:
    std::ostream& out_;
    std::ostream& errors_;
};

/// What the process gives to a command; everything must outlive it.
struct CommandPlace {
    const RunPorts& ports;
    RunOptions options;
    CommandOperator& person;
    std::ostream& out;
    std::ostream& errors;
    std::size_t width;   ///< of the terminal, in characters; 0: no terminal
    std::string number;  ///< of the process: distinguishes its requests from those of others
    /// Makes a store whose list in the home's folder is on the server of that address; blank: in the file.
    std::function<std::unique_ptr<Store>(const std::string& address)> storeAt = {};
};

/// Runs the command that the words name. Returns the exit status; errors are printed with what to do next.
int RunCommandWords(const std::vector<std::string>& words, const CommandPlace& place);

class Session {
public:
    Session(const CommandPlace& place, Words words) : place_(place), words_(std::move(words)) {}

    const Words& Given() const { return words_; }
    bool Json() const { return words_.Has("json"); }
    bool Quiet() const { return words_.Has("quiet"); }
    const CommandPlace& Place() const { return place_; }

    /// Opens the home. Throws Error when there is none.
    const Desk& TheDesk();
    const std::string& Home() const { return place_.options.dir; }
    /// Throws Error unless this user owns the home: files of another user would keep the monitor from writing.
    const Desk& DeskForChanges();

    /// Whether a monitor runs with this home.
    bool Runs() const { return place_.ports.files.IsHeld(Home()); }
    /// Lets a running monitor look at the entries within a second.
    void Notify();

    struct Entry {
        std::string id, name, address;
    };
    /// Returns the entry with this id, name or address. Throws Error when there is none, or several.
    Entry Find(const std::string& name);
    /// Returns nothing when there is none.
    std::vector<Entry> AllThatFit(const std::string& name, std::vector<std::string>& others);
    std::vector<std::string> FindAll();

    /// Returns the text without passwords, unless they are asked for. What these print goes through it.
    std::string Shown(const std::string& text) const;
    /// Prints the text with a line end, unless only errors are wanted.
    void Say(const std::string& text) const;
    /// Prints rows under their heads, fitted to the terminal.
    void PrintTable(std::vector<std::vector<std::string>> rows) const;
    void PrintJson(const QJsonObject& object) const;
    /// Prints the sentence, or it as "done" of an object.
    int Done(const std::string& sentence, const std::vector<std::string>& ids) const;

private:
    bool Hides() const;

    CommandPlace place_;
    Words words_;
    std::unique_ptr<Run> run_;
};

/// Stands for a password.
inline constexpr const char* kHidden = "(not shown)";

/// For JSON.
QString ForJson(const std::string& text);
QJsonArray ForJson(const std::vector<std::string>& texts);

}  // namespace korvane
