// The only exception type of the rooms: a failure with a readable description, and the number that a few routines check. It never
// leaves a routine: each routine catches its own errors.
#pragma once

#include <stdexcept>
#include <string>

namespace korvane {

class Error : public std::runtime_error {
public:
    explicit Error(const std::string& description, int number = 0) : std::runtime_error(description), number_(number) {}

    /// The number of the failure, 0 if none is defined. Socket failures use Winsock's numbers (10049, 10060, ...).
    int Number() const { return number_; }

private:
    int number_;
};

/// The value of a checked 16- or 32-bit number left its range.
class OverflowError : public Error {
public:
    OverflowError() : Error("Overflow", 6) {}
};

/// A text was used where a number or a date was required.
class TypeMismatchError : public Error {
public:
    TypeMismatchError() : Error("Type mismatch", 13) {}
};

/// A blank (a column that was never written) was used where a value was required.
class BlankError : public Error {
public:
    BlankError() : Error("Invalid use of Null", 94) {}
};

}  // namespace korvane
