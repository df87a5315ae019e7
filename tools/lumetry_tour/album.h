#pragma once

#include "rig/x_connection.h"

#include <filesystem>
#include <string>

namespace lumetry::desktop {

/// The pictures of a tour, numbered in the order they are taken.
class Album {
public:
    explicit Album(std::filesystem::path folder);

    /// Takes a picture of the screen with the pointer, and says what is on it.
    void takePicture(const XConnection& server, const std::string& name, const std::string& line);

private:
    std::filesystem::path folder_;
    int count_ = 0;
};

} // namespace lumetry::desktop
