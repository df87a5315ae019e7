#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace lumetry {

/// What a variable of the environment says; the other text when it is not set, or empty.
[[nodiscard]] std::string environmentText(const char* name, std::string otherwise = {});

/// Where a Linux system keeps what tells applications apart.
struct SystemPlaces {
    std::filesystem::path processes = "/proc";
    /// Those that hold a folder "applications"; what comes first wins.
    std::vector<std::filesystem::path> dataFolders;
    /// Where programs are looked for by their names.
    std::vector<std::filesystem::path> programFolders;
    /// The user's languages, the best first, as in desktop entries ("de_AT", "de").
    std::vector<std::string> languages;

    /// Those that this program's environment names.
    [[nodiscard]] static SystemPlaces fromEnvironment();
};

/// What a locale's name stands for in desktop entries, the best first: "de_AT.UTF-8@euro" is
/// "de_AT@euro", "de_AT", "de@euro", "de". Nothing for the locales "C" and "POSIX".
[[nodiscard]] std::vector<std::string> languagesOfLocale(const std::string& locale);

} // namespace lumetry
