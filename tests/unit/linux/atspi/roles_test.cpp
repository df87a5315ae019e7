#include "platform/linux/atspi/tree/roles.h"

#include "probe/role_bucket.h"

#include <atspi/atspi-constants.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>

namespace lumetry::atspi {
namespace {

// A misspelt role would silently count as a generic one.
TEST(Roles, AreAllRolesThatExist) {
    const std::set<std::string_view> withoutBucketOfTheirOwn = {
        "AXGroup",     "AXUnknown",     "AXRow",     "AXCell", "AXTabGroup",
        "AXScrollBar", "AXIncrementor", "AXHelpTag", "AXRuler"};
    for (int role = 0; role < ATSPI_ROLE_LAST_DEFINED; ++role) {
        const std::string_view name = axRole(role);
        EXPECT_NE(bucketFor(name) == Bucket::generic, !withoutBucketOfTheirOwn.contains(name))
            << role << " is " << name;
    }
}

TEST(Roles, ThatAreUnknownOrCameLater) {
    EXPECT_EQ(axRole(130), "AXSwitch");
    for (const std::int64_t role :
         {std::int64_t{-1}, std::int64_t{100'000}, std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(axRole(role), "AXUnknown") << role;
    }
}

} // namespace
} // namespace lumetry::atspi
