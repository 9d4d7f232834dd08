// Compile and search once, beside the reference engine: settings, pattern, subject.
#include "search_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tavfuzz::Input input(data, size);
    tavfuzz::SearchInput search = tavfuzz::readSearch(input);
    std::erase(search.trial.options, 'g');
    tavfuzz::compareWithReference(search);
    return 0;
}
