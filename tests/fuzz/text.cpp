#include "base/text.h"

#include "fuzz_input.h"

#include <string>

using namespace lumetry;

// NOLINTNEXTLINE(readability-identifier-naming): the name that the fuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::size_t count = input.byte();
    std::string any;
    while (!input.isEmpty()) {
        any += static_cast<char>(input.byte());
    }
    const std::string text = validUtf8(any);
    require(validUtf8(text) == text);
    require(validUtf8(lowerCase(text)) == lowerCase(text));

    const std::string middle = trimmed(text);
    require(text.find(middle) != std::string::npos && trimmed(middle) == middle);

    const std::string first = firstCharacters(text, count);
    require(text.starts_with(first) && validUtf8(first) == first);
    require(firstCharacters(first, count) == first);
    require(first.size() < text.size() || firstCharacters(text, count + 1) == text);
    require(removingOccurrences(text, first).size() <= text.size());

    // Bytes that form no characters are not asked for, but must do no harm.
    require(trimmed(any).size() <= any.size());
    require(any.starts_with(firstCharacters(any, count)));
    static_cast<void>(lowerCase(any));
    return 0;
}
