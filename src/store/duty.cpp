#include "store/duty.h"

#include "base/ignore_errors.h"
#include "store/database_files.h"

namespace korvane {

bool Duty::Take() {
    bool has = false;
    IgnoreErrors([&] {
        if (conn_) {
            conn_->Now();
            has = true;
            return;
        }
        conn_ = OpenDatabase(store_, dir_);
        has = conn_->TryTakeDuty(name_);
    });
    if (!has) Release();
    return has;
}

}  // namespace korvane
