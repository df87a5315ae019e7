#include "session/glance.h"

#include "base/color_metrics.h"
#include "base/number_text.h"
#include "base/text.h"
#include "pixels/surface.h"
#include "platform/accessibility.h"
#include "platform/applications.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "probe/spacing.h"
#include "probe/typography.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace lumetry {
namespace {

constexpr std::string_view estimated = "≈ ";

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

std::string pixels(double value) {
    return wholeNumber(value) + "px";
}

/// Adds the rows of one component, in the order in which its class shows them.
class RowWriter {
public:
    RowWriter(const Platform& platform, const ResolvedComponent& resolved, const Rect& frame,
              std::uint32_t windowNumber)
        : platform_(platform), resolved_(resolved), frame_(frame), windowNumber_(windowNumber),
          mayCapture_(platform.windowServer.preflightScreenCaptureAccess()) {
        rows_.push_back(sizeRow(frame.size()));
    }

    void write(const std::string& role) {
        switch (resolved_.bucket) {
        case Bucket::collection:
            addCollection();
            return;
        case Bucket::container:
            return;
        case Bucket::graphic:
            addGraphic(role);
            break;
        case Bucket::text:
            readSurface();
            addTypography("color");
            break;
        case Bucket::control:
        case Bucket::input:
            addControl();
            break;
        case Bucket::generic:
            addGeneric();
            break;
        }
        if (!mayCapture_) {
            add("colors", "needs Screen Recording");
        }
    }

    [[nodiscard]] std::vector<GlanceRow> takeRows() { return std::move(rows_); }
    [[nodiscard]] Measures takeMeasures() { return std::move(measures_); }

private:
    void add(std::string label, std::string value, std::optional<Color> swatch = std::nullopt) {
        rows_.push_back({std::move(label), std::move(value), swatch});
    }

    void readSurface() {
        if (mayCapture_) {
            measures_.surface = analyzeSurface(platform_.screenCapture, windowNumber_, frame_);
        }
    }

    void readSpacing() {
        measures_.spacing = collectionGap(platform_.accessibility, resolved_.component,
                                          frameRounding(platform_.windowServer));
    }

    void addCollection() {
        readSpacing();
        if (const auto& spacing = measures_.spacing) {
            add("gap", pixels(spacing->gap));
            add(spacing->vertical ? "row height" : "item width", pixels(spacing->item));
            add("items", std::to_string(spacing->count));
        }
    }

    void addGraphic(const std::string& role) {
        if (role != "AXImage" && role != "AXVideo") {
            return;
        }
        if (auto ratio = aspectString(frame_.size())) {
            add("ratio", std::move(*ratio));
        }
        readSurface();
        // The fill of a picture says little.
        measures_.surface.fill.reset();
        measures_.surface.ink.reset();
        addSurfaceRows(rows_, measures_.surface);
    }

    void addControl() {
        readSurface();
        addSurfaceRows(rows_, measures_.surface);
        addPadding(false);
        addTypography("text");
    }

    void addGeneric() {
        constexpr std::size_t fewestItems = 3;
        readSurface();
        addSurfaceRows(rows_, measures_.surface);
        addPadding(true);
        readSpacing();
        if (measures_.spacing && measures_.spacing->count >= fewestItems) {
            add("gap", pixels(measures_.spacing->gap));
        }
    }

    void addPadding(bool guarded) {
        measures_.padding =
            axPadding(platform_.accessibility, resolved_.component, frame_, guarded);
        if (measures_.padding) {
            add("padding", *measures_.padding);
        }
    }

    /// Font, text colour under the given label, and its contrast to the fill.
    void addTypography(std::string colorLabel) {
        measures_.text = axTextInfoDeep(platform_.accessibility, resolved_.textSource);
        const TextInfo& text = measures_.text;
        const SurfaceInfo& info = measures_.surface;
        if (text.font) {
            add("font", *text.font);
        }
        const auto foreground = text.color ? text.color : info.ink;
        if (!foreground) {
            return;
        }
        const std::string hex = hexString(*foreground);
        add(std::move(colorLabel), text.color ? hex : std::string(estimated) + hex, foreground);
        if (info.fill) {
            rows_.push_back(contrastRow(*foreground, *info.fill));
        }
    }

    const Platform& platform_;
    const ResolvedComponent& resolved_;
    const Rect& frame_;
    std::uint32_t windowNumber_;
    bool mayCapture_;
    std::vector<GlanceRow> rows_;
    Measures measures_;
};

} // namespace

Glance deriveGlance(const Platform& platform, const ResolvedComponent& resolved, const Rect& frame,
                    std::uint32_t windowNumber) {
    const pid_t pid = resolved.component.getPid().value_or(0);
    if (isBrowser(platform, pid)) {
        return browserGlance(platform, pid, frame.size());
    }
    // Nearly all of this will be read: by the header, by spacing and by typography.
    constexpr std::array<std::string_view, 6> shown = {"AXRole",
                                                       "AXTitle",
                                                       "AXValue",
                                                       "AXChildren",
                                                       "AXNumberOfCharacters",
                                                       "AXAttributedStringForRange"};
    constexpr std::size_t withoutTypography = 4;
    const bool showsTypography = resolved.bucket == Bucket::text ||
                                 resolved.bucket == Bucket::control ||
                                 resolved.bucket == Bucket::input;
    platform.accessibility.prefetch(
        std::array{resolved.component, resolved.textSource},
        std::span(shown).first(showsTypography ? shown.size() : withoutTypography));
    const std::string role = axString(resolved.component, "AXRole").value_or("AXUnknown");
    std::string header = componentHeader(role, titleOf(resolved));
    RowWriter writer(platform, resolved, frame, windowNumber);
    writer.write(role);
    return {std::move(header), writer.takeRows(), resolved.bucket == Bucket::graphic,
            writer.takeMeasures()};
}

std::string componentHeader(const std::string& role, const std::string& title) {
    constexpr std::size_t titleCharacters = 26;
    const std::string kind = removingOccurrences(role, "AX");
    return title.empty() ? kind : kind + " · " + firstCharacters(title, titleCharacters);
}

GlanceRow sizeRow(const Size& size) {
    return {"size", wholeNumber(size.width) + " × " + wholeNumber(size.height), std::nullopt};
}

void addSurfaceRows(std::vector<GlanceRow>& rows, const SurfaceInfo& surface) {
    if (surface.fill) {
        rows.push_back({"fill", std::string(estimated) + hexString(*surface.fill), surface.fill});
    }
    if (surface.radius) {
        rows.push_back({"radius", std::string(estimated) + pixels(*surface.radius), std::nullopt});
    }
}

GlanceRow contrastRow(const Color& foreground, const Color& background) {
    constexpr double enhanced = 7.0;
    constexpr double minimum = 4.5;
    const double ratio = wcagContrast(foreground, background);
    const std::string_view level = ratio >= enhanced ? "AAA" : ratio >= minimum ? "AA" : "✕";
    return {"contrast", fixedText(ratio, 1) + ":1 · " + std::string(level), std::nullopt};
}

} // namespace lumetry
