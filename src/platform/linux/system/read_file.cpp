#include "platform/linux/system/read_file.h"

#include <fstream>

namespace lumetry {

std::optional<std::string> readFile(const std::filesystem::path& file, std::size_t mostBytes) {
    constexpr std::size_t blockBytes = 16384;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    // The files of processes do not know their sizes.
    std::string content;
    std::size_t got = 0;
    do {
        content.resize(got + blockBytes);
        stream.read(content.data() + got, static_cast<std::streamsize>(blockBytes));
        got += static_cast<std::size_t>(stream.gcount());
    } while (stream && got < mostBytes);
    if (stream.bad()) {
        return std::nullopt;
    }
    content.resize(got < mostBytes ? got : mostBytes);
    return content;
}

} // namespace lumetry
