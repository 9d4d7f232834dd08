#include "bench/string_peers.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tav::bench::peers {

namespace {

template <class E>
void copy(const E* src, E* dst, int32_t count) {
    std::memcpy(dst, src, static_cast<std::size_t>(count) * sizeof(E));
}

template <class E>
void move(const E* src, E* dst, int32_t count) {
    std::memmove(dst, src, static_cast<std::size_t>(count) * sizeof(E));
}

template <class E>
E lower(E value) {
    return static_cast<E>(value >= 'A' && value <= 'Z' ? value + 32 : value);
}

template <class E>
E upper(E value) {
    return static_cast<E>(value >= 'a' && value <= 'z' ? value - 32 : value);
}

template <class E>
class Table {
public:
    Table(const E* set, int32_t lenSet) {
        for (int32_t i = 0; i < lenSet; ++i) {
            has_[set[i]] = true;
        }
    }
    bool has(E value) const { return value < 256 && has_[value]; }

private:
    std::array<bool, 256> has_ = {};
};

template <class E>
bool startsWith(const E* src, const E* find, int32_t lenFind) {
    for (int32_t i = 0; i < lenFind; ++i) {
        if (src[i] != find[i]) return false;
    }
    return true;
}

template <class E>
int32_t separatorOrEnd(const E* src, int32_t at, int32_t len, E delim) {
    if constexpr (sizeof(E) == 1) {
        const void* found = std::memchr(src + at, delim, static_cast<std::size_t>(len - at));
        return found == nullptr ? len : static_cast<int32_t>(static_cast<const E*>(found) - src);
    }
    return static_cast<int32_t>(std::find(src + at, src + len, delim) - src);
}

} // namespace

template <class E>
int32_t compare(const E* one, const E* two, int32_t len) {
    for (int32_t i = 0; i < len; ++i) {
        if (one[i] != two[i]) return one[i] - two[i];
    }
    return 0;
}

template <class E>
int32_t compareIgnoreCaseLatin(const E* one, const E* two, int32_t len) {
    for (int32_t i = 0; i < len; ++i) {
        if (one[i] == two[i]) continue;
        const int32_t difference = lower(one[i]) - lower(two[i]);
        if (difference != 0) return difference;
    }
    return 0;
}

template <class E>
int32_t find(const E* src, int32_t len, E value) {
    for (int32_t i = 0; i < len; ++i) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class E>
int32_t findRev(const E* src, int32_t len, E value) {
    for (int32_t i = len; i-- > 0;) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class E>
int32_t lengthZ(const E* src) {
    int32_t len = 0;
    while (src[len] != 0) {
        ++len;
    }
    return len;
}

template <class E>
int32_t findZ(const E* src, E value) {
    for (int32_t i = 0; src[i] != 0; ++i) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class E>
int32_t findString(const E* src, int32_t len, const E* find, int32_t lenFind) {
    for (int32_t i = 0; i <= len - lenFind; ++i) {
        if (startsWith(src + i, find, lenFind)) return i;
    }
    return -1;
}

template <class E>
int32_t findStringRev(const E* src, int32_t len, const E* find, int32_t lenFind) {
    for (int32_t i = len - lenFind; i >= 0; --i) {
        if (startsWith(src + i, find, lenFind)) return i;
    }
    return -1;
}

template <class E>
int32_t findStringZ(const E* src, const E* find) {
    for (int32_t i = 0; src[i] != 0; ++i) {
        int32_t k = 0;
        while (find[k] != 0 && src[i + k] == find[k]) {
            ++k;
        }
        if (find[k] == 0) return i;
    }
    return -1;
}

template <class E>
int32_t findAny(const E* src, int32_t len, const E* set, int32_t lenSet) {
    for (int32_t i = 0; i < len; ++i) {
        if (find(set, lenSet, src[i]) >= 0) return i;
    }
    return -1;
}

template <class E>
int32_t findAnyRev(const E* src, int32_t len, const E* set, int32_t lenSet) {
    for (int32_t i = len; i-- > 0;) {
        if (find(set, lenSet, src[i]) >= 0) return i;
    }
    return -1;
}

template <class E>
int32_t findAnyByTable(const E* src, int32_t len, const E* set, int32_t lenSet) {
    const Table<E> table(set, lenSet);
    for (int32_t i = 0; i < len; ++i) {
        if (table.has(src[i])) return i;
    }
    return -1;
}

template <class E>
int32_t findAnyRevByTable(const E* src, int32_t len, const E* set, int32_t lenSet) {
    const Table<E> table(set, lenSet);
    for (int32_t i = len; i-- > 0;) {
        if (table.has(src[i])) return i;
    }
    return -1;
}

template <class E>
void insert(const E* src, int32_t len, const E* piece, int32_t lenPiece, E* dst, int32_t at) {
    copy(src, dst, at);
    copy(piece, dst + at, lenPiece);
    copy(src + at, dst + at + lenPiece, len - at);
}

template <class E>
void remove(const E* src, int32_t len, E* dst, int32_t at, int32_t lenPiece) {
    copy(src, dst, at);
    copy(src + at + lenPiece, dst + at, len - at - lenPiece);
}

template <class E>
void insertInPlace(const E* piece, int32_t lenPiece, E* text, int32_t* len, int32_t at) {
    move(text + at, text + at + lenPiece, *len - at);
    copy(piece, text + at, lenPiece);
    *len += lenPiece;
}

template <class E>
void removeInPlace(E* text, int32_t* len, int32_t at, int32_t lenPiece) {
    move(text + at + lenPiece, text + at, *len - at - lenPiece);
    *len -= lenPiece;
}

template <class E>
void concat(const E* one, int32_t lenOne, const E* two, int32_t lenTwo, E* dst) {
    copy(one, dst, lenOne);
    copy(two, dst + lenOne, lenTwo);
}

template <class E>
void concatList(const E* const* srcs, const int32_t* lens, int32_t count, E* dst) {
    for (int32_t i = 0; i < count; ++i) {
        copy(srcs[i], dst, lens[i]);
        dst += lens[i];
    }
}

template <class E>
void join(const E* const* srcs, const int32_t* lens, int32_t count, E delim, E* dst) {
    for (int32_t i = 0; i < count; ++i) {
        if (i > 0) *dst++ = delim;
        copy(srcs[i], dst, lens[i]);
        dst += lens[i];
    }
}

template <class E>
int32_t split(const E* src, int32_t len, E delim, E* const* dsts, int32_t* dstLens, int32_t slots) {
    int32_t k = 0;
    for (int32_t at = 0; at < len && k < slots; ++k) {
        const int32_t end = separatorOrEnd(src, at, len, delim);
        dstLens[k] = std::min(end - at, dstLens[k]);
        copy(src + at, dsts[k], dstLens[k]);
        at = end + 1;
    }
    return k;
}

template <class E>
void replace(const E* src, E* dst, int32_t len, E oldValue, E newValue) {
    std::replace_copy(src, src + len, dst, oldValue, newValue);
}

template <class E>
void lowercase(const E* src, E* dst, int32_t len) {
    std::transform(src, src + len, dst, lower<E>);
}

template <class E>
void uppercase(const E* src, E* dst, int32_t len) {
    std::transform(src, src + len, dst, upper<E>);
}

template <class E>
int32_t trim(const E* src, int32_t len, E odd, E* dst) {
    int32_t first = 0;
    while (first < len && src[first] == odd) {
        ++first;
    }
    while (len > first && src[len - 1] == odd) {
        --len;
    }
    copy(src + first, dst, len - first);
    return len - first;
}

template <class E>
int32_t trimAny(const E* src, int32_t len, const E* set, int32_t lenSet, E* dst) {
    int32_t first = 0;
    while (first < len && find(set, lenSet, src[first]) >= 0) {
        ++first;
    }
    while (len > first && find(set, lenSet, src[len - 1]) >= 0) {
        --len;
    }
    copy(src + first, dst, len - first);
    return len - first;
}

template <class E>
uint32_t hashShiftXor(const E* src, int32_t len) {
    uint32_t h = 0;
    for (int32_t i = 0; i < len; ++i) {
        h = (h << 1) ^ src[i];
    }
    return h;
}

template <class E>
uint32_t hashTimes31(const E* src, int32_t len) {
    uint32_t h = 0;
    for (int32_t i = 0; i < len; ++i) {
        h = h * 31 + src[i];
    }
    return h;
}

template <class E>
uint32_t hashTimes33(const E* src, int32_t len) {
    uint32_t h = 5381;
    for (int32_t i = 0; i < len && src[i] != 0; ++i) {
        h = (h * 33) ^ src[i];
    }
    return h;
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template int32_t compare(const E*, const E*, int32_t);                                                   \
    template int32_t compareIgnoreCaseLatin(const E*, const E*, int32_t);                                    \
    template int32_t find(const E*, int32_t, E);                                                             \
    template int32_t findRev(const E*, int32_t, E);                                                          \
    template int32_t lengthZ(const E*);                                                                      \
    template int32_t findZ(const E*, E);                                                                     \
    template int32_t findString(const E*, int32_t, const E*, int32_t);                                       \
    template int32_t findStringRev(const E*, int32_t, const E*, int32_t);                                    \
    template int32_t findStringZ(const E*, const E*);                                                        \
    template int32_t findAny(const E*, int32_t, const E*, int32_t);                                          \
    template int32_t findAnyRev(const E*, int32_t, const E*, int32_t);                                       \
    template int32_t findAnyByTable(const E*, int32_t, const E*, int32_t);                                   \
    template int32_t findAnyRevByTable(const E*, int32_t, const E*, int32_t);                                \
    template void insert(const E*, int32_t, const E*, int32_t, E*, int32_t);                                 \
    template void remove(const E*, int32_t, E*, int32_t, int32_t);                                           \
    template void insertInPlace(const E*, int32_t, E*, int32_t*, int32_t);                                   \
    template void removeInPlace(E*, int32_t*, int32_t, int32_t);                                             \
    template void concat(const E*, int32_t, const E*, int32_t, E*);                                          \
    template void concatList(const E* const*, const int32_t*, int32_t, E*);                                  \
    template void join(const E* const*, const int32_t*, int32_t, E, E*);                                     \
    template int32_t split(const E*, int32_t, E, E* const*, int32_t*, int32_t);                              \
    template void replace(const E*, E*, int32_t, E, E);                                                      \
    template void lowercase(const E*, E*, int32_t);                                                          \
    template void uppercase(const E*, E*, int32_t);                                                          \
    template int32_t trim(const E*, int32_t, E, E*);                                                         \
    template int32_t trimAny(const E*, int32_t, const E*, int32_t, E*);                                      \
    template uint32_t hashShiftXor(const E*, int32_t);                                                       \
    template uint32_t hashTimes31(const E*, int32_t);                                                        \
    template uint32_t hashTimes33(const E*, int32_t);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav::bench::peers
