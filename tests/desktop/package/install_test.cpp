#include "rig/processes/child_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <cstdlib>

namespace lumetry::desktop {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Pair;

const std::string applicationId = "app.lumetry.Lumetry";

/// The keys of a desktop entry or D-Bus service of one group.
std::map<std::string, std::string> entryKeys(const fs::path& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path << " cannot be read";
    std::map<std::string, std::string> keys;
    for (std::string line; std::getline(file, line);) {
        if (const auto equals = line.find('='); equals != std::string::npos) {
            keys[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }
    return keys;
}

/// What cmake --install puts below a folder that goes with the test.
class Install : public testing::Test {
protected:
    Install() {
        std::string name = (fs::temp_directory_path() / "lumetry-install-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder can be made in " +
                                     fs::temp_directory_path().string());
        }
        folder_ = name;
    }
    ~Install() override { fs::remove_all(folder_); }

    static void install(const fs::path& prefix, const std::string& stage = {}) {
        ProcessOptions options;
        options.environment.erase("DESTDIR");
        if (!stage.empty()) {
            options.environment["DESTDIR"] = stage;
        }
        const auto run = runProgram(
            {LUMETRY_CMAKE, "--install", LUMETRY_BUILD, "--prefix", prefix.string()}, options);
        ASSERT_EQ(run.status.code, 0) << run.output << run.error;
    }

    [[nodiscard]] const fs::path& folder() const { return folder_; }

private:
    fs::path folder_;
};

TEST_F(Install, StartsTheInstalledPrograms) {
    ASSERT_NO_FATAL_FAILURE(install(folder()));
    const auto measure = runProgram({(folder() / "bin/lumetry-measure").string(), "--help"});
    EXPECT_EQ(measure.status.code, 0) << measure.error;
    EXPECT_THAT(measure.output, HasSubstr("--json"));

    ProcessOptions noDisplay;
    noDisplay.environment.erase("DISPLAY");
    noDisplay.environment.erase("WAYLAND_DISPLAY");
    const auto lumetry = runProgram({(folder() / "bin/lumetry").string()}, noDisplay);
    EXPECT_EQ(lumetry.status.code, 1);
    EXPECT_TRUE(lumetry.error.starts_with("lumetry: ")) << lumetry.error;
}

TEST_F(Install, TheDesktopFindsTheProgramByItsEntries) {
    ASSERT_NO_FATAL_FAILURE(install(folder()));
    const fs::path entry = folder() / "share/applications" / (applicationId + ".desktop");
    const fs::path autostart = folder() / "share/lumetry/autostart" / entry.filename();

    const auto validation =
        runProgram({"desktop-file-validate", entry.string(), autostart.string()});
    EXPECT_EQ(validation.status.code, 0) << validation.output;
    EXPECT_EQ(validation.output, "");

    for (const fs::path& path : {entry, autostart}) {
        SCOPED_TRACE(path);
        EXPECT_THAT(entryKeys(path), Contains(Pair("Exec", "lumetry")));
        EXPECT_THAT(entryKeys(path), Contains(Pair("Icon", applicationId)));
    }
    EXPECT_THAT(entryKeys(entry), Contains(Pair("DBusActivatable", "true")));
    // A session starts its autostart entries as programs.
    EXPECT_FALSE(entryKeys(autostart).contains("DBusActivatable"));
}

TEST_F(Install, TheServiceNamesTheProgramByItsWholePath) {
    const fs::path service = "share/dbus-1/services/" + applicationId + ".service";
    struct Case {
        const char* name;
        fs::path prefix;
        std::string stage;
    };
    const std::array cases = {
        Case{"below a prefix", folder() / "prefix", ""},
        Case{"staged for a prefix", "/opt/lumetry", (folder() / "stage").string()},
    };
    for (const auto& [name, prefix, stage] : cases) {
        SCOPED_TRACE(name);
        ASSERT_NO_FATAL_FAILURE(install(prefix, stage));
        const auto keys = entryKeys(stage + (prefix / service).string());
        EXPECT_THAT(keys, Contains(Pair("Name", applicationId)));
        EXPECT_THAT(keys, Contains(Pair("Exec", (prefix / "bin/lumetry").string())));
        EXPECT_TRUE(fs::exists(stage + (prefix / "bin/lumetry").string()));
    }
}

} // namespace
} // namespace lumetry::desktop
