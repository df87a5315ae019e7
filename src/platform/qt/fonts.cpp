#include "platform/qt/fonts.h"

#include <QFontDatabase>
#include <QStringList>

namespace lumetry {
namespace {

/// The first of the families that is installed, else what the desktop uses for that purpose.
QFont preferred(const QStringList& families, QFontDatabase::SystemFont otherwise) {
    for (const QString& family : families) {
        if (QFontDatabase::hasFamily(family)) {
            return {family};
        }
    }
    return QFontDatabase::systemFont(otherwise);
}

QFont::Weight weightOf(FontWeight weight) {
    switch (weight) {
    case FontWeight::medium:
        return QFont::Medium;
    case FontWeight::semibold:
        return QFont::DemiBold;
    case FontWeight::bold:
        return QFont::Bold;
    case FontWeight::regular:
        break;
    }
    return QFont::Normal;
}

} // namespace

SystemFonts::SystemFonts()
    : system_(preferred({QStringLiteral("Inter")}, QFontDatabase::GeneralFont)),
      monospaced_(preferred({QStringLiteral("JetBrains Mono"), QStringLiteral("Cascadia Mono")},
                            QFontDatabase::FixedFont)) {
    monospaced_.setStyleHint(QFont::Monospace);
}

QFont SystemFonts::font(const Font& font) const {
    QFont result = font.family == FontFamily::system ? system_ : monospaced_;
    result.setPointSizeF(font.size);
    result.setWeight(weightOf(font.weight));
    // Shapes stay true to their design, with horizontal strokes on whole pixels.
    result.setHintingPreference(QFont::PreferVerticalHinting);
    return result;
}

} // namespace lumetry
