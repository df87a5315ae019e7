#include "rig/accessible_tree.h"

#include "rig/bus.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

constexpr const char* accessibleInterface = "org.a11y.atspi.Accessible";
constexpr const char* componentInterface = "org.a11y.atspi.Component";

std::string textOf(const Variant& variant) {
    return isOfType(variant, "s") ? g_variant_get_string(variant.get(), nullptr) : "";
}

} // namespace

std::string Accessible::role() const {
    const auto answer = call(*bus_, {application_, path_}, accessibleInterface, "GetRoleName");
    return answer ? textOf(Variant(g_variant_get_child_value(answer.get(), 0))) : "";
}

std::string Accessible::name() const {
    return textOf(property(*bus_, {application_, path_}, accessibleInterface, "Name"));
}

std::optional<Rect> Accessible::extents() const {
    constexpr std::uint32_t screenCoordinates = 0;
    const auto answer = call(*bus_, {application_, path_}, componentInterface, "GetExtents",
                             g_variant_new("(u)", screenCoordinates));
    if (!isOfType(answer, "((iiii))")) {
        return std::nullopt;
    }
    gint32 x = 0;
    gint32 y = 0;
    gint32 width = 0;
    gint32 height = 0;
    g_variant_get(answer.get(), "((iiii))", &x, &y, &width, &height);
    if (width <= 0 || height <= 0) {
        return std::nullopt;
    }
    return Rect{static_cast<double>(x), static_cast<double>(y), static_cast<double>(width),
                static_cast<double>(height)};
}

std::vector<Accessible> Accessible::children() const {
    const auto answer = call(*bus_, {application_, path_}, accessibleInterface, "GetChildren");
    std::vector<Accessible> found;
    if (!isOfType(answer, "(a(so))")) {
        return found;
    }
    GVariantIter* iterator = nullptr;
    g_variant_get(answer.get(), "(a(so))", &iterator);
    const char* application = nullptr;
    const char* path = nullptr;
    while (g_variant_iter_next(iterator, "(&s&o)", &application, &path) != FALSE) {
        found.push_back(Accessible(bus_, application, path));
    }
    g_variant_iter_free(iterator);
    return found;
}

bool Accessible::is(AccessibleState state) const {
    const auto answer = call(*bus_, {application_, path_}, accessibleInterface, "GetState");
    if (!isOfType(answer, "(au)")) {
        return false;
    }
    // Two words of 32 states each.
    GVariantIter* words = nullptr;
    g_variant_get(answer.get(), "(au)", &words);
    guint32 first = 0;
    const bool present = g_variant_iter_next(words, "u", &first) != FALSE;
    g_variant_iter_free(words);
    return present && ((first >> static_cast<unsigned>(state)) & 1U) != 0;
}

void Accessible::press() const {
    (void)call(*bus_, {application_, path_}, "org.a11y.atspi.Action", "DoAction",
               g_variant_new("(i)", 0));
}

std::optional<Accessible>
Accessible::find(const std::function<bool(const Accessible&)>& fits) const {
    if (fits(*this)) {
        return *this;
    }
    for (const auto& child : children()) {
        if (auto found = child.find(fits)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<Accessible> Accessible::find(const std::string& role, const std::string& name) const {
    return find([&](const Accessible& element) {
        return element.role() == role && element.name() == name;
    });
}

std::string Accessible::describe(int depth) const {
    std::string text = role() + " \"" + name() + '"';
    if (const auto place = extents()) {
        for (const double number : {place->x, place->y, place->width, place->height}) {
            text += ' ' + std::to_string(static_cast<int>(number));
        }
    }
    text += '\n';
    if (depth > 0) {
        for (const auto& child : children()) {
            const auto below = child.describe(depth - 1);
            std::string_view rest = below;
            while (!rest.empty()) {
                const auto end = std::min(rest.find('\n') + 1, rest.size());
                text += "  ";
                text += rest.substr(0, end);
                rest.remove_prefix(end);
            }
        }
    }
    return text;
}

AccessibleTree::AccessibleTree(const std::string& busAddress) : bus_(connectToBus(busAddress)) {}

std::vector<Accessible> AccessibleTree::applications() const {
    return Accessible(bus_, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        .children();
}

Accessible AccessibleTree::waitForApplication(const std::string& name) const {
    return *requireUntil(name + " on the accessibility bus", [&]() -> std::optional<Accessible> {
        const auto found = applications();
        const auto application = std::ranges::find_if(
            found, [&](const Accessible& element) { return element.name() == name; });
        return application == found.end() ? std::nullopt : std::optional(*application);
    });
}

Accessible AccessibleTree::waitFor(const std::string& application, const std::string& role,
                                   const std::string& name) const {
    const auto root = waitForApplication(application);
    const auto found = waitUntil([&] {
        return root.find([&](const Accessible& element) {
            return element.role() == role && (name.empty() || element.name() == name) &&
                   element.showing();
        });
    });
    if (!found) {
        throw std::runtime_error("waited for a " + role + " \"" + name + "\" in " + application +
                                 "; its tree is\n" + root.describe());
    }
    return *found;
}

} // namespace lumetry::desktop
