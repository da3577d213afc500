// For routines that go on whatever happens and only say at their end what went wrong last.
#pragma once

#include <exception>
#include <string>

#include "base/error.h"

namespace korvane {

class LastError {
public:
    /// Runs the statement; an error in it is remembered in place of earlier ones. Returns whether it ran to its end.
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

    /// Blank and 0 as long as all went well.
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
