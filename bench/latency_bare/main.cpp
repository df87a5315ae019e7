// The accessibility calls that one hover needs at the least, made with libatspi alone: what
// Lumetry's own cost is compared with. Descends to the element at a point, then asks its role, name
// and extents.
//
//   lumetry_latency_bare APPLICATION    points "x y" on standard input, one a line
//
// Prints for each point: microseconds, calls.

#include <atspi/atspi.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
using AccessibleRef = std::unique_ptr<AtspiAccessible, Unref>;

int calls = 0;

AccessibleRef childOf(AtspiAccessible* parent, int index) {
    return AccessibleRef(atspi_accessible_get_child_at_index(parent, index, nullptr));
}

AccessibleRef findApplication(const std::string& wanted) {
    const AccessibleRef desktop(atspi_get_desktop(0));
    const int count = atspi_accessible_get_child_count(desktop.get(), nullptr);
    for (int i = 0; i < count; ++i) {
        AccessibleRef application = childOf(desktop.get(), i);
        if (!application) {
            continue;
        }
        char* name = atspi_accessible_get_name(application.get(), nullptr);
        const bool matches = name != nullptr && wanted == name;
        g_free(name);
        if (matches) {
            return application;
        }
    }
    return nullptr;
}

AccessibleRef elementAt(AtspiAccessible* component, int x, int y) {
    ++calls;
    return AccessibleRef(atspi_component_get_accessible_at_point(ATSPI_COMPONENT(component), x, y,
                                                                 ATSPI_COORD_TYPE_SCREEN, nullptr));
}

void hover(AtspiAccessible* frame, int x, int y) {
    AccessibleRef element = elementAt(frame, x, y);
    constexpr int deepest = 100;
    for (int level = 0; element && level < deepest; ++level) {
        AccessibleRef deeper = elementAt(element.get(), x, y);
        if (!deeper || deeper == element) {
            break;
        }
        element = std::move(deeper);
    }
    if (!element) {
        return;
    }
    // So that each answer is asked for: a cache mask of none makes libatspi 2.46 wait for itself.
    atspi_accessible_clear_cache(element.get());
    calls += 3;
    atspi_accessible_get_role(element.get(), nullptr);
    g_free(atspi_accessible_get_name(element.get(), nullptr));
    g_free(atspi_component_get_extents(ATSPI_COMPONENT(element.get()), ATSPI_COORD_TYPE_SCREEN,
                                       nullptr));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || atspi_init() > 1) {
        std::cerr << "usage: lumetry_latency_bare APPLICATION < points\n";
        return 2;
    }
    const AccessibleRef application = findApplication(argv[1]);
    if (!application) {
        std::cerr << "lumetry_latency_bare: no application " << argv[1] << " on the bus\n";
        return 1;
    }
    const AccessibleRef frame = childOf(application.get(), 0);
    for (int x = 0, y = 0; std::cin >> x >> y;) {
        // As often as the session takes samples: both sides find the same cold caches.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        calls = 0;
        const auto begin = std::chrono::steady_clock::now();
        hover(frame.get(), x, y);
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - begin;
        std::cout << took.count() << ' ' << calls << '\n';
    }
    return 0;
}
