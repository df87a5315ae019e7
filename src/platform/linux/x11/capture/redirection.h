#pragma once

#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/x11/connection/connection.h"

#include <cstddef>

namespace lumetry::x11 {

/// Has the server keep each window's pixels apart from what covers it, for as long as anybody
/// wants that. The server itself puts the screen together from them, as before.
///
/// Without a compositing manager there is no other way to see what lies below a window. It costs
/// memory and a copy of whatever is drawn, so that it is not done all the time. It begins before
/// an overlay appears: pixels that are covered when it begins are lost until their application
/// draws them again, and the overlay's would be found in their place.
///
/// The same goes for what lies beyond the screens, where the server has kept nothing: applications
/// are asked to draw it when it begins.
///
/// A compositing manager does the same in its own way, which the server lets take precedence
/// whichever of the two comes first. It is done beside one too: managers leave out windows that
/// fill the screen, and say so to nobody.
class CaptureRedirection {
public:
    explicit CaptureRedirection(Connection& connection);
    CaptureRedirection(const CaptureRedirection&) = delete;
    CaptureRedirection& operator=(const CaptureRedirection&) = delete;
    ~CaptureRedirection();

    [[nodiscard]] Token hold();
    /// Whether it has been done for long enough for applications to have drawn everything.
    [[nodiscard]] bool isComplete() const;

private:
    void release();

    Connection& connection_;
    bool isAvailable_;
    std::size_t holders_ = 0;
    double began_ = 0; ///< RunLoop::now
    Lifetime lifetime_;
};

} // namespace lumetry::x11
