// Cutting a replacement template, beside its plain twin: the input is the template.
#include "input.h"
#include "regex/services/plain_replacement.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavfuzz;
    const std::string text = std::string(data, data + size).c_str();
    const tavtest::PlainTemplate plain = tavtest::readTemplate(text);
    Exact<char> zeroTerminated(std::vector<char>(text.c_str(), text.c_str() + text.size() + 1));
    int32_t bytes = 0;
    TAV_REQUIRE(tavsRegExpReplaceGetSize(zeroTerminated.get(), &bytes) == tavStsNoError);
    TAV_REQUIRE(bytes == static_cast<int32_t>(16 * text.size() + 16));
    Exact<uint64_t> block(static_cast<std::size_t>(bytes) / 8);
    auto* const context = reinterpret_cast<tavRegExpReplaceContext*>(block.get());
    const tavStatus status = tavsRegExpReplaceInit(zeroTerminated.get(), context);
    TAV_REQUIRE(status == (plain.malformed ? tavStsBadGroupReference : tavStsNoError));
    if (plain.malformed) return 0;
    TAV_REQUIRE(context->itemCount == static_cast<int32_t>(plain.pieces.size()));
    for (std::size_t i = 0; i < plain.pieces.size(); ++i) {
        const tavRegExpReplaceItem& item = context->items[i];
        const tavtest::Piece& piece = plain.pieces[i];
        TAV_REQUIRE(item.kind == (piece.isLiteral ? tavReplaceLiteral : tavReplaceGroup));
        if (piece.isLiteral) {
            TAV_REQUIRE(item.value == piece.text.size());
            TAV_REQUIRE(item.text >= zeroTerminated.get() &&
                        item.text + item.value < zeroTerminated.get() + zeroTerminated.length());
            TAV_REQUIRE(std::memcmp(item.text, piece.text.data(), item.value) == 0);
        } else {
            TAV_REQUIRE(item.value == piece.group);
        }
    }
    return 0;
}
