#include "image_measurement.h"

#include "pixels/pixel_box.h"
#include "pixels/surface.h"
#include "platform/picture_capture.h"
#include "session/glance.h"

#include <QImage>

#include <cstddef>
#include <cstring>
#include <utility>

namespace lumetry {
namespace {

/// The picture in a file; absent when it is none.
std::optional<Bitmap> loadPicture(const std::filesystem::path& file) {
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
    return bitmap;
}

} // namespace

std::optional<Measurement> measureImageFile(const std::filesystem::path& file, Point at,
                                            std::string& problem) {
    auto loaded = loadPicture(file);
    if (!loaded) {
        problem = file.string() + " cannot be read as a picture; give the path of a PNG file.";
        return std::nullopt;
    }
    if (!Rect{0, 0, static_cast<double>(loaded->width), static_cast<double>(loaded->height)}
             .contains(at)) {
        problem = "the point lies outside " + file.string() + ", which is " +
                  std::to_string(loaded->width) + " × " + std::to_string(loaded->height) +
                  " pixels; give a point inside.";
        return std::nullopt;
    }
    PictureCapture picture(std::move(*loaded));
    constexpr std::uint32_t noWindow = 0;
    Measurement measurement;
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
