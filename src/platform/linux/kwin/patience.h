#pragma once

namespace lumetry::kwin {

/// How long anything of KWin may hold the program up.
inline constexpr int patienceMilliseconds = 500;

} // namespace lumetry::kwin
