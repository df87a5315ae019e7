#include "approval.h"

#include "unit/widgets/widgets.h"

#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace lumetry {
namespace {

/// What is not noticed: processors that multiply colours in other ways round them to a neighbouring
/// level, and to the one beside it where two layers meet.
constexpr int toleratedLevels = 3;
/// And one pixel of so many that differs by more.
constexpr int pixelsForADifferentOne = 20000;

/// Draws what the pictures show with nothing but the fonts that come with the tests, and with none
/// of the machine's preferences.
class PictureEnvironment final : public ApplicationEnvironment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("FONTCONFIG_FILE", LUMETRY_PICTURE_FONTS);
        for (const char* const preference :
             {"QT_FONT_DPI", "QT_STYLE_OVERRIDE", "QT_SCREEN_SCALE_FACTORS", "QT_QPA_PLATFORMTHEME",
              "QT_ENABLE_HIGHDPI_SCALING", "QT_SCALE_FACTOR_ROUNDING_POLICY"}) {
            qunsetenv(preference);
        }
        QApplication::setStyle(QStringLiteral("Fusion"));
        ApplicationEnvironment::SetUp();
        for (const char* const family :
             {"Inter", "DejaVu Sans", "DejaVu Sans Mono", "Noto Color Emoji"}) {
            if (!QFontDatabase::hasFamily(family)) {
                std::cerr << "The pictures are made with the font " << family
                          << ", which is missing. 'packaging/debian-packages/install fonts' "
                             "installs it.\n";
                // A failure reported from here would count as a test skipped.
                TearDown();
                std::exit(EXIT_FAILURE);
            }
        }
    }
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new PictureEnvironment);

QString fileName(const std::string& name) {
    return QString::fromStdString(name) + (pixelRatio() == 1 ? "" : "@2x") + ".png";
}

void save(const QImage& picture, const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QImageWriter writer(path);
    writer.setQuality(0); // the smallest file
    ASSERT_TRUE(writer.write(picture)) << path.toStdString();
}

QImage arranged(const std::vector<QImage>& pictures, bool downwards) {
    constexpr int distance = 8;
    QSize whole;
    for (const QImage& each : pictures) {
        whole = downwards ? QSize(std::max(whole.width(), each.width()),
                                  std::max(whole.height(), 0) + each.height() + distance)
                          : QSize(std::max(whole.width(), 0) + each.width() + distance,
                                  std::max(whole.height(), each.height()));
    }
    QImage result(whole - (downwards ? QSize(0, distance) : QSize(distance, 0)),
                  QImage::Format_RGB32);
    result.fill(QColor(96, 96, 104));
    QPainter painter(&result);
    QPoint place;
    for (QImage each : pictures) {
        each.setDevicePixelRatio(1);
        painter.drawImage(place, each);
        (downwards ? place.ry() : place.rx()) +=
            (downwards ? each.height() : each.width()) + distance;
    }
    return result;
}

struct Difference {
    QImage picture; ///< brighter where there is more of it, red where it is not tolerated
    int pixels = 0; ///< that differ by more than is tolerated
    int most = 0;   ///< levels by which a channel differs
};

Difference difference(const QImage& a, const QImage& b) {
    constexpr int magnified = 16;
    Difference result{{a.size().expandedTo(b.size()), QImage::Format_RGB32}};
    for (int y = 0; y < result.picture.height(); ++y) {
        for (int x = 0; x < result.picture.width(); ++x) {
            int levels = 255; // where only one of them has anything
            if (a.valid(x, y) && b.valid(x, y)) {
                const QRgb from = a.pixel(x, y);
                const QRgb to = b.pixel(x, y);
                levels =
                    std::max({std::abs(qRed(from) - qRed(to)), std::abs(qGreen(from) - qGreen(to)),
                              std::abs(qBlue(from) - qBlue(to))});
            }
            const int shown = std::min(levels * magnified, 255);
            result.picture.setPixel(
                x, y, levels > toleratedLevels ? qRgb(255, 0, 60) : qRgb(shown, shown, shown));
            result.pixels += levels > toleratedLevels ? 1 : 0;
            result.most = std::max(result.most, levels);
        }
    }
    return result;
}

} // namespace

double pixelRatio() {
    return qApp->devicePixelRatio();
}

QImage stacked(const std::vector<QImage>& pictures) {
    return arranged(pictures, true);
}

QImage sideBySide(const std::vector<QImage>& pictures) {
    return arranged(pictures, false);
}

void expectApproved(const QImage& picture, const std::string& name) {
    const QString file = fileName(name);
    const QString approvedPath = QDir(LUMETRY_APPROVED_PICTURES).filePath(file);
    QImage actual = picture.convertToFormat(QImage::Format_RGB32);
    actual.setDevicePixelRatio(1);
    const QImage approved = QImage(approvedPath).convertToFormat(QImage::Format_RGB32);
    const Difference differing = difference(approved, actual);
    const int tolerated = actual.width() * actual.height() / pixelsForADifferentOne;
    if (!approved.isNull() && approved.size() == actual.size() && differing.pixels <= tolerated) {
        return;
    }
    const QDir compared(LUMETRY_COMPARED_PICTURES);
    const QString comparison = compared.filePath("compared-" + file);
    save(actual, compared.filePath(file));
    save(sideBySide({approved, actual, differing.picture}), comparison);
    if (qEnvironmentVariableIsSet("LUMETRY_APPROVE")) {
        save(actual, approvedPath);
        std::cout << "Approved " << file.toStdString() << ": " << comparison.toStdString()
                  << " shows what it was, what it is and the difference\n";
        return;
    }
    ADD_FAILURE() << file.toStdString() << " differs from the approved picture in "
                  << differing.pixels << " pixels (" << tolerated << " are tolerated), by up to "
                  << differing.most << " levels. " << comparison.toStdString()
                  << " shows the approved one, this one and the difference. If it is meant to look "
                     "like this: ./test approve";
}

} // namespace lumetry
