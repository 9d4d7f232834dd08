// Editing: every function computes where its pieces go and leaves the copying to copyElements and
// moveElements. Positions are checked as 64-bit sums, so that no argument wraps around.
#include "strings/edit.h"

#include "base/arguments.h"
#include "strings/copy.h"
#include "strings/scan.h"
#include "strings/transform.h"

#include <limits>

namespace tav {

namespace {

/// What lies behind index `at`: a negative amount is refused as a length.
constexpr int64_t behind(int32_t len, int64_t at) {
    return len - at;
}

/// A split under way: fields are taken off the source in order and written to the slots.
template <class E>
class Splitter {
public:
    Splitter(const E* src, int32_t len, E* const* dsts, int32_t* dstLens, int32_t slots)
        : src_(src), dsts_(dsts), dstLens_(dstLens), len_(len), slots_(slots) {}

    /// Ends the next field at a separator. Whether to stop: a slot is refused, or none is left.
    bool endFieldAt(int64_t separator) {
        if (separator < at_) return false; // a scan may come by a position again
        return !writeField(static_cast<int32_t>(separator));
    }

    /// Writes what is left behind the last separator; the answer of the whole split.
    tavStatus finish() {
        if (at_ < len_) writeField(len_);
        if (error_ != tavStsNoError) return error_;
        return at_ < len_ ? tavStsSplitUnfinished : warning_;
    }

    int32_t fields() const { return field_; }

private:
    bool writeField(int32_t end) {
        if (error_ != tavStsNoError || field_ == slots_) return false;
        E* const dst = dsts_[field_];
        int32_t& capacity = dstLens_[field_];
        error_ = Arguments::pointers(dst).lengths(capacity).status;
        if (error_ != tavStsNoError) return false;
        if (end - at_ <= capacity) {
            capacity = end - at_;
        } else {
            warning_ = tavStsFieldTruncated;
        }
        copyElements(src_ + at_, dst, capacity);
        ++field_;
        at_ = end < len_ ? end + 1 : len_;
        return true;
    }

    const E* src_;
    E* const* dsts_;
    int32_t* dstLens_;
    int32_t len_;
    int32_t slots_;
    int32_t at_ = 0;    ///< where the next field begins
    int32_t field_ = 0; ///< fields written
    tavStatus warning_ = tavStsNoError;
    tavStatus error_ = tavStsNoError;
};

/// Appends the strings in order. Each is tested when it is reached, so that those before it stay written.
template <bool delimited, class E>
tavStatus appendAll(const E* const* pSrcs, const int32_t* srcLens, int32_t numSrc, E delim, E* pDst) {
    for (int32_t i = 0; i < numSrc; ++i) {
        const E* const piece = pSrcs[i];
        const int32_t len = srcLens[i];
        if (const auto bad = Arguments::pointers(piece).lengths(len); bad.failed()) return bad.status;
        if (delimited && i > 0) *pDst++ = delim;
        copyElements(piece, pDst, len);
        pDst += len;
    }
    return tavStsNoError;
}

} // namespace

template <class E>
TAV_FLATTEN tavStatus insert(const E* pSrc, int32_t srcLen, const E* pInsert, int32_t insertLen, E* pDst,
                             int32_t startIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pInsert, pDst)
                             .lengths(srcLen, insertLen, startIndex, behind(srcLen, startIndex));
        bad.failed()) {
        return bad.status;
    }
    // Deliberate: with nothing to insert, not even the copy of the source is written.
    if (insertLen == 0) return tavStsNoError;
    if (pSrc != pDst) copyElements(pSrc, pDst, startIndex);
    moveElements(pSrc + startIndex, pDst + startIndex + insertLen, srcLen - startIndex);
    copyElements(pInsert, pDst + startIndex, insertLen);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus insertInPlace(const E* pInsert, int32_t insertLen, E* pSrcDst, int32_t* pSrcDstLen,
                                    int32_t startIndex) {
    if (const auto bad = Arguments::pointers(pInsert, pSrcDst, pSrcDstLen); bad.failed()) return bad.status;
    const int32_t len = *pSrcDstLen;
    const int64_t roomInLength = behind(std::numeric_limits<int32_t>::max(), int64_t{len} + insertLen);
    if (anyNegative<int64_t>(insertLen, len, startIndex, behind(len, startIndex), roomInLength)) {
        return tavStsNegativeLength;
    }
    if (insertLen == 0) return tavStsNoError;
    moveElements(pSrcDst + startIndex, pSrcDst + startIndex + insertLen, len - startIndex);
    copyElements(pInsert, pSrcDst + startIndex, insertLen);
    *pSrcDstLen = len + insertLen;
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus remove(const E* pSrc, int32_t srcLen, E* pDst, int32_t startIndex, int32_t removeLen) {
    const int64_t tailLen = behind(srcLen, int64_t{startIndex} + removeLen);
    if (const auto bad = Arguments::pointers(pSrc, pDst).lengths(removeLen, startIndex, tailLen);
        bad.failed()) {
        return bad.status;
    }
    copyElements(pSrc, pDst, startIndex);
    copyElements(pSrc + startIndex + removeLen, pDst + startIndex, static_cast<int32_t>(tailLen));
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus removeInPlace(E* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex, int32_t removeLen) {
    if (const auto bad = Arguments::pointers(pSrcDst, pSrcDstLen); bad.failed()) return bad.status;
    const int32_t len = *pSrcDstLen;
    const int64_t tailLen = behind(len, int64_t{startIndex} + removeLen);
    if (anyNegative<int64_t>(removeLen, len, startIndex, tailLen)) return tavStsNegativeLength;
    moveElements(pSrcDst + startIndex + removeLen, pSrcDst + startIndex, static_cast<int32_t>(tailLen));
    *pSrcDstLen = len - removeLen;
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus concat(const E* pSrc1, int32_t len1, const E* pSrc2, int32_t len2, E* pDst) {
    if (const auto bad = Arguments::pointers(pSrc1, pSrc2, pDst).lengths(len1, len2); bad.failed()) {
        return bad.status;
    }
    copyElements(pSrc1, pDst, len1);
    copyElements(pSrc2, pDst + len1, len2);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus concatList(const E* const* pSrcs, const int32_t* srcLens, int32_t numSrc, E* pDst) {
    if (const auto bad = Arguments::pointers(pSrcs, srcLens, pDst).counts(numSrc); bad.failed())
        return bad.status;
    return appendAll<false, E>(pSrcs, srcLens, numSrc, 0, pDst);
}

template <class E>
TAV_FLATTEN tavStatus concatListWithDelimiter(const E* const* pSrcs, const int32_t* srcLens, int32_t numSrc,
                                              E delim, E* pDst) {
    if (const auto bad = Arguments::pointers(pSrcs, srcLens, pDst).counts(numSrc); bad.failed())
        return bad.status;
    return appendAll<true, E>(pSrcs, srcLens, numSrc, delim, pDst);
}

template <class E>
TAV_FLATTEN tavStatus split(const E* pSrc, int32_t len, E delim, E* const* pDsts, int32_t* dstLens,
                            int32_t* pNumDst) {
    if (const auto bad = Arguments::pointers(pSrc, pDsts, dstLens, pNumDst).lengths(len); bad.failed()) {
        return bad.status;
    }
    const int32_t slots = *pNumDst;
    if (slots < 1) return tavStsBadCount;
    Splitter<E> splitter(pSrc, len, pDsts, dstLens, slots);
    const auto separators = Vector<E>::splat(delim);
    const auto isSeparator = [=](auto block) { return block.load(pSrc).equal(separators); };
    scanForward<Seek::hit, E>(len, isSeparator, isSeparator,
                              [&](int64_t position) { return splitter.endFieldAt(position); });
    const tavStatus status = splitter.finish();
    if (status >= 0) *pNumDst = splitter.fields();
    return status;
}

template <class E>
TAV_FLATTEN tavStatus replace(const E* pSrc, E* pDst, int32_t len, E oldVal, E newVal) {
    if (const auto bad = Arguments::pointers(pSrc, pDst).lengths(len); bad.failed()) return bad.status;
    struct Change {
        E oldValue, newValue;
        Vector<E> oldValues, difference;

        E operator()(E value) const { return value == oldValue ? newValue : value; }
        Vector<E> operator()(Vector<E> values) const {
            return values ^ (values.equal(oldValues) & difference);
        }
    };
    const auto difference = static_cast<E>(oldVal ^ newVal);
    transform(pSrc, pDst, len,
              Change{oldVal, newVal, Vector<E>::splat(oldVal), Vector<E>::splat(difference)});
    return tavStsNoError;
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template tavStatus insert(const E*, int32_t, const E*, int32_t, E*, int32_t);                            \
    template tavStatus insertInPlace(const E*, int32_t, E*, int32_t*, int32_t);                              \
    template tavStatus remove(const E*, int32_t, E*, int32_t, int32_t);                                      \
    template tavStatus removeInPlace(E*, int32_t*, int32_t, int32_t);                                        \
    template tavStatus concat(const E*, int32_t, const E*, int32_t, E*);                                     \
    template tavStatus concatList(const E* const*, const int32_t*, int32_t, E*);                             \
    template tavStatus concatListWithDelimiter(const E* const*, const int32_t*, int32_t, E, E*);             \
    template tavStatus split(const E*, int32_t, E, E* const*, int32_t*, int32_t*);                           \
    template tavStatus replace(const E*, E*, int32_t, E, E);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
