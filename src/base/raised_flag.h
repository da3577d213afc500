// A flag that is up for as long as this lives: what is under way marks itself, whatever ends it.
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
