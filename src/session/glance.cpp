#include "session/glance.h"

#include "base/number_text.h"
#include "base/text.h"
#include "platform/applications.h"
#include "probe/ax_access.h"
#include "probe/electron.h"

#include <cstddef>
#include <optional>

namespace lumetry {
namespace {

Glance browserGlance(const Platform& platform, pid_t pid, const Size& size) {
    const auto application = platform.applications.runningApplication(pid);
    const std::string name =
        application ? application->localizedName.value_or("Browser") : "Browser";
    return {"🌐 " + name + " · web", {sizeRow(size), {"for CSS", "Lumetry ⌥M", std::nullopt}}};
}

std::string titleOf(const ResolvedComponent& resolved) {
    const std::string title = trimmed(axString(resolved.component, "AXTitle").value_or(""));
    return title.empty() ? trimmed(axString(resolved.textSource, "AXValue").value_or("")) : title;
}

std::string headerFor(const std::string& role, const ResolvedComponent& resolved) {
    constexpr std::size_t titleCharacters = 26;
    const std::string kind = removingOccurrences(role, "AX");
    const std::string title = titleOf(resolved);
    return title.empty() ? kind : kind + " · " + firstCharacters(title, titleCharacters);
}

} // namespace

Glance deriveGlance(const Platform& platform, const ResolvedComponent& resolved,
                    const Rect& frame) {
    const pid_t pid = resolved.component.getPid().value_or(0);
    if (isBrowser(platform, pid)) {
        return browserGlance(platform, pid, frame.size());
    }
    const std::string role = axString(resolved.component, "AXRole").value_or("AXUnknown");
    return {headerFor(role, resolved), {sizeRow(frame.size())}};
}

GlanceRow sizeRow(const Size& size) {
    return {"size", wholeNumber(size.width) + " × " + wholeNumber(size.height), std::nullopt};
}

} // namespace lumetry
