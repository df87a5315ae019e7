#include "platform/linux/atspi/elements/waking.h"

#include "platform/linux/atspi/bus/requests.h"

#include <vector>

namespace lumetry::atspi {

void wakeTree(Context& context, pid_t pid) {
    Bus& bus = context.bus;
    context.processes.findRootsOf(pid, [&bus](const std::vector<ObjectReference>& roots) {
        for (const ObjectReference& root : roots) {
            bus.send(getChildren(root), [&bus](const Reply& reply) {
                for (const ObjectReference& window :
                     referencesOf(reply).value_or(std::vector<ObjectReference>())) {
                    bus.send(getAttributes(window), [](const Reply&) {});
                }
            });
        }
    });
}

} // namespace lumetry::atspi
