// When to try vectors again after text on which they failed.
#pragma once

namespace tav::unicode {

/// How many elements to convert one by one before vectors are tried again: twice as many after each failure,
/// so that text on which they never pay costs little more than the plain loop alone.
class Patience {
public:
    int afterFailure() {
        const int burst = burst_;
        if (burst_ < 256) burst_ *= 2;
        return burst;
    }
    void afterSuccess() { burst_ = 16; }

private:
    int burst_ = 16;
};

} // namespace tav::unicode
