// Shows Lumetry at work without a screen: runs it over an application on a desktop of its own,
// leads the pointer from element to element, and leaves a picture of each stop and a line of what
// the glance showed there.
//
//   lumetry_tour LUMETRY FOLDER
//
// LUMETRY is the program, FOLDER is where the pictures go.

#include "tour.h"

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: lumetry_tour LUMETRY FOLDER\n";
        return 2;
    }
    try {
        lumetry::desktop::Tour tour(std::filesystem::absolute(argv[1]), argv[2]);
        tour.run();
    } catch (const std::exception& failure) {
        std::cerr << "The tour ended early: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
