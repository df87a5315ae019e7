#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumetry {

class Defaults;
class FileSystem;

/// A trace of how elements were found, for diagnosing particular applications. Written only when
/// the setting "lumetry.debug" is on: one line for each change of what was found.
class DetectLog {
public:
    DetectLog(Defaults& defaults, FileSystem& fileSystem)
        : defaults_(defaults), fileSystem_(fileSystem) {}

    /// Whether the log is written. The setting is read once, on first use.
    [[nodiscard]] bool on();

    /// The file that the log is written to, unless another one is named by that variable of the
    /// environment: a trace of one's own leaves the user's alone.
    static constexpr std::string_view url = "/tmp/lumetry-detect.log";
    static constexpr const char* urlVariable = "LUMETRY_DETECT_LOG";

    /// The key of the last line written: application, path and header, separated by "|".
    std::string lastKey;

    /// Adds a finished line to the file. Failures go unnoticed.
    void append(std::string_view line);

private:
    Defaults& defaults_;
    FileSystem& fileSystem_;
    std::optional<bool> on_;
};

} // namespace lumetry
