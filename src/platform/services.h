// Port: the services of the operating system, as reported by its service manager.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane {

struct ServiceRecord {
    /// The states with names in the program. Other numbers are services that are changing from one state to the other.
    static constexpr int kStopped = 1;
    static constexpr int kRunning = 4;
    static constexpr int kPaused = 7;
    /// The type of a service that is a program with processes of its own.
    static constexpr int kOwnProcess = 16;

    std::string name;
    std::string displayName;
    int state = kStopped;
    int type = kOwnProcess;
    bool operator==(const ServiceRecord&) const = default;
};

struct ServiceList {
    std::string whyNot;      ///< empty: the manager has answered. Otherwise why there is no answer, in words for the operator
    bool noManager = false;  ///< there is none that could be asked
    std::vector<ServiceRecord> services;  ///< active and inactive ones, sorted by name; none without an answer
};

class Services {
public:
    virtual ~Services() = default;

    /// A pending question. Destroying it cancels the question, which is allowed inside its answer.
    class Question {
    public:
        virtual ~Question() = default;
    };

    /// Asks the manager and returns at once. `answer` is called once, from the pump and never from within this call, after at
    /// most about 5 s. This object must outlive its questions.
    virtual std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) = 0;
};

}  // namespace korvane
