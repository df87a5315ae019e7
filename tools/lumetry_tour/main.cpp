// Shows Lumetry at work without a screen: runs it on desktops of its own, from the first start on
// and over applications, and leaves a picture of each stop and a line of what is to be seen there.
//
//   lumetry_tour LUMETRY FOLDER
//
// LUMETRY is the program, FOLDER is where the pictures go.

#include "album.h"
#include "inspection.h"
#include "shell_tour.h"

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: lumetry_tour LUMETRY FOLDER\n";
        return 2;
    }
    try {
        const std::string lumetry = std::filesystem::absolute(argv[1]);
        lumetry::desktop::Album album(argv[2]);
        lumetry::desktop::tourApplication(lumetry, album);
        lumetry::desktop::tourPage(lumetry, album);
        lumetry::desktop::tourDensePage(lumetry, album);
        lumetry::desktop::tourShell(lumetry, album);
    } catch (const std::exception& failure) {
        std::cerr << "The tour ended early: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
