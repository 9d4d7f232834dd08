// Successive matches, and the same search inside a replacement, beside the reference engine: settings,
// pattern, subject.
#include "search_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tavfuzz::Input input(data, size);
    tavfuzz::SearchInput search = tavfuzz::readSearch(input);
    search.trial.options += 'g';
    tavfuzz::compareWithReference(search);
    return 0;
}
