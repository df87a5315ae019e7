#include "platform/linux/atspi/tree/text_attributes.h"

#include "fuzz_input.h"

#include <array>
#include <cmath>
#include <memory>
#include <string>

using namespace lumetry;

namespace {

constexpr std::array<const char*, 6> names = {"family-name", "size",     "weight",
                                              "fg-color",    "bg-color", "style"};

bool isShare(double value) {
    return value >= 0 && value <= 1;
}

void requireSound(const AXDictionary& font) {
    require(!font.empty());
    for (const auto& [name, value] : font) {
        const auto text = value.as<std::string>();
        const auto number = value.as<AXNumber>();
        require(!text || !text->empty());
        require(!number || (std::isfinite(number->value) && number->value > 0));
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name that the fuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    atspi::TextAttributes attributes;
    while (!input.isEmpty()) {
        std::string& value = attributes[names.at(input.byte() % names.size())];
        for (std::size_t left = input.byte(); left > 0 && !input.isEmpty(); --left) {
            value += static_cast<char>(input.byte());
        }
    }
    for (const auto& [name, value] : atspi::runAttributes(attributes)) {
        if (const auto color = value.as<Color>()) {
            require(isShare(color->red) && isShare(color->green) && isShare(color->blue));
        }
        if (const auto font = value.as<std::shared_ptr<const AXDictionary>>()) {
            requireSound(**font);
        }
    }
    return 0;
}
