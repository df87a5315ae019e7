#pragma once

namespace lumetry {

/// Puts /dev/null where a program was started without standard input, output or error, so that no
/// file or connection that is opened later gets their numbers and what is meant for them. Writing
/// to such an output fails. To be called before anything is opened.
void reserveStandardStreams();

} // namespace lumetry
