#include "platform/linux/atspi/roles.h"

#include "probe/role_bucket.h"

#include <atspi/atspi.h>
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

TEST(Roles, OfWhatPeoplePointAt) {
    struct Case {
        std::int64_t role;
        std::string_view expected;
    };
    for (const auto& [role, expected] : {
             Case{ATSPI_ROLE_PUSH_BUTTON, "AXButton"},
             Case{ATSPI_ROLE_TOGGLE_BUTTON, "AXToggle"},
             Case{ATSPI_ROLE_ENTRY, "AXTextField"},
             Case{ATSPI_ROLE_STATIC, "AXStaticText"},
             Case{ATSPI_ROLE_LABEL, "AXStaticText"},
             Case{ATSPI_ROLE_DOCUMENT_WEB, "AXWebArea"},
             Case{ATSPI_ROLE_TREE_TABLE, "AXOutline"},
             Case{ATSPI_ROLE_CHECK_MENU_ITEM, "AXMenuItem"},
             Case{ATSPI_ROLE_PUSH_BUTTON_MENU, "AXMenuButton"},
             Case{ATSPI_ROLE_DIALOG, "AXWindow"},
             Case{ATSPI_ROLE_FILLER, "AXGroup"},
             Case{130, "AXSwitch"},
             Case{ATSPI_ROLE_INVALID, "AXUnknown"},
             Case{-1, "AXUnknown"},
             Case{100'000, "AXUnknown"},
             Case{std::numeric_limits<std::int64_t>::max(), "AXUnknown"},
         }) {
        EXPECT_EQ(axRole(role), expected) << role;
    }
}

} // namespace
} // namespace lumetry::atspi
