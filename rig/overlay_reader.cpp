#include "rig/overlay_reader.h"

#include "rig/desktop_windows.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

bool isDistance(const std::string& text) {
    return text.size() > 2 && text.ends_with("px") &&
           std::all_of(text.begin(), text.end() - 2,
                       [](unsigned char character) { return std::isdigit(character) != 0; });
}

std::string joined(const std::vector<std::string>& texts) {
    std::string line;
    const char* separator = "";
    for (const auto& text : texts) {
        line.append(separator).append(text);
        separator = ", ";
    }
    return line;
}

} // namespace

std::optional<std::string> OverlayReadout::value(const std::string& label) const {
    const auto found = std::ranges::find(rows, label, &Row::label);
    return found == rows.end() ? std::nullopt : std::optional(found->value);
}

std::string OverlayReadout::line() const {
    std::vector<std::string> parts = distances;
    for (const auto& [label, text] : rows) {
        parts.push_back(label);
        parts.back().append(" ").append(text);
    }
    const auto details = joined(parts);
    if (header.empty()) {
        return details.empty() ? "nothing" : details;
    }
    return details.empty() ? header : header + ": " + details;
}

OverlayReadout parseOverlayTexts(std::vector<std::string> texts) {
    OverlayReadout readout;
    if (texts.size() >= 2 && texts[0] == "esc" && texts[1] == "exit") {
        readout.exitTag = true;
        texts.erase(texts.begin(), texts.begin() + 2);
    }
    if (std::ranges::all_of(texts, isDistance)) {
        readout.distances = std::move(texts);
        return readout;
    }
    // Rows come in pairs; one text more is the header above them.
    std::size_t next = texts.size() % 2;
    if (next == 1) {
        readout.header = texts[0];
    }
    for (; next < texts.size(); next += 2) {
        readout.rows.push_back({texts[next], texts[next + 1]});
    }
    return readout;
}

std::optional<xcb_window_t> OverlayReader::window() const {
    const auto windows = desktopWindows(server_);
    const auto found = std::ranges::find_if(windows, [](const DesktopWindow& window) {
        return window.overrideRedirect && window.instanceName == "lumetry";
    });
    return found == windows.end() ? std::nullopt : std::optional(found->id);
}

std::optional<std::vector<std::string>> OverlayReader::texts() const {
    const auto overlay = window();
    const auto property = overlay ? server_.textProperty(*overlay, "_LUMETRY_TEXT") : std::nullopt;
    if (!property) {
        return std::nullopt;
    }
    std::vector<std::string> lines;
    std::string_view rest = *property;
    while (!rest.empty()) {
        const auto end = std::min(rest.find('\n'), rest.size());
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines;
}

std::optional<OverlayReadout> OverlayReader::readout() const {
    auto lines = texts();
    return lines ? std::optional(parseOverlayTexts(std::move(*lines))) : std::nullopt;
}

OverlayReadout
OverlayReader::waitFor(const std::string& what,
                       const std::function<bool(const OverlayReadout&)>& wanted) const {
    std::optional<OverlayReadout> last;
    const bool reached = waitUntil([&] {
        last = readout();
        return last && wanted(*last);
    });
    if (!reached) {
        throw std::runtime_error("waited for the overlay to show " + what + "; it shows " +
                                 (last ? last->line() : "no overlay"));
    }
    return *last;
}

OverlayReadout OverlayReader::waitForHeader(const std::string& header) const {
    return waitFor(header, [&](const OverlayReadout& shown) { return shown.header == header; });
}

} // namespace lumetry::desktop
