#include "shared/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace lumetry {

void reserveStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken, which is this one.
        if (fcntl(descriptor, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDONLY));
        }
    }
}

} // namespace lumetry
