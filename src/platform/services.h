// Port: the services of the operating system, as its service manager knows them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane {

struct ServiceRecord {
    /// The states that the program knows by name. There are others, of services on their way from one to the other.
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
    std::string whyNot;  ///< blank: the manager has answered. Else there is none, or it did not answer, in words for the operator
    std::vector<ServiceRecord> services;  ///< active and inactive, in order of their names; none where there is no answer
};

class Services {
public:
    virtual ~Services() = default;

    /// A question that is open as long as this lives. Dropping it takes the question back, also from within its answer.
    class Question {
    public:
        virtual ~Question() = default;
    };

    /// Asks the manager and returns at once. `answer` is called once, from the pump and never from within this call, after some 5
    /// s at most. Must outlive its questions.
    virtual std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) = 0;
};

}  // namespace korvane
