#pragma once

#include <unistd.h>

#include <cstddef>
#include <iostream>

namespace lumetry {

/// One line on standard error that says how far an audit is, where that is a terminal.
class Progress {
public:
    void show(std::size_t done, std::size_t known) {
        if (!isTerminal_) {
            return;
        }
        std::cerr << clearLine;
        if (done == 0) {
            std::cerr << "reading elements: " << known;
        } else {
            std::cerr << "measuring: " << done << " of " << known;
        }
        std::cerr << std::flush;
        shown_ = true;
    }

    void clear() {
        if (shown_) {
            std::cerr << clearLine << std::flush;
        }
        shown_ = false;
    }

private:
    static constexpr const char* clearLine = "\r\033[K";

    bool isTerminal_ = isatty(STDERR_FILENO) == 1;
    bool shown_ = false;
};

} // namespace lumetry
