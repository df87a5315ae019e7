#include "platform/linux/system/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace lumetry {
namespace {

/// Files as the log is one, in a folder that others can write to as well.
class PrivateFile : public testing::Test {
protected:
    PrivateFile() { std::filesystem::create_directory(folder); }
    ~PrivateFile() override { std::filesystem::remove_all(folder); }

    void append(const char* text) { LinuxFileSystem().appendPrivately(file, text); }
    static std::string contents(const std::filesystem::path& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    const std::filesystem::path folder = testing::TempDir() + "lumetry-" + std::to_string(getpid());
    const std::filesystem::path file = folder / "log";
    const std::filesystem::path other = folder / "other";
};

TEST_F(PrivateFile, IsMadeForItsOwnerAndMadeAgainOnceDeleted) {
    append("a\n");
    append("b\n");
    EXPECT_EQ(contents(file), "a\nb\n");
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
    std::filesystem::remove(file);
    append("c\n");
    EXPECT_EQ(contents(file), "c\n");
    std::filesystem::remove_all(folder);
    append("d\n");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(PrivateFile, IsNeitherALinkNorAPipe) {
    std::ofstream(other) << "mine";
    std::filesystem::create_symlink(other, file);
    append("a\n");
    std::filesystem::remove(file);
    std::filesystem::create_hard_link(other, file);
    append("b\n");
    EXPECT_EQ(contents(other), "mine");
    std::filesystem::remove(file);
    std::filesystem::create_symlink(folder / "missing", file);
    append("c\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    append("d\n"); // which does not wait for somebody to read it
    const int reader = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    append("e\n");
    char read = 0;
    EXPECT_LE(::read(reader, &read, 1), 0);
    close(reader);
}

TEST_F(PrivateFile, IsNobodyElses) {
    std::ofstream(file) << "theirs";
    std::filesystem::permissions(file, std::filesystem::perms::all);
    if (chown(file.c_str(), 65534, 65534) != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    append("a\n");
    EXPECT_EQ(contents(file), "theirs");
}

} // namespace
} // namespace lumetry
