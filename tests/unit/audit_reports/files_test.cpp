#include "lumetry_audit/reports/baseline.h"
#include "lumetry_audit/reports/configuration.h"
#include "lumetry_audit/reports/files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>

namespace lumetry {
namespace {

/// A folder of the test's own.
class AuditFiles : public testing::Test {
public:
    AuditFiles() { std::filesystem::create_directory(folder_); }
    ~AuditFiles() override { std::filesystem::remove_all(folder_); }
    AuditFiles(const AuditFiles&) = delete;
    AuditFiles& operator=(const AuditFiles&) = delete;

    [[nodiscard]] std::filesystem::path at(const std::string& name) const { return folder_ / name; }
    /// What is wrong with a configuration.
    [[nodiscard]] std::string problemOf(const std::string& text) const {
        std::string problem;
        EXPECT_TRUE(writeFile(at("audit.toml"), text, problem)) << problem;
        static_cast<void>(readConfiguration(at("audit.toml"), problem));
        const auto sentence = problem.find("line ");
        return sentence == std::string::npos ? problem : problem.substr(sentence);
    }

private:
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                    ("lumetry-audit-files-" + std::to_string(getpid()));
};

TEST_F(AuditFiles, WritesToWhatIsNoOrdinaryFile) {
    std::string problem;
    EXPECT_FALSE(writeFile("/dev/full", "report", problem));
    EXPECT_NE(problem.find("/dev/full cannot be written"), std::string::npos) << problem;
    EXPECT_FALSE(writeFile(at(""), "report", problem));
    EXPECT_FALSE(readFile(at("")));

    const auto pipe = at("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_TRUE(writeFile(pipe, "report", problem)) << problem;
    std::array<char, 16> got{};
    EXPECT_EQ(read(reader, got.data(), got.size()), 6);
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));

    std::filesystem::create_symlink("target", at("link"));
    EXPECT_TRUE(writeFile(at("link"), "report", problem)) << problem;
    EXPECT_EQ(readFile(at("target")), "report");
}

TEST_F(AuditFiles, KnowsAFindingAgainWhateverTheWindowIsTitled) {
    Finding height;
    height.rule = Rule::consistency;
    height.kind = "height";
    height.path = "Window · 10:41 / Group / WebArea · (1) Inbox / Button · Save";
    std::string problem;
    ASSERT_TRUE(writeBaseline(at("known.json"), std::array{height}, problem)) << problem;
    const auto baseline = readBaseline(at("known.json"), problem);
    ASSERT_TRUE(baseline) << problem;
    Finding padding = height;
    padding.kind = "padding";
    Finding elsewhere = height;
    elsewhere.path = "Window · 10:41 / Button · Save";
    height.path = "Window · 10:42 / Group / WebArea · (2) Inbox / Button · Save";
    std::vector<Finding> findings = {height, padding, elsewhere};
    apply(*baseline, findings);
    EXPECT_TRUE(findings[0].baseline);
    EXPECT_FALSE(findings[1].baseline);
    EXPECT_FALSE(findings[2].baseline);
}

TEST_F(AuditFiles, SaysWhatIsWrongFirstInAConfiguration) {
    EXPECT_EQ(problemOf(""), "");
    EXPECT_EQ(problemOf("limit = 2.7\n"),
              "line 1: \"limit\" has to be a whole number from 1 to 1000000.");
    // In the order of the file, whatever its tables are called.
    EXPECT_TRUE(
        problemOf("[text-size]\nminimum = -1\n[contrast]\nminimum = 0\n").starts_with("line 2: "));
    EXPECT_TRUE(problemOf("[[ignore]]\nrole = \"a\"\nreason = 3\n").starts_with("line 3: "));
}

TEST_F(AuditFiles, IgnoresByTheWholeTitle) {
    Finding finding;
    finding.header = "Button · Subscribe to our newslette";
    finding.role = "Button";
    finding.title = "Subscribe to our newsletter · now";
    Ignored ignored;
    ignored.role = "Button";
    ignored.title = "Subscribe * · now";
    EXPECT_TRUE(ignored.matches(finding));
    ignored.title = "Subscribe to our newslette";
    EXPECT_FALSE(ignored.matches(finding));
}

} // namespace
} // namespace lumetry
