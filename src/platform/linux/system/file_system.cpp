#include "platform/linux/system/file_system.h"

#include <fcntl.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <system_error>

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

std::filesystem::path bundleOf(const std::filesystem::path& executable) {
    const auto programs = executable.parent_path();
    const auto contents = programs.parent_path();
    auto bundle = contents.parent_path();
    const bool isBundle = programs.filename() == "MacOS" && contents.filename() == "Contents" &&
                          bundle.extension() == ".app";
    return isBundle ? bundle : std::filesystem::path();
}

std::optional<std::vector<std::string>>
LinuxFileSystem::contentsOfDirectory(const std::string& path) {
    std::error_code error;
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    return error ? std::nullopt : std::optional(std::move(names));
}

bool LinuxFileSystem::fileExists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

void LinuxFileSystem::appendPrivately(const std::string& path, std::string_view text) {
    // Folders such as /tmp are shared: what somebody else has put there under that name, be it a
    // link, a pipe or a file of theirs, is left alone.
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
             S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        return;
    }
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
        status.st_nlink == 1) {
        // One write for the whole text, so that lines of two programs do not mix.
        [[maybe_unused]] const auto written = write(descriptor, text.data(), text.size());
    }
    close(descriptor);
}

} // namespace lumetry
