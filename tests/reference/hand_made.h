// Programs written instruction by instruction, for what no pattern compiles to and for the reference's own
// tests. A program can be searched as it is or be put into a block that the library accepts.
#pragma once

#include "reference/reference_engine.h"

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

namespace tav::reference {

using Code = std::vector<regex::Instruction>;

inline regex::Instruction make(uint32_t op, int32_t a = 0, int32_t b = 0, int32_t c = 0) {
    return {op, a, b, c, nullptr};
}
inline regex::Instruction byte(char c) {
    return make(regex::OP_CHAR, static_cast<uint8_t>(c));
}
inline regex::Instruction text(const char* bytes) {
    return {regex::OP_STRING, 0, static_cast<int32_t>(std::strlen(bytes)), 0, bytes};
}
inline regex::Instruction greedy(int32_t min, int32_t max = regex::unboundedRepeat) {
    return make(regex::OP_GREEDY, min, max);
}
inline regex::Instruction lazy(int32_t min, int32_t max = regex::unboundedRepeat) {
    return make(regex::OP_LAZY, min, max);
}
inline regex::Instruction alternative(int32_t id, uint32_t options = 0) {
    return make(regex::OP_ALT_END, id, static_cast<int32_t>(options));
}

/// Joins pieces of programs.
inline Code operator+(Code left, const Code& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Opener, body and end of a bracket; `c` is the opener's third operand.
inline Code bracket(uint32_t op, int32_t id, const Code& body, int32_t c = 0) {
    return Code{make(op, id, static_cast<int32_t>(body.size()), c)} + body +
           Code{make(regex::OP_GROUP_END, id)};
}

inline Program programOfCode(const Code& code, int32_t groupCount = 1) {
    Program program;
    program.code = code.data();
    program.codeLength = static_cast<int32_t>(code.size());
    program.groupCount = groupCount;
    return program;
}

struct BlockDeleter {
    void operator()(tavRegExpContext* block) const { ::operator delete(block); }
};
using Block = std::unique_ptr<tavRegExpContext, BlockDeleter>;

/// A block of exactly `size` bytes, filled with a pattern of bytes that no program holds.
inline Block makeBlock(std::size_t size) {
    void* const memory = ::operator new(size);
    std::memset(memory, 0xA5, size);
    return Block(static_cast<tavRegExpContext*>(memory));
}

/// The program as a block that can be searched through the exported functions.
inline Block blockOf(const Program& program) {
    const std::size_t codeBytes = static_cast<std::size_t>(program.codeLength) * sizeof(regex::Instruction);
    Block block = makeBlock(regex::programOffset + codeBytes + sizeof(regex::Instruction));
    block->tag = regex::contextTag;
    block->options = program.options;
    block->codeLength = program.codeLength;
    block->groupCount = program.groupCount;
    block->lastLiteral = program.lastLiteral;
    block->matchLimit = program.matchLimit;
    block->format = program.format;
    block->searchHint = 0;
    if (codeBytes != 0) std::memcpy(regex::programOf(*block), program.code, codeBytes);
    return block;
}

} // namespace tav::reference
