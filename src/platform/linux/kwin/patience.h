#pragma once

namespace lumetry::kwin {

/// How long one answer of KWin is waited for.
inline constexpr int patienceMilliseconds = 500;

} // namespace lumetry::kwin
