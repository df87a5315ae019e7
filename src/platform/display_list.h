#pragma once

#include "platform/canvas.h"

#include <string>
#include <variant>
#include <vector>

namespace lumetry {

struct FillRoundedRect {
    Rect rect;
    double radius = 0;
    Color color;

    friend bool operator==(const FillRoundedRect&, const FillRoundedRect&) = default;
};

struct StrokeRoundedRect {
    Rect rect;
    double radius = 0;
    Color color;
    double lineWidth = 0;

    friend bool operator==(const StrokeRoundedRect&, const StrokeRoundedRect&) = default;
};

struct FillEllipse {
    Rect rect;
    Color color;

    friend bool operator==(const FillEllipse&, const FillEllipse&) = default;
};

struct StrokeEllipse {
    Rect rect;
    Color color;
    double lineWidth = 0;

    friend bool operator==(const StrokeEllipse&, const StrokeEllipse&) = default;
};

struct StrokeLine {
    Point a;
    Point b;
    Color color;
    double lineWidth = 0;
    std::vector<double> dash;

    friend bool operator==(const StrokeLine&, const StrokeLine&) = default;
};

struct DrawText {
    std::string text;
    Rect lineBox;
    Font font;
    Color color;
    double overhang = 0; ///< of the glyphs out of the line box, on any side

    friend bool operator==(const DrawText&, const DrawText&) = default;
};

using DrawCommand = std::variant<FillRoundedRect, StrokeRoundedRect, FillEllipse, StrokeEllipse,
                                 StrokeLine, DrawText>;

/// Drawing kept as a list of commands, in drawing order and view space.
using DisplayList = std::vector<DrawCommand>;

/// Everything that a command may touch, with a point to spare for smoothed edges.
[[nodiscard]] Rect coverage(const DrawCommand& command);

/// Where two drawings may differ: the coverage of every command between their common beginning
/// and their common end.
[[nodiscard]] std::vector<Rect> changedAreas(const DisplayList& before, const DisplayList& after);

/// A canvas that keeps what is drawn on it.
class RecordingCanvas final : public Canvas {
public:
    explicit RecordingCanvas(const TextMetrics& metrics) : metrics_(metrics) {}

    void fillRoundedRect(const Rect& rect, double radius, const Color& color) override;
    void strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                           double lineWidth) override;
    void fillEllipse(const Rect& rect, const Color& color) override;
    void strokeEllipse(const Rect& rect, const Color& color, double lineWidth) override;
    void strokeLine(Point a, Point b, const Color& color, double lineWidth,
                    std::span<const double> dash) override;
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override;
    void drawText(std::string_view text, Point lowerLeft, const Font& font,
                  const Color& color) override;

    [[nodiscard]] const DisplayList& displayList() const { return list_; }
    [[nodiscard]] DisplayList take() { return std::move(list_); }

private:
    const TextMetrics& metrics_;
    DisplayList list_;
};

} // namespace lumetry
