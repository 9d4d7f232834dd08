#include "bench/unicode_peers.h"

#include "tavch.h"

#include <iconv.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <array>
#include <vector>

namespace tav::bench {

// ----------------------------------------------------------------------------------------------- conversions

std::size_t plainToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen) {
    const uint8_t *p = src, *const end = src + srcLen;
    uint16_t *to = dst, *const toEnd = dst + dstLen;
    const auto follows = [&](std::ptrdiff_t i) { return i < end - p && (p[i] & 0xC0) == 0x80; };
    const auto bits = [&](std::ptrdiff_t i) { return p[i] & 0x3Fu; };
    while (p != end && to != toEnd) {
        const uint32_t lead = *p;
        uint32_t value = lead;
        int length = 1;
        if (lead >= 0x80) {
            if (lead >= 0xC2 && lead < 0xE0) {
                if (follows(1)) value = (lead & 0x1F) << 6 | bits(1), length = 2;
            } else if (lead >= 0xE0 && lead < 0xF0) {
                if (follows(1) && follows(2) && (lead > 0xE0 || p[1] >= 0xA0))
                    value = (lead & 0x0F) << 12 | bits(1) << 6 | bits(2), length = 3;
            } else if (lead >= 0xF0 && lead < 0xF8) {
                if (follows(1) && follows(2) && follows(3) && (lead > 0xF0 || p[1] >= 0x90))
                    value = (lead & 0x07) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3), length = 4;
            } else if (lead >= 0xF8 && lead < 0xFE) {
                const int announced = lead < 0xFC ? 5 : 6;
                uint32_t form = lead & (lead < 0xFC ? 3 : 1);
                int i = 1;
                for (; i < announced && follows(i); ++i)
                    form = form << 6 | bits(i);
                if (i == announced && form >= (announced == 5 ? 0x200000u : 0x4000000u))
                    value = form, length = announced;
            }
        }
        if (value < 0x10000) {
            *to++ = static_cast<uint16_t>(value);
        } else {
            if (toEnd - to < 2) break;
            *to++ = static_cast<uint16_t>(0xD800 | ((value - 0x10000) >> 10 & 0x3FF));
            *to++ = static_cast<uint16_t>(0xDC00 | (value & 0x3FF));
        }
        p += length;
    }
    return static_cast<std::size_t>(to - dst);
}

std::size_t plainToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen) {
    const uint16_t *p = src, *const end = src + srcLen;
    uint8_t *to = dst, *const toEnd = dst + dstLen;
    const auto put = [&](uint32_t byte) { *to++ = static_cast<uint8_t>(byte); };
    while (p != end) {
        uint32_t value = *p;
        int units = 1;
        if ((value & 0xFC00) == 0xD800 && end - p > 1 && (p[1] & 0xFC00) == 0xDC00) {
            value = ((value & 0x3FF) << 10 | (p[1] & 0x3FFu)) + 0x10000;
            units = 2;
        }
        if (value < 0x80) {
            if (toEnd - to < 1) break;
            put(value);
        } else if (value < 0x800) {
            if (toEnd - to < 2) break;
            put(0xC0 | value >> 6);
            put(0x80 | (value & 0x3F));
        } else if (value < 0x10000) {
            if (toEnd - to < 3) break;
            put(0xE0 | value >> 12);
            put(0x80 | (value >> 6 & 0x3F));
            put(0x80 | (value & 0x3F));
        } else {
            if (toEnd - to < 4) break;
            put(0xF0 | value >> 18);
            put(0x80 | (value >> 12 & 0x3F));
            put(0x80 | (value >> 6 & 0x3F));
            put(0x80 | (value & 0x3F));
        }
        p += units;
    }
    return static_cast<std::size_t>(to - dst);
}

std::size_t icuToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen) {
    int32_t written;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(dst), static_cast<int32_t>(dstLen), &written,
                         reinterpret_cast<const char*>(src), static_cast<int32_t>(srcLen), 0xFFFD, nullptr,
                         &error);
    return static_cast<std::size_t>(written);
}

std::size_t icuToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen) {
    int32_t written;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(reinterpret_cast<char*>(dst), static_cast<int32_t>(dstLen), &written,
                       reinterpret_cast<const UChar*>(src), static_cast<int32_t>(srcLen), 0xFFFD, nullptr,
                       &error);
    return static_cast<std::size_t>(written);
}

namespace {

template <class In, class Out>
std::size_t runIconv(iconv_t converter, const In* src, std::size_t srcLen, Out* dst, std::size_t dstLen) {
    auto* in = const_cast<char*>(reinterpret_cast<const char*>(src));
    auto* out = reinterpret_cast<char*>(dst);
    std::size_t inLeft = srcLen * sizeof(In), outLeft = dstLen * sizeof(Out);
    iconv(converter, &in, &inLeft, &out, &outLeft);
    return dstLen - outLeft / sizeof(Out);
}

} // namespace

std::size_t iconvToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen) {
    static const iconv_t converter = iconv_open("UTF-16LE", "UTF-8");
    return runIconv(converter, src, srcLen, dst, dstLen);
}

std::size_t iconvToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen) {
    static const iconv_t converter = iconv_open("UTF-8", "UTF-16LE");
    return runIconv(converter, src, srcLen, dst, dstLen);
}

// ---------------------------------------------------------------------------------------------- case mapping

namespace {

using Table = std::vector<uint16_t>;

/// The library's own mapping of every unit: what the loops over tables map to must not differ.
Table tableOf(tavStatus (*map)(uint16_t*, int32_t)) {
    Table table(0x10000);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<uint16_t>(i);
    map(table.data(), 0x10000);
    return table;
}

/// Blocks of 64 differences, found through a first stage.
struct Stages {
    std::array<uint16_t, 1024> stage1{};
    std::vector<int16_t> stage2;

    explicit Stages(const Table& table) {
        std::vector<std::array<int16_t, 64>> blocks;
        for (std::size_t block = 0; block < stage1.size(); ++block) {
            std::array<int16_t, 64> content;
            for (std::size_t i = 0; i < 64; ++i)
                content[i] = static_cast<int16_t>(table[block * 64 + i] - (block * 64 + i));
            std::size_t number = 0;
            while (number < blocks.size() && blocks[number] != content)
                ++number;
            if (number == blocks.size()) {
                blocks.push_back(content);
                stage2.insert(stage2.end(), content.begin(), content.end());
            }
            stage1[block] = static_cast<uint16_t>(number * 64);
        }
    }

    uint16_t operator[](uint16_t unit) const {
        return static_cast<uint16_t>(unit + stage2[stage1[unit >> 6] | (unit & 63u)]);
    }
};

const Table lowerTable = tableOf(tavsLowercase_16u_I);
const Table upperTable = tableOf(tavsUppercase_16u_I);
const Stages lowerStages{lowerTable};
const Stages upperStages{upperTable};

template <class Mapping>
std::size_t mapBy(const Mapping& mapping, const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    for (std::size_t i = 0; i < srcLen; ++i)
        dst[i] = mapping[src[i]];
    return srcLen;
}

template <class Mapping>
int32_t compareBy(const Mapping& mapping, const uint16_t* left, const uint16_t* right, std::size_t len) {
    for (std::size_t i = 0; i < len; ++i)
        if (const int32_t difference = mapping[left[i]] - mapping[right[i]]; difference != 0)
            return difference;
    return 0;
}

template <class Function>
std::size_t mapByIcu(Function function, const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    UErrorCode error = U_ZERO_ERROR;
    return static_cast<std::size_t>(function(reinterpret_cast<UChar*>(dst), static_cast<int32_t>(2 * srcLen),
                                             reinterpret_cast<const UChar*>(src),
                                             static_cast<int32_t>(srcLen), "", &error));
}

} // namespace

std::size_t tableLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapBy(lowerTable, src, srcLen, dst);
}

std::size_t tableUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapBy(upperTable, src, srcLen, dst);
}

std::size_t stagesLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapBy(lowerStages, src, srcLen, dst);
}

std::size_t stagesUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapBy(upperStages, src, srcLen, dst);
}

std::size_t icuUnitsLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    for (std::size_t i = 0; i < srcLen; ++i)
        dst[i] = static_cast<uint16_t>(u_tolower(src[i]));
    return srcLen;
}

std::size_t icuUnitsUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    for (std::size_t i = 0; i < srcLen; ++i)
        dst[i] = static_cast<uint16_t>(u_toupper(src[i]));
    return srcLen;
}

std::size_t icuStringLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapByIcu(u_strToLower, src, srcLen, dst);
}

std::size_t icuStringUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    return mapByIcu(u_strToUpper, src, srcLen, dst);
}

int32_t tableCompare(const uint16_t* left, const uint16_t* right, std::size_t len) {
    return compareBy(lowerTable, left, right, len);
}

int32_t stagesCompare(const uint16_t* left, const uint16_t* right, std::size_t len) {
    return compareBy(lowerStages, left, right, len);
}

int32_t icuCompare(const uint16_t* left, const uint16_t* right, std::size_t len) {
    return u_memcasecmp(reinterpret_cast<const UChar*>(left), reinterpret_cast<const UChar*>(right),
                        static_cast<int32_t>(len), U_FOLD_CASE_DEFAULT);
}

} // namespace tav::bench
