// For routines that ignore errors and continue with the next statement: each statement is wrapped separately.
#pragma once

#include <exception>

namespace korvane {

/// Runs the statement and ignores an error in it. Returns whether it ran to its end.
template <class Statement>
bool IgnoreErrors(Statement statement) {
    try {
        statement();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace korvane
