#include "regex/compile/compiler.h"

#include "regex/compile/emitter.h"
#include "regex/compile/option_letters.h"
#include "regex/compile/parser.h"
#include "regex/compile/prescan.h"

namespace tav::regex::compiler {

namespace {

constexpr int32_t defaultMatchLimit = 10000;
constexpr int32_t wholeCharacters = 1;

Outcome readOptions(const char* letters, uint32_t& options) {
    options = 0;
    if (letters == nullptr) return {};
    for (; *letters != '\0'; ++letters) {
        const uint32_t bit = optionBit(*letters);
        if (bit == 0) return {tavStsBadOption, 0}; // the offset refers to the pattern, where nothing is wrong
        options |= bit;
    }
    return {};
}

/// From here on the block passes for a pattern, so its program is an empty one until it is complete.
void startHeader(tavRegExpContext& context, uint32_t options, int32_t groupCount) {
    context.tag = contextTag;
    context.options = options;
    context.codeLength = 0;
    context.groupCount = groupCount;
    context.lastLiteral = noFinalLiteral;
    context.matchLimit = defaultMatchLimit;
    context.format = wholeCharacters;
    context.searchHint = 0;
}

void completeHeader(tavRegExpContext& context, const Emitter& emitter) {
    const Instruction* const program = programOf(context);
    const int32_t length = emitter.length();
    context.codeLength = length;
    context.lastLiteral = requiredFinalLiteral(program, length, emitter.trackedLiteral());
    context.searchHint = searchHint(program, length, context.lastLiteral);
}

} // namespace

Outcome compile(const char* pattern, const char* options, tavRegExpContext& context) {
    uint32_t optionBits = 0;
    if (const Outcome outcome = readOptions(options, optionBits); outcome.failed()) return outcome;
    const PatternText text(pattern);
    int32_t groupCount = 0;
    if (const Outcome outcome = prescan(text, optionBits, groupCount); outcome.failed()) return outcome;
    startHeader(context, optionBits, groupCount);
    forgetPlan(context);

    Emitter emitter(programOf(context), static_cast<int32_t>(text.length() + 1), optionBits);
    if (const Outcome outcome = Parser(text, emitter, groupCount).parse(); outcome.failed()) return outcome;
    emitter.finish();
    completeHeader(context, emitter);
    return {};
}

} // namespace tav::regex::compiler
