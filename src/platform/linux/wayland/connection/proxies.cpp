#include "platform/linux/wayland/connection/proxies.h"

#include "platform/linux/wayland/connection/layer_shell.h"

#include <kde-output-order-v1-client-protocol.h>
#include <keystate-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client-protocol.h>

namespace lumetry::wayland {

void DestroyProxy::operator()(kde_output_order_v1* proxy) const {
    kde_output_order_v1_destroy(proxy);
}

void DestroyProxy::operator()(org_kde_kwin_keystate* proxy) const {
    org_kde_kwin_keystate_destroy(proxy);
}

void DestroyProxy::operator()(wl_buffer* proxy) const {
    wl_buffer_destroy(proxy);
}

void DestroyProxy::operator()(wl_callback* proxy) const {
    wl_callback_destroy(proxy);
}

void DestroyProxy::operator()(wl_compositor* proxy) const {
    wl_compositor_destroy(proxy);
}

void DestroyProxy::operator()(wl_output* proxy) const {
    if (wl_output_get_version(proxy) >= WL_OUTPUT_RELEASE_SINCE_VERSION) {
        wl_output_release(proxy);
    } else {
        wl_output_destroy(proxy);
    }
}

void DestroyProxy::operator()(wl_region* proxy) const {
    wl_region_destroy(proxy);
}

void DestroyProxy::operator()(wl_registry* proxy) const {
    wl_registry_destroy(proxy);
}

void DestroyProxy::operator()(wl_shm* proxy) const {
    wl_shm_destroy(proxy);
}

void DestroyProxy::operator()(wl_shm_pool* proxy) const {
    wl_shm_pool_destroy(proxy);
}

void DestroyProxy::operator()(wl_surface* proxy) const {
    wl_surface_destroy(proxy);
}

void DestroyProxy::operator()(wp_viewport* proxy) const {
    wp_viewport_destroy(proxy);
}

void DestroyProxy::operator()(wp_viewporter* proxy) const {
    wp_viewporter_destroy(proxy);
}

void DestroyProxy::operator()(zwlr_layer_shell_v1* proxy) const {
    if (zwlr_layer_shell_v1_get_version(proxy) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
        zwlr_layer_shell_v1_destroy(proxy);
    } else {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy));
    }
}

void DestroyProxy::operator()(zwlr_layer_surface_v1* proxy) const {
    zwlr_layer_surface_v1_destroy(proxy);
}

void DestroyProxy::operator()(zxdg_output_manager_v1* proxy) const {
    zxdg_output_manager_v1_destroy(proxy);
}

void DestroyProxy::operator()(zxdg_output_v1* proxy) const {
    zxdg_output_v1_destroy(proxy);
}

} // namespace lumetry::wayland
