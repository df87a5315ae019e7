#include "platform/linux/system/own_bundle.h"

namespace lumetry {

std::filesystem::path bundleOf(const std::filesystem::path& executable) {
    const auto programs = executable.parent_path();
    const auto contents = programs.parent_path();
    auto bundle = contents.parent_path();
    const bool isBundle = programs.filename() == "MacOS" && contents.filename() == "Contents" &&
                          bundle.extension() == ".app";
    return isBundle ? bundle : std::filesystem::path();
}

} // namespace lumetry
