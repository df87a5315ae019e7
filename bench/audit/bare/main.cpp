// A walk over the elements of a window that show, made with libatspi alone: role, name, extents and
// text attributes of each. What an audit is compared with.
//
//   lumetry_audit_bare APPLICATION [cached]    cached: answers that libatspi has may be used again
//
// Prints one line: microseconds, elements, elements with text, calls.

#include <atspi/atspi.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <string>

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
using AccessibleRef = std::unique_ptr<AtspiAccessible, Unref>;

struct FreeRect {
    void operator()(AtspiRect* rect) const { g_free(rect); }
};
using RectRef = std::unique_ptr<AtspiRect, FreeRect>;

class Walk {
public:
    Walk(AtspiAccessible* window, bool cached) : cached_(cached), window_(extentsOf(window)) {}

    void visit(AtspiAccessible* element, int depth = 0) {
        constexpr int deepest = 200;
        // So that each answer is asked for: a cache mask of none makes libatspi 2.46 wait for
        // itself.
        if (!cached_) {
            atspi_accessible_clear_cache(element);
        }
        const RectRef extents = extentsOf(element);
        if (!shows(extents.get()) || depth > deepest) {
            return;
        }
        ++elements_;
        calls_ += 3;
        atspi_accessible_get_role(element, nullptr);
        g_free(atspi_accessible_get_name(element, nullptr));
        readText(element);
        const int count = atspi_accessible_get_child_count(element, nullptr);
        for (int index = 0; index < count; ++index) {
            ++calls_;
            const AccessibleRef child(atspi_accessible_get_child_at_index(element, index, nullptr));
            if (child) {
                visit(child.get(), depth + 1);
            }
        }
    }

    void print(std::chrono::duration<double, std::micro> took) const {
        std::cout << took.count() << ' ' << elements_ << ' ' << texts_ << ' ' << calls_ << '\n';
    }

private:
    RectRef extentsOf(AtspiAccessible* element) {
        const std::unique_ptr<AtspiComponent, Unref> component(
            atspi_accessible_get_component_iface(element));
        if (!component) {
            return nullptr;
        }
        ++calls_;
        return RectRef(
            atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, nullptr));
    }

    [[nodiscard]] bool shows(const AtspiRect* extents) const {
        return extents == nullptr || window_ == nullptr ||
               (extents->width > 0 && extents->height > 0 &&
                extents->x < window_->x + window_->width &&
                extents->y < window_->y + window_->height &&
                std::int64_t{extents->x} + extents->width > window_->x &&
                std::int64_t{extents->y} + extents->height > window_->y);
    }

    void readText(AtspiAccessible* element) {
        ++calls_; // for the interfaces
        const std::unique_ptr<AtspiText, Unref> text(atspi_accessible_get_text_iface(element));
        if (!text) {
            return;
        }
        ++texts_;
        ++calls_;
        int start = 0;
        int end = 0;
        GHashTable* const attributes =
            atspi_text_get_attribute_run(text.get(), 0, TRUE, &start, &end, nullptr);
        if (attributes != nullptr) {
            g_hash_table_unref(attributes);
        }
    }

    bool cached_;
    int calls_ = 0;
    int elements_ = 0;
    int texts_ = 0;
    RectRef window_;
};

AccessibleRef findApplication(const std::string& wanted) {
    const AccessibleRef desktop(atspi_get_desktop(0));
    const int count = atspi_accessible_get_child_count(desktop.get(), nullptr);
    for (int index = 0; index < count; ++index) {
        AccessibleRef application(
            atspi_accessible_get_child_at_index(desktop.get(), index, nullptr));
        char* const name =
            application ? atspi_accessible_get_name(application.get(), nullptr) : nullptr;
        const bool matches = name != nullptr && wanted == name;
        g_free(name);
        if (matches) {
            return application;
        }
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3 || atspi_init() > 1) {
        std::cerr << "usage: lumetry_audit_bare APPLICATION [cached]\n";
        return 2;
    }
    const AccessibleRef application = findApplication(argv[1]);
    if (!application) {
        std::cerr << "lumetry_audit_bare: no application " << argv[1] << " on the bus\n";
        return 1;
    }
    const auto begin = std::chrono::steady_clock::now();
    const AccessibleRef window(atspi_accessible_get_child_at_index(application.get(), 0, nullptr));
    if (!window) {
        std::cerr << "lumetry_audit_bare: the application has no window\n";
        return 1;
    }
    Walk walk(window.get(), argc == 3);
    walk.visit(window.get());
    walk.print(std::chrono::steady_clock::now() - begin);
    return 0;
}
