#pragma once

#include <memory>

struct kde_output_order_v1;
struct org_kde_kwin_keystate;
struct wl_buffer;
struct wl_callback;
struct wl_compositor;
struct wl_output;
struct wl_region;
struct wl_registry;
struct wl_shm;
struct wl_shm_pool;
struct wl_surface;
struct wp_viewport;
struct wp_viewporter;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace lumetry::wayland {

/// Tells the compositor that its object is not needed any more.
struct DestroyProxy {
    void operator()(kde_output_order_v1* proxy) const;
    void operator()(org_kde_kwin_keystate* proxy) const;
    void operator()(wl_buffer* proxy) const;
    void operator()(wl_callback* proxy) const;
    void operator()(wl_compositor* proxy) const;
    void operator()(wl_output* proxy) const;
    void operator()(wl_region* proxy) const;
    void operator()(wl_registry* proxy) const;
    void operator()(wl_shm* proxy) const;
    void operator()(wl_shm_pool* proxy) const;
    void operator()(wl_surface* proxy) const;
    void operator()(wp_viewport* proxy) const;
    void operator()(wp_viewporter* proxy) const;
    void operator()(zwlr_layer_shell_v1* proxy) const;
    void operator()(zwlr_layer_surface_v1* proxy) const;
    void operator()(zxdg_output_manager_v1* proxy) const;
    void operator()(zxdg_output_v1* proxy) const;
};

/// An object of the compositor's, until this ends.
template<class Proxy>
using Owned = std::unique_ptr<Proxy, DestroyProxy>;

} // namespace lumetry::wayland
