#include "prices_page.h"

#include "rig/desktop_windows.h"
#include "rig/firefox.h"

#include <gtest/gtest.h>

namespace lumetry::desktop {
namespace {

// Gecko has no elements for texts, tells its places only once it is asked for them, and font sizes
// in whole points.
TEST(MeasureFirefox, TellsHowAPageIsSetOfAnApplicationThatIsNoKnownBrowser) {
    MeasuredDesktop measured;
    const auto browser =
        startFirefoxWith(measured.desktop, pricesPage(), FirefoxGuise::application);
    expectPricesPage(measured, "DejaVu Sans · 16px · regular");
}

} // namespace
} // namespace lumetry::desktop
