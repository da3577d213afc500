// Sets a flag for its own lifetime, to mark work in progress however that work ends.
#pragma once

namespace korvane {

class RaisedFlag {
public:
    explicit RaisedFlag(bool& flag) : flag_(flag) { flag_ = true; }
    ~RaisedFlag() { flag_ = false; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

private:
    bool& flag_;
};

}  // namespace korvane
