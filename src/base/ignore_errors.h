// For routines that ignore errors and go on with the next statement: each statement is wrapped by itself.
#pragma once

#include <exception>

namespace korvane {

/// Runs the statement; an error in it is dropped. Returns whether it ran to its end.
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
