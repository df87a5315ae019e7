#include "platform/linux/kwin/screen_capture.h"

#include "platform/linux/kwin/patience.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace lumetry::kwin {
namespace {

/// For how long a window is taken to look as it did, whatever it does.
constexpr auto freshness = std::chrono::milliseconds(100);
/// How long a window draws nothing before it is taken to be at rest.
constexpr auto rest = std::chrono::milliseconds(50);
/// For how long after a look at a window more of them are to be expected: while the pointer moves,
/// and while it does not.
constexpr auto attentionMoving = std::chrono::milliseconds(500);
constexpr auto attentionAtRest = std::chrono::seconds(5);
constexpr auto longestUnused = std::chrono::seconds(10);

double seconds(std::chrono::duration<double> duration) {
    return duration.count();
}

const Window* find(const std::optional<std::vector<Window>>& windows, const auto& isWanted) {
    const auto found =
        windows ? std::ranges::find_if(*windows, isWanted) : std::vector<Window>::const_iterator();
    return windows && found != windows->end() ? &*found : nullptr;
}

/// @param width of the window, in points: the scale that KWin tells may be another than that of the
///     pixels
PictureCapture pictureOf(Bitmap bitmap, double width) {
    const double scale = bitmap.width / width;
    return PictureCapture(std::move(bitmap), scale);
}

} // namespace

KWinCapture::Shot::Shot(Screenshot screenshot, Clock::time_point lastWanted)
    : picture(pictureOf(std::move(screenshot.bitmap), screenshot.windowSize.width)),
      windowSize(screenshot.windowSize), asked(screenshot.asked), right(asked), wanted(lastWanted) {
}

KWinCapture::KWinCapture(Bridge& bridge, FileDescriptorWatcher& watcher, RunLoop& runLoop,
                         std::function<std::vector<Output>()> outputs)
    : bridge_(bridge), runLoop_(runLoop), outputs_(std::move(outputs)), screenshots_(watcher),
      pointerMoves_(bridge.onPointer([this] { pointerMoved(); })),
      damages_(bridge.onDamage([this](const std::string& window) {
          if (shots_.contains(window) && awaitingRest_.insert(window).second) {
              awaitRest(window);
          }
      })) {}

/// When a picture of the window must have been asked for to show what it looks like.
KWinCapture::Clock::time_point KWinCapture::usableSince(const Window& window) const {
    const auto recently = Clock::now() - freshness;
    return std::min(bridge_.unchangedSince(window).value_or(recently), recently);
}

/// Whether the window surely looks like that now.
bool KWinCapture::confirm(Shot& shot, const Window& window) const {
    const auto since = bridge_.unchangedSince(window);
    const bool isRight = since && shot.asked >= *since && shot.windowSize == window.frame.size();
    if (isRight) {
        shot.right = Clock::now();
    }
    return isRight;
}

bool KWinCapture::isUsable(Shot& shot, const Window& window) const {
    return confirm(shot, window) ||
           (Clock::now() - shot.right < freshness && shot.windowSize == window.frame.size());
}

KWinCapture::Shot& KWinCapture::keep(const Window& window, Screenshot&& screenshot) {
    if (!std::exchange(dropsUnused_, true)) {
        runLoop_.after(seconds(longestUnused), lifetime_.guard([this] { dropUnused(); }));
    }
    const auto before = shots_.find(window.id);
    const auto lastWanted = before == shots_.end() ? Clock::now() : before->second.wanted;
    shots_.erase(window.id);
    return shots_.try_emplace(window.id, std::move(screenshot), lastWanted).first->second;
}

/// Null when the window cannot be captured.
KWinCapture::Shot* KWinCapture::shotOf(const Window& window, Clock::time_point deadline) {
    const auto known = shots_.find(window.id);
    Shot* shot =
        known != shots_.end() && isUsable(known->second, window) ? &known->second : nullptr;
    if (shot == nullptr) {
        screenshots_.begin(window, usableSince(window));
        auto screenshot = screenshots_.finish(window.id, deadline);
        if (!screenshot) {
            shots_.erase(window.id);
            return nullptr;
        }
        shot = &keep(window, std::move(*screenshot));
    }
    shot->wanted = Clock::now();
    return shot;
}

/// Has a picture on its way while the engine still asks what is under the pointer. The window may
/// change because the pointer has come: what it looked like before will do for now.
void KWinCapture::pointerMoved() {
    const auto& at = bridge_.knownPointer();
    const Window* const window = find(bridge_.knownWindows(), [&at](const Window& one) {
        return at && one.frame.contains(*at) && one.pid != getpid();
    });
    if (window == nullptr) {
        return;
    }
    if (auto arrived = screenshots_.arrived(window->id)) {
        keep(*window, std::move(*arrived));
    }
    const auto shot = shots_.find(window->id);
    if (shot != shots_.end() && !confirm(shot->second, *window) &&
        Clock::now() - shot->second.wanted < attentionMoving) {
        screenshots_.begin(*window, usableSince(*window));
    }
}

void KWinCapture::awaitRest(const std::string& windowId) {
    runLoop_.after(seconds(rest), lifetime_.guard([this, windowId] { captureAtRest(windowId); }));
}

void KWinCapture::captureAtRest(const std::string& windowId) {
    const auto shot = shots_.find(windowId);
    const Window* const window =
        find(bridge_.knownWindows(), [&windowId](const Window& one) { return one.id == windowId; });
    const auto now = Clock::now();
    const bool isOfInterest =
        shot != shots_.end() && window != nullptr && now - shot->second.wanted < attentionAtRest;
    const auto unchangedSince = isOfInterest ? bridge_.unchangedSince(*window) : std::nullopt;
    if (unchangedSince && now - *unchangedSince < rest) {
        awaitRest(windowId);
        return;
    }
    awaitingRest_.erase(windowId);
    if (unchangedSince && !confirm(shot->second, *window)) {
        screenshots_.begin(*window, *unchangedSince);
    }
}

void KWinCapture::dropUnused() {
    const auto oldest = Clock::now() - longestUnused;
    std::erase_if(shots_, [oldest](const auto& entry) { return entry.second.wanted < oldest; });
    screenshots_.dropBefore(oldest);
    dropsUnused_ = !shots_.empty() || !screenshots_.isEmpty();
    if (dropsUnused_) {
        runLoop_.after(seconds(longestUnused), lifetime_.guard([this] { dropUnused(); }));
    }
}

double KWinCapture::scaleAt(const Rect& area) const {
    const auto outputs = outputs_();
    for (const Output& output : outputs) {
        if (output.frame.contains({area.midX(), area.midY()})) {
            return output.scale;
        }
    }
    return outputs.empty() ? 1 : outputs.front().scale;
}

/// The windows of an area over each other, the lowest first. Absent when one of them cannot be
/// captured.
/// @param area in KWin's coordinates
std::optional<Bitmap> KWinCapture::compose(const Rect& area, double scale) {
    const auto size = pixelSizeOf({0, 0, area.width * scale, area.height * scale});
    const auto& windows = bridge_.windows();
    if (!size || !windows) {
        return std::nullopt;
    }
    const auto deadline = Clock::now() + std::chrono::milliseconds(patienceMilliseconds);
    const auto isPartOf = [&area](const Window& window) {
        return !intersect(window.frame, area).isEmpty() && window.pid != getpid();
    };
    // Nothing below it shows, but for its round corners.
    const auto covers = [&area](const Window& window) {
        return intersect(window.frame, area) == area && window.opacity >= 1 &&
               window.kind == Kind::normal;
    };
    // KWin takes one frame for all that it is asked for at once.
    for (const Window& window : *windows) {
        if (!isPartOf(window)) {
            continue;
        }
        const auto known = shots_.find(window.id);
        if (known == shots_.end() || !isUsable(known->second, window)) {
            screenshots_.begin(window, usableSince(window));
        }
        if (covers(window)) {
            break;
        }
    }
    std::vector<std::pair<Point, Shot*>> shown;
    for (const Window& window : *windows) {
        if (!isPartOf(window)) {
            continue;
        }
        Shot* const shot = shotOf(window, deadline);
        if (shot == nullptr) {
            return std::nullopt;
        }
        if (shot->picture.picture().pixels.empty()) {
            continue; // it is gone
        }
        shown.emplace_back(window.frame.origin(), shot);
        if (covers(window)) {
            break;
        }
    }
    Bitmap composed(size->width, size->height);
    for (std::size_t place = shown.size(); place-- > 0;) {
        const auto& [origin, shot] = shown[place];
        const auto layer = shot->picture.captureBelow(
            {area.x - origin.x, area.y - origin.y, area.width, area.height}, 0, *size,
            Interpolation::none);
        for (std::size_t pixel = 0; layer && pixel < composed.pixels.size(); ++pixel) {
            const std::uint32_t source = layer->pixels[pixel];
            const std::uint32_t alpha = source >> 24U;
            if (alpha == 0xFFU) {
                composed.pixels[pixel] = source;
            } else if (alpha != 0) {
                const std::uint32_t below = composed.pixels[pixel];
                const auto mixed = [&](unsigned shift) {
                    const std::uint32_t under = (below >> shift) & 0xFFU;
                    const std::uint32_t over = (source >> shift) & 0xFFU;
                    return std::min(0xFFU, over + under * (0xFFU - alpha) / 0xFFU) << shift;
                };
                composed.pixels[pixel] = 0xFF000000U | mixed(16) | mixed(8) | mixed(0);
            }
        }
    }
    return composed;
}

std::optional<Bitmap> KWinCapture::captureBelow(const Rect& area, std::uint32_t /*windowNumber*/) {
    const auto outputs = outputs_();
    if (outputs.empty()) {
        return std::nullopt;
    }
    const Point origin = outputs.front().frame.origin();
    const Rect there = {area.x + origin.x, area.y + origin.y, area.width, area.height};
    return compose(there, scaleAt(there));
}

std::optional<Bitmap> KWinCapture::captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                IntSize size, Interpolation interpolation) {
    auto bitmap = captureBelow(area, windowNumber);
    if (!bitmap || area.isEmpty()) {
        return std::nullopt;
    }
    const double scale = bitmap->width / area.width;
    return PictureCapture(std::move(*bitmap), scale, area.origin())
        .captureBelow(area, windowNumber, size, interpolation);
}

bool KWinCapture::isAllowed() {
    constexpr auto trusted = std::chrono::seconds(2);
    if (!allowed_ || (!*allowed_ && Clock::now() - askedAt_ >= trusted)) {
        allowed_ = screenshots_.isAllowed();
        askedAt_ = Clock::now();
    }
    return *allowed_;
}

} // namespace lumetry::kwin
