#pragma once

#include <wayland-client.h>

// The protocol's header, which is C, has a parameter of that name.
#define namespace name_space
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#undef namespace
