#pragma once

#include <QImage>
#include <QSize>

#include <vector>

namespace lumetry::views {

/// The dark ground of the onboarding with a light in it. The light is so faint that it would come
/// out in rings: they are broken up by noise.
class Backdrop {
public:
    explicit Backdrop(const QSize& size);

    /// @param opacity of the light, from 0 to 1
    void setOpacity(double opacity);
    [[nodiscard]] const QImage& picture() const { return picture_; }

private:
    std::vector<float> strengths_; ///< of the light at every pixel, from 0 to 1
    QImage picture_;
};

} // namespace lumetry::views
