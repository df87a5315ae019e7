#include "platform/linux/wayland/outputs/outputs.h"

#include <kde-output-order-v1-client-protocol.h>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client-protocol.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <tuple>

namespace lumetry::wayland {
namespace {

constexpr std::uint32_t outputVersion = 4;
constexpr std::uint32_t placesVersion = 3;

/// What the compositor has said of an output. Numbers are as it gives them: pixels, or points.
struct Description {
    std::string name;
    Point place;         ///< points, as far as wl_output says it
    Size mode;           ///< pixels
    bool turned = false; ///< by a quarter: the mode's width is the height
    int bufferScale = 1;
    std::optional<Point> logicalPlace; ///< points
    std::optional<Size> logicalSize;   ///< points
};

bool isQuarterTurn(std::int32_t transform) {
    return transform == WL_OUTPUT_TRANSFORM_90 || transform == WL_OUTPUT_TRANSFORM_270 ||
           transform == WL_OUTPUT_TRANSFORM_FLIPPED_90 ||
           transform == WL_OUTPUT_TRANSFORM_FLIPPED_270;
}

/// Scales are 120ths; what sizes in whole points say is near one.
double nearestScale(double scale) {
    constexpr double steps = 120;
    return std::max(std::round(scale * steps), 1.0) / steps;
}

/// Absent while the compositor has not said enough.
std::optional<Output> outputFrom(std::uint32_t global, const Description& description) {
    Size pixels = description.mode;
    if (description.turned) {
        std::swap(pixels.width, pixels.height);
    }
    const double whole = description.bufferScale;
    const Size points =
        description.logicalSize.value_or(Size{pixels.width / whole, pixels.height / whole});
    if (points.width <= 0 || points.height <= 0) {
        return std::nullopt;
    }
    const Point place = description.logicalPlace.value_or(description.place);
    Output output;
    output.global = global;
    output.name = description.name;
    output.frame = {place.x, place.y, points.width, points.height};
    output.scale = pixels.width > 0 ? nearestScale(pixels.width / points.width) : whole;
    output.bufferScale = description.bufferScale;
    return output;
}

} // namespace

Rect OutputLayout::toScreenSpace(const Rect& onDesktop) const {
    if (outputs.empty()) {
        return onDesktop;
    }
    const Rect& primary = outputs.front().frame;
    return {onDesktop.x - primary.x, primary.maxY() - onDesktop.maxY(), onDesktop.width,
            onDesktop.height};
}

Rect OutputLayout::fromScreenSpace(const Rect& rect) const {
    if (outputs.empty()) {
        return rect;
    }
    const Rect& primary = outputs.front().frame;
    return {rect.x + primary.x, primary.maxY() - rect.maxY(), rect.width, rect.height};
}

struct Outputs::Entry {
    std::uint32_t global = 0;
    Description coming; ///< until the compositor says that it is done
    std::optional<Output> output;
    Owned<wl_output> proxy;
    Owned<zxdg_output_v1> place;

    void commit() { output = outputFrom(global, coming); }
    static Description& of(void* data) { return static_cast<Entry*>(data)->coming; }
};

struct Outputs::OutputEvents {
    static void geometry(void* data, wl_output* /*output*/, std::int32_t x, std::int32_t y,
                         std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*subpixel*/,
                         const char* /*make*/, const char* /*model*/, std::int32_t transform) {
        Entry::of(data).place = {static_cast<double>(x), static_cast<double>(y)};
        Entry::of(data).turned = isQuarterTurn(transform);
    }
    static void mode(void* data, wl_output* /*output*/, std::uint32_t flags, std::int32_t width,
                     std::int32_t height, std::int32_t /*refresh*/) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
            Entry::of(data).mode = {static_cast<double>(width), static_cast<double>(height)};
        }
    }
    static void done(void* data, wl_output* /*output*/) { static_cast<Entry*>(data)->commit(); }
    static void scale(void* data, wl_output* /*output*/, std::int32_t factor) {
        Entry::of(data).bufferScale = std::max(factor, 1);
    }
    static void name(void* data, wl_output* /*output*/, const char* name) {
        Entry::of(data).name = name;
    }
    static void description(void* /*data*/, wl_output* /*output*/, const char* /*text*/) {}
};

struct Outputs::PlaceEvents {
    static void position(void* data, zxdg_output_v1* /*place*/, std::int32_t x, std::int32_t y) {
        Entry::of(data).logicalPlace = Point{static_cast<double>(x), static_cast<double>(y)};
    }
    static void size(void* data, zxdg_output_v1* /*place*/, std::int32_t width,
                     std::int32_t height) {
        Entry::of(data).logicalSize = Size{static_cast<double>(width), static_cast<double>(height)};
    }
    static void done(void* data, zxdg_output_v1* /*place*/) { static_cast<Entry*>(data)->commit(); }
    static void name(void* data, zxdg_output_v1* /*place*/, const char* name) {
        Entry::of(data).name = name;
    }
    static void description(void* /*data*/, zxdg_output_v1* /*place*/, const char* /*text*/) {}
};

struct Outputs::OrderEvents {
    static void output(void* data, kde_output_order_v1* /*order*/, const char* name) {
        static_cast<Outputs*>(data)->pendingNames_.emplace_back(name);
    }
    static void done(void* data, kde_output_order_v1* /*order*/) {
        auto& outputs = *static_cast<Outputs*>(data);
        outputs.names_ = std::exchange(outputs.pendingNames_, {});
    }
};

Outputs::Outputs(Connection& connection)
    : connection_(connection), places_(connection.bindFirst<zxdg_output_manager_v1>(
                                   zxdg_output_manager_v1_interface, placesVersion)),
      order_(connection.bindFirst<kde_output_order_v1>(kde_output_order_v1_interface, 1)) {
    if (order_) {
        static constexpr kde_output_order_v1_listener listener = {OrderEvents::output,
                                                                  OrderEvents::done};
        kde_output_order_v1_add_listener(order_.get(), &listener, this);
    }
    offered_ = connection.onOffered([this](const Global& global) { add(global); });
    withdrawn_ = connection.onWithdrawn([this](const Global& global) {
        std::erase_if(entries_, [&](const auto& entry) { return entry->global == global.name; });
    });
    batches_ = connection.onEventsHandled([this] { update(); });
    const std::vector<Global> globals = connection.globals();
    for (const Global& global : globals) {
        add(global);
    }
    connection.roundTrip();
    update();
}

Outputs::~Outputs() = default;

void Outputs::add(const Global& global) {
    if (global.interface != wl_output_interface.name) {
        return;
    }
    static constexpr wl_output_listener listener = {
        OutputEvents::geometry, OutputEvents::mode, OutputEvents::done,
        OutputEvents::scale,    OutputEvents::name, OutputEvents::description};
    auto entry = std::make_unique<Entry>();
    entry->global = global.name;
    entry->proxy = connection_.bind<wl_output>(global, wl_output_interface, outputVersion);
    wl_output_add_listener(entry->proxy.get(), &listener, entry.get());
    if (places_) {
        describePlace(*entry);
    }
    entries_.push_back(std::move(entry));
}

void Outputs::describePlace(Entry& entry) {
    static constexpr zxdg_output_v1_listener listener = {PlaceEvents::position, PlaceEvents::size,
                                                         PlaceEvents::done, PlaceEvents::name,
                                                         PlaceEvents::description};
    entry.place.reset(zxdg_output_manager_v1_get_xdg_output(places_.get(), entry.proxy.get()));
    zxdg_output_v1_add_listener(entry.place.get(), &listener, &entry);
}

wl_output* Outputs::proxy(std::uint32_t global) const {
    const auto found = std::ranges::find_if(
        entries_, [global](const auto& entry) { return entry->global == global; });
    return found == entries_.end() ? nullptr : (*found)->proxy.get();
}

void Outputs::update() {
    OutputLayout layout;
    for (const auto& entry : entries_) {
        if (entry->output) {
            layout.outputs.push_back(*entry->output);
        }
    }
    std::ranges::stable_sort(layout.outputs, {}, [this](const Output& output) {
        const auto place = std::ranges::find(names_, output.name) - names_.begin();
        // Where the compositor knows no order, the desktop's origin is where the primary one lies.
        const bool atOrigin = output.frame.origin() == Point{};
        return std::tuple(place, !atOrigin);
    });
    if (layout != layout_) {
        layout_ = std::move(layout);
        changeHandlers_.call();
    }
}

} // namespace lumetry::wayland
