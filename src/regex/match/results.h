// The caller's result array, filled from the front.
#pragma once

#include "tavch.h"

namespace tav::regex {

class Results {
public:
    Results(tavRegExpFindResult* entries, int32_t capacity) : entries_(entries), capacity_(capacity) {}

    bool isFull() const { return count_ == capacity_; }
    int32_t count() const { return count_; }

    void add(const uint8_t* start, int32_t length) {
        if (!isFull()) entries_[count_++] = {start, length};
    }

private:
    tavRegExpFindResult* entries_;
    int32_t capacity_;
    int32_t count_ = 0;
};

} // namespace tav::regex
