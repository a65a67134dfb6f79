#include "app/desktop/WaylandSeat.h"

#include <wayland-client.h>

#include <cstdint>
#include <cstring>
#include <memory>

namespace velmora {

namespace {

void takeGlobal(void* hasSeat, wl_registry* /*registry*/, std::uint32_t /*name*/, const char* interface,
                std::uint32_t /*version*/) {
    if (std::strcmp(interface, wl_seat_interface.name) == 0) {
        *static_cast<bool*>(hasSeat) = true;
    }
}

void dropGlobal(void* /*hasSeat*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

constexpr wl_registry_listener globals = {&takeGlobal, &dropGlobal};

} // namespace

bool isOnWaylandWithoutSeat() {
    const std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> display(wl_display_connect(nullptr),
                                                                                &wl_display_disconnect);
    if (!display) {
        return false;
    }
    const std::unique_ptr<wl_registry, decltype(&wl_registry_destroy)> registry(
        wl_display_get_registry(display.get()), &wl_registry_destroy);
    bool hasSeat = false;
    wl_registry_add_listener(registry.get(), &globals, &hasSeat);
    return wl_display_roundtrip(display.get()) >= 0 && !hasSeat;
}

} // namespace velmora
