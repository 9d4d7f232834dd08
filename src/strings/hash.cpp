// The hashes, with their chains of dependent steps broken.
//
// Shift and xor: an element is shifted out after 32 more, so only the last 32 count.
// Times 31: the hash is a polynomial, so sixteen bytes of elements are folded into four 32-bit digits, and
// four such rows are carried on side by side, each multiplied by a power of 31 per round.
// Times 33 and xor: the text is measured up to its zero first; long texts of bytes are walked in eight
// stretches side by side, and so are units of 16 bits as far as they could be bytes. From the first greater
// one on the chain stays.
#include "strings/hash.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "strings/times33.h"
#include "strings/zero_terminated.h"

#include <algorithm>

namespace tav {

namespace {

/// Four elements a step: the four are combined beside the chain.
template <class E>
uint32_t shiftXorByFour(const E* src, int32_t len) {
    uint32_t h = 0;
    int32_t i = 0;
    for (; i + 4 <= len; i += 4) {
        const uint32_t a = src[i], b = src[i + 1], c = src[i + 2], d = src[i + 3];
        h = h << 4 ^ (a << 3 ^ b << 2 ^ c << 1 ^ d);
    }
    return plain::hashShiftXor(src + i, len - i, h);
}

template <int exponent>
constexpr uint32_t powerOf31 = 31 * powerOf31<exponent - 1>;
template <>
constexpr uint32_t powerOf31<0> = 1;

template <class E>
uint32_t times31ByFour(const E* src, int64_t len, uint32_t h) {
    int64_t i = 0;
    for (; i + 4 <= len; i += 4) {
        h = h * powerOf31<4> +
            (src[i] * powerOf31<3> + src[i + 1] * powerOf31<2>)+(src[i + 2] * 31U + src[i + 3]);
    }
    return plain::hashTimes31(src + i, static_cast<int32_t>(len - i), h);
}

/// Sixteen bytes of elements as four 32-bit digits: the hashes of four (bytes) or two (units) neighbours.
template <class E>
__m128i digits(const E* src) {
    const __m128i elements = Vector<E>::load(src).raw;
    if constexpr (sizeof(E) == 1) {
        const __m128i even = _mm_and_si128(elements, _mm_set1_epi16(0x00FF));
        const __m128i odd = _mm_srli_epi16(elements, 8);
        const __m128i pairs = _mm_add_epi16(_mm_sub_epi16(_mm_slli_epi16(even, 5), even), odd);
        return _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | powerOf31<2>));
    } else {
        // The multiplication is signed: units are biased by 2^15, which makes each digit 2^20 too small.
        const __m128i biased = _mm_xor_si128(elements, _mm_set1_epi16(-0x8000));
        return _mm_add_epi32(_mm_madd_epi16(biased, _mm_set1_epi32(1 << 16 | 31)), _mm_set1_epi32(1 << 20));
    }
}

/// Four running digits, even and odd ones apart, because SSE2 multiplies 32-bit lanes only by twos. The upper
/// halves of the 64-bit lanes hold garbage that never comes down.
template <class E>
struct Row {
    static constexpr int elements = Vector<E>::size;
    __m128i even = _mm_setzero_si128();
    __m128i odd = _mm_setzero_si128();

    Row() = default;

    /// Goes on from the hash of what lies before: it is the last digit.
    explicit Row(uint32_t h) : odd(_mm_slli_si128(_mm_cvtsi32_si128(static_cast<int32_t>(h)), 8)) {}

    void step(__m128i factor, __m128i digits) {
        even = _mm_add_epi64(_mm_mul_epu32(even, factor), digits);
        odd = _mm_add_epi64(_mm_mul_epu32(odd, factor), _mm_srli_epi64(digits, 32));
    }

    /// The four digits as a polynomial, as the sum of two 64-bit lanes, `rowsBehind` rows before the end.
    template <int rowsBehind>
    __m128i value() const {
        constexpr int digit = elements / 4, behind = rowsBehind * elements;
        const __m128i ofEven = _mm_set_epi64x(powerOf31<behind + digit>, powerOf31<behind + 3 * digit>);
        const __m128i ofOdd = _mm_set_epi64x(powerOf31<behind>, powerOf31<behind + 2 * digit>);
        return _mm_add_epi64(_mm_mul_epu32(even, ofEven), _mm_mul_epu32(odd, ofOdd));
    }
};

uint32_t sumOfLanes(__m128i lanes) {
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_add_epi64(lanes, _mm_srli_si128(lanes, 8))));
}

/// The factor that moves a hash over `elements` more.
template <int elements>
__m128i factorOver() {
    return _mm_set1_epi32(static_cast<int32_t>(powerOf31<elements>));
}

/// Four rows at a time; `len` is a multiple of that. The hash of all.
template <class E>
uint32_t times31ByFourRows(const E* src, int64_t len) {
    constexpr int row = Row<E>::elements;
    const __m128i factor = factorOver<4 * row>();
    Row<E> a, b, c, d;
    for (int64_t i = 0; i < len; i += 4 * row) {
        a.step(factor, digits(src + i));
        b.step(factor, digits(src + i + row));
        c.step(factor, digits(src + i + 2 * row));
        d.step(factor, digits(src + i + 3 * row));
    }
    return sumOfLanes(_mm_add_epi64(_mm_add_epi64(a.template value<3>(), b.template value<2>()),
                                    _mm_add_epi64(c.template value<1>(), d.template value<0>())));
}

template <class E>
uint32_t times31(const E* src, int32_t len) {
    constexpr int32_t row = Row<E>::elements;
    uint32_t h = 0;
    int64_t i = len / (4 * row) * (4 * row);
    if (i > 0) h = times31ByFourRows(src, i);
    if (len - i >= row) {
        Row<E> last(h);
        for (; len - i >= row; i += row) {
            last.step(factorOver<row>(), digits(src + i));
        }
        h = sumOfLanes(last.template value<0>());
    }
    return times31ByFour(src + i, len - i, h);
}

/// Four elements a step: fewer branches, so that neighbouring calls overlap.
template <class E>
uint32_t times33ByFour(const E* src, int64_t len, uint32_t h) {
    int64_t i = 0;
    for (; i + 4 <= len; i += 4) {
        h = (h * 33) ^ src[i];
        h = (h * 33) ^ src[i + 1];
        h = (h * 33) ^ src[i + 2];
        h = (h * 33) ^ src[i + 3];
    }
    for (; i < len; ++i) {
        h = (h * 33) ^ src[i];
    }
    return h;
}

/// Takes long texts of bytes in rounds of eight stretches; the rest is the caller's. How much was taken.
int64_t times33InStretches(const uint8_t* src, int64_t len, uint32_t& h) {
    // The stretches stay in the nearest cache, because each is read three times.
    constexpr int64_t round = times33::stretches * times33::granule, stretchesPay = 2 * round, most = 16384;
    int64_t taken = 0;
    while (len - taken >= stretchesPay) {
        const int64_t count = std::min(len - taken, most) / round * round;
        h = times33::overStretches(src + taken, count / times33::stretches, h);
        taken += count;
    }
    return taken;
}

/// Writes units as bytes, up to the first vector of units that are not all below 256. How many were written.
int64_t narrow(const uint16_t* src, int64_t len, uint8_t* bytes) {
    const __m128i highBytes = _mm_set1_epi16(-0x100);
    int64_t i = 0;
    for (; i + 16 <= len; i += 16) {
        const __m128i a = Vector<uint16_t>::load(src + i).raw, b = Vector<uint16_t>::load(src + i + 8).raw;
        const Vector<uint16_t> high{_mm_and_si128(_mm_or_si128(a, b), highBytes)};
        if (!high.equal(Vector<uint16_t>::zero()).lanes().all()) break;
        Vector<uint8_t>{_mm_packus_epi16(a, b)}.store(bytes + i);
    }
    return i;
}

/// The same for units, as long as they could be bytes. The few bytes at a time keep the frame within the 1
/// KiB of stack that a string function may take.
int64_t times33InStretches(const uint16_t* src, int64_t len, uint32_t& h) {
    constexpr int64_t most = 512, worthNarrowing = 256;
    if (len < worthNarrowing) return 0;
    uint8_t bytes[most];
    int64_t taken = 0;
    for (int64_t more = 1; more > 0; taken += more) {
        const int64_t count = narrow(src + taken, std::min(len - taken, most), bytes);
        more = times33InStretches(bytes, count, h);
    }
    return taken;
}

/// The hash of elements none of which is zero.
template <class E>
uint32_t times33WithoutZero(const E* src, int64_t len) {
    uint32_t h = times33Seed;
    const int64_t taken = times33InStretches(src, len, h);
    return times33ByFour(src + taken, len - taken, h);
}

} // namespace

template <class E>
tavStatus hashShiftXor(const E* pSrc, int32_t len, uint32_t* pHashVal) {
    if (const auto bad = Arguments::pointers(pSrc, pHashVal).lengths(len); bad.failed()) return bad.status;
    const int32_t lasting = std::min(len, 32);
    *pHashVal = shiftXorByFour(pSrc + (len - lasting), lasting);
    return tavStsNoError;
}

template <class E>
tavStatus hashTimes31(const E* pSrc, int32_t len, uint32_t* pHashVal) {
    if (const auto bad = Arguments::pointers(pSrc, pHashVal).lengths(len); bad.failed()) return bad.status;
    *pHashVal = times31(pSrc, len);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus hashTimes33(const E* pSrc, int32_t len, uint32_t* pHashVal) {
    if (const auto bad = Arguments::pointers(pSrc, pHashVal).lengths(len); bad.failed()) return bad.status;
    *pHashVal = times33WithoutZero(pSrc, zeroTerminatedLength<E>(pSrc, len));
    return tavStsNoError;
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template tavStatus hashShiftXor(const E*, int32_t, uint32_t*);                                           \
    template tavStatus hashTimes31(const E*, int32_t, uint32_t*);                                            \
    template tavStatus hashTimes33(const E*, int32_t, uint32_t*);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
