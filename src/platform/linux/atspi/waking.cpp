#include "platform/linux/atspi/waking.h"

#include "platform/linux/atspi/requests.h"

#include <vector>

namespace lumetry::atspi {

void wakeTree(Context& context, pid_t pid) {
    AtspiBus& bus = context.bus;
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
