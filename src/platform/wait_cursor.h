// Shows the wait cursor for as long as this lives.
#pragma once

#include "platform/operator.h"

namespace korvane {

class WaitCursor {
public:
    explicit WaitCursor(Operator& person) : person_(person) { person_.SetWaitCursor(true); }
    ~WaitCursor() { person_.SetWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    Operator& person_;
};

}  // namespace korvane
