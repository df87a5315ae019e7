#include "platform/linux/x11/capture/redirection.h"

#include <xcb/composite.h>

namespace lumetry::x11 {

CaptureRedirection::CaptureRedirection(Connection& connection)
    : connection_(connection),
      isAvailable_(connection.extensions().composite && connection.extensions().render) {}

CaptureRedirection::~CaptureRedirection() {
    if (holders_ > 0) {
        holders_ = 1;
        release();
    }
}

Token CaptureRedirection::hold() {
    if (!isAvailable_) {
        return {};
    }
    if (holders_++ == 0) {
        began_ = connection_.runLoop().now();
        xcb_composite_redirect_subwindows(connection_.get(), connection_.root(),
                                          XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    }
    return Token(lifetime_.guard([this] { release(); }));
}

bool CaptureRedirection::isComplete() const {
    constexpr double drawingSeconds = 1;
    return holders_ > 0 && connection_.runLoop().now() >= began_ + drawingSeconds;
}

void CaptureRedirection::release() {
    if (--holders_ == 0) {
        xcb_composite_unredirect_subwindows(connection_.get(), connection_.root(),
                                            XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        connection_.flush();
    }
}

} // namespace lumetry::x11
