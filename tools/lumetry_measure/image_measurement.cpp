#include "image_measurement.h"

#include "base/number_text.h"
#include "pixels/pixel_box.h"
#include "pixels/surface.h"
#include "platform/picture_capture.h"
#include "session/glance.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace lumetry {
namespace {

struct Picture {
    Bitmap bitmap;
    double declaredScale = 1; ///< pixels for each point
};

/// Many programs declare 72 dots per inch without meaning anything by it.
double declaredScaleOf(const QImage& image) {
    constexpr double dotsPerMeter = 96 / 0.0254;
    constexpr double steps = 100; // a file has whole dots per metre
    // What is not declared has the value of any new picture.
    const bool isDeclared =
        image.dotsPerMeterX() != QImage(1, 1, QImage::Format_ARGB32).dotsPerMeterX();
    const double scale = std::round(image.dotsPerMeterX() / dotsPerMeter * steps) / steps;
    return isDeclared ? std::max(scale, 1.0) : 1;
}

/// The picture in a file; absent when it is none.
std::optional<Picture> loadPicture(const std::filesystem::path& file) {
    const QImage image = QImage(QString::fromStdString(file.string()))
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return std::nullopt;
    }
    Bitmap bitmap(image.width(), image.height());
    for (int y = 0; y < bitmap.height; ++y) {
        const auto width = static_cast<std::ptrdiff_t>(bitmap.width);
        std::memcpy(&*(bitmap.pixels.begin() + y * width), image.constScanLine(y),
                    static_cast<std::size_t>(width) * sizeof(std::uint32_t));
    }
    return Picture{std::move(bitmap), declaredScaleOf(image)};
}

} // namespace

std::optional<Measurement> measureImageFile(const std::filesystem::path& file, Point at,
                                            std::optional<double> scale, std::string& problem) {
    auto loaded = loadPicture(file);
    if (!loaded) {
        problem = file.string() + " cannot be read as a picture; give the path of a PNG file.";
        return std::nullopt;
    }
    Measurement measurement;
    measurement.scale = scale.value_or(loaded->declaredScale);
    const Bitmap& bitmap = loaded->bitmap;
    const Rect whole = {0, 0, bitmap.width / measurement.scale, bitmap.height / measurement.scale};
    if (!whole.contains(at)) {
        problem = "the point lies outside " + file.string() + ", which is " +
                  wholeNumber(whole.width) + " × " + wholeNumber(whole.height) + " points (" +
                  std::to_string(bitmap.width) + " × " + std::to_string(bitmap.height) +
                  " pixels); give a point inside.";
        return std::nullopt;
    }
    PictureCapture picture(std::move(loaded->bitmap), measurement.scale);
    constexpr std::uint32_t noWindow = 0;
    HoverOutcome& outcome = measurement.outcome;
    outcome.path = "image";
    outcome.box = pixelBox(picture, noWindow, at);
    if (outcome.box) {
        outcome.header = "≈ element";
        outcome.rows.push_back(sizeRow(outcome.box->size()));
        addSurfaceRows(outcome.rows, analyzeSurface(picture, noWindow, *outcome.box));
    }
    return measurement;
}

} // namespace lumetry
