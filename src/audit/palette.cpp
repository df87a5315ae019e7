#include "audit/palette.h"

#include "base/color_metrics.h"
#include "base/number_text.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace lumetry {
namespace {

template<typename Value, typename Key>
class Counter {
public:
    void add(Key key, const Value& value) {
        ++counted_.try_emplace(std::move(key), Inventory::Counted<Value>{value})
              .first->second.count;
    }
    /// The most frequent first, of equally frequent ones the least.
    [[nodiscard]] std::vector<Inventory::Counted<Value>> sorted() const {
        std::vector<Inventory::Counted<Value>> values;
        values.reserve(counted_.size());
        for (const auto& [key, value] : counted_) {
            values.push_back(value);
        }
        std::ranges::stable_sort(values, std::greater(), &Inventory::Counted<Value>::count);
        return values;
    }

private:
    std::map<Key, Inventory::Counted<Value>> counted_;
};

} // namespace

std::vector<PaletteColor> paletteOf(std::span<const Component> components) {
    std::map<std::string, PaletteColor> colors;
    for (std::size_t place = 0; place < components.size(); ++place) {
        const Component& component = components[place];
        const auto add = [&](const Color& color, bool isFill, bool estimated) {
            auto& known = colors
                              .try_emplace(hexString(color),
                                           PaletteColor{color, 0, false, false, true, place})
                              .first->second;
            ++known.count;
            known.isFill = known.isFill || isFill;
            known.isText = known.isText || !isFill;
            known.estimated = known.estimated && estimated;
        };
        if (component.measures.surface.fill) {
            add(*component.measures.surface.fill, true, !component.evenFill);
        }
        if (component.textColor && component.showsText) {
            add(*component.textColor, false, component.textColorIsEstimated);
        }
    }
    std::vector<PaletteColor> palette;
    palette.reserve(colors.size());
    for (const auto& [hex, color] : colors) {
        palette.push_back(color);
    }
    std::ranges::stable_sort(palette, std::greater(), &PaletteColor::count);
    return palette;
}

Inventory inventoryOf(std::span<const Component> components) {
    Counter<Typeface, std::tuple<double, std::string, bool>> type;
    Counter<int, int> radii;
    Counter<std::string, std::string> spacing;
    for (const Component& component : components) {
        const SurfaceInfo& surface = component.measures.surface;
        const auto& padding = component.measures.padding;
        if (component.showsText && component.typeface) {
            const Typeface& face = *component.typeface;
            type.add({face.size, face.family, face.bold}, face);
        }
        if (surface.radius) {
            radii.add(*surface.radius, *surface.radius);
        }
        if (padding) {
            spacing.add("padding " + *padding, "padding " + *padding);
        }
        if (const auto& gaps = component.measures.spacing) {
            const std::string gap = "gap " + wholeNumber(gaps->gap) + "px";
            spacing.add(gap, gap);
        }
    }
    return {paletteOf(components), type.sorted(), radii.sorted(), spacing.sorted()};
}

} // namespace lumetry
