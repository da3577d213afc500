// For routines that continue after errors and only report the last one at their end.
#pragma once

#include <exception>
#include <string>

#include "base/error.h"

namespace korvane {

class LastError {
public:
    /// Runs the statement; an error in it replaces earlier ones. Returns whether it ran to its end.
    template <class Statement>
    bool Try(Statement statement) {
        try {
            statement();
            return true;
        } catch (const Error& error) {
            Remember(error.what(), error.Number());
        } catch (const std::exception& error) {
            Remember(error.what(), 0);
        }
        return false;
    }

    /// Empty and 0 as long as there was no error.
    const std::string& Text() const { return text_; }
    int Number() const { return number_; }

private:
    void Remember(const char* text, int number) {
        text_ = text;
        number_ = number;
    }

    std::string text_;
    int number_ = 0;
};

}  // namespace korvane
