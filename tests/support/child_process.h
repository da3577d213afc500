// Runs a piece of a test in a child process: for what changes the whole process (its limits, its user, its network) and must not
// stay so.
#pragma once

#include <functional>

namespace korvane {

/// Forks and runs `body` in the child; whether it returned true. An exception is false.
bool PassesInChild(const std::function<bool()>& body);

/// Takes root's privileges from this process for the rest of its life, so that permissions count for it too.
void GiveUpPrivileges();

/// A network without anything but a loopback interface that is down, for the rest of this process, which may have one thread
/// only. False where the system does not allow it.
bool EnterEmptyNetwork();

/// In an empty network.
void RaiseLoopback();

}  // namespace korvane
