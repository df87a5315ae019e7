// How right an audit is: what lumetry-audit finds in windows whose faults are known, because they
// were made with them.
//
//   lumetry_audit_accuracy [--kit chromium|gtk3]    without a kit both

#include "scene.h"

#include "rig/chromium.h"
#include "rig/desktop_windows.h"
#include "rig/private_desktop.h"
#include "rig/processes/wait_until.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace lumetry;
using namespace lumetry::auditing;

constexpr const char* title = "Audited scene";

struct Score {
    int expected = 0;
    int found = 0;
    int right = 0;
};

struct Miss {
    std::string rule;
    std::string what;
    std::string finding; ///< empty: there was none
};

/// What came of one kit.
struct Verdict {
    std::map<std::string, Score> scores; ///< by rule
    std::vector<Miss> misses;
    std::vector<Miss> coarse; ///< of what is told too coarsely, which does not count
};

std::optional<Json> auditOnce(const desktop::PrivateDesktop& desktop) {
    desktop::ProcessOptions options;
    options.environment = desktop.environment();
    const auto finished = desktop::runProgram(
        {LUMETRY_AUDIT, "--window", title, "--json", "--fail-on", "never"}, options);
    return finished.status.code == 0 ? std::optional(Json::parse(finished.output)) : std::nullopt;
}

/// Again and again until the same is found twice: a tree may arrive piece by piece.
Json audit(const desktop::PrivateDesktop& desktop, std::size_t fewestElements) {
    std::optional<Json> last;
    return *desktop::requireUntil("the scene to be audited", [&]() -> std::optional<Json> {
        const auto before = last;
        last = auditOnce(desktop);
        return last && last == before && last->at("elements") >= fewestElements ? last
                                                                                : std::nullopt;
    });
}

std::string described(const Json& finding) {
    return finding.at("path").get<std::string>() + ": " + finding.at("value").get<std::string>() +
           (finding.at("estimated").get<bool>() ? " (estimated)" : "") + ", " +
           finding.at("severity").get<std::string>();
}

Rect boxOf(const Json& finding) {
    const Json& box = finding.at("box");
    return {box.at(0), box.at(1), box.at(2), box.at(3)};
}

/// The findings of a rule whose middle is in the item.
std::vector<Json> findingsIn(std::vector<Json>& findings, const std::string& rule,
                             const Rect& area) {
    std::vector<Json> inside;
    std::erase_if(findings, [&](const Json& finding) {
        const Rect box = boxOf(finding);
        const bool fits =
            finding.at("rule") == rule && area.contains(Point{box.midX(), box.midY()});
        if (fits) {
            inside.push_back(finding);
        }
        return fits;
    });
    return inside;
}

Miss missOf(const std::string& rule, const std::string& what, const std::vector<Json>& found) {
    return {rule, what, found.empty() ? "" : described(found.front())};
}

void judge(Verdict& verdict, const std::string& rule, const std::string& what, bool wrong,
           const std::vector<Json>& found) {
    Score& score = verdict.scores[rule];
    score.expected += wrong ? 1 : 0;
    score.found += found.empty() ? 0 : 1;
    score.right += wrong && !found.empty() ? 1 : 0;
    if (wrong == found.empty()) {
        verdict.misses.push_back(missOf(rule, what, found));
    }
}

void judge(Verdict& verdict, const Scene& scene, const Json& report, Point origin) {
    std::vector<Json> findings = report.at("findings");
    std::erase_if(findings, [&](const Json& finding) {
        return !scene.rules.contains(finding.at("rule").get<std::string>());
    });
    for (const std::string& rule : scene.rules) {
        for (const Item& item : scene.items) {
            const Rect area = {item.box.x + origin.x, item.box.y + origin.y, item.box.width,
                               item.box.height};
            const auto found = findingsIn(findings, rule, area);
            const bool wrong = item.wrong.contains(rule);
            const std::string what = scene.name + ": " + item.what;
            if (!item.coarselyTold) {
                judge(verdict, rule, what, wrong, found);
            } else if (wrong == found.empty()) {
                verdict.coarse.push_back(missOf(rule, what, found));
            }
        }
    }
    for (const std::string& wrong : scene.wrong) {
        std::vector<Json> found;
        std::erase_if(findings, [&](const Json& finding) {
            const bool fits = finding.at("kind") == wrong;
            if (fits) {
                found.push_back(finding);
            }
            return fits;
        });
        judge(verdict, "consistency", scene.name + ": " + wrong, true, found);
    }
    for (const Json& elsewhere : findings) {
        judge(verdict, elsewhere.at("rule"), scene.name + ": outside of all", false, {elsewhere});
    }
}

std::string pageOf(const Scene& scene) {
    std::string page = "<!doctype html><html lang=en><meta charset=utf-8><title>" +
                       std::string(title) + R"(</title><style>
  * { margin: 0; box-sizing: border-box; }
  body { background: white; color: #111827; font: 14px 'DejaVu Sans'; }
  button, input, textarea, select, [role=button], [role=switch], [role=img] {
    border: 0; border-radius: 0; padding: 0 4px; font: inherit; appearance: none;
    background: #e5e7eb; color: #111827; outline: 0; }
  input[type=submit], input[type=button], button, [role=button] { min-width: 24px; }
  [role=button], [role=switch], [role=img] { width: 60px; height: 32px; }
  main > div > button, main > div > input, main > div > textarea { min-width: 60px;
    min-height: 28px; }
  main > button, main > input { min-width: 0; padding: 0; }
  ul { list-style: none; padding: 0; }
</style><main>)";
    for (const Item& item : scene.items) {
        page += item.html + "\n";
    }
    return page + "</main>";
}

desktop::DesktopOptions screen() {
    desktop::DesktopOptions options;
    options.width = 1280;
    options.height = 1040;
    return options;
}

void auditPage(Verdict& verdict, const Scene& scene) {
    desktop::PrivateDesktop desktop(screen());
    const auto browser = desktop::startChromiumWith(desktop, pageOf(scene));
    judge(verdict, scene, audit(desktop, scene.items.size()), {});
}

void auditWindow(Verdict& verdict, const Scene& scene) {
    if (!std::filesystem::exists(LUMETRY_AUDITED_GTK3)) {
        throw std::runtime_error("the window needs the package libgtk-3-dev");
    }
    desktop::PrivateDesktop desktop(screen());
    Json plan = Json::array();
    for (const Item& item : scene.items) {
        plan.push_back(item.widget);
    }
    const auto file = desktop.folder() / "plan";
    std::ofstream(file) << plan;
    const auto program = desktop.start({LUMETRY_AUDITED_GTK3, file.string()});
    const auto window = waitForWindow(desktop.server(), desktop::hasTitle(title));
    const auto placed =
        placeWindow(desktop.server(), window.id, {0, 0, window.bounds.width, window.bounds.height});
    judge(verdict, scene, audit(desktop, scene.items.size()), placed.bounds.origin());
}

void print(const char* prefix, const std::vector<Miss>& misses) {
    for (const Miss& miss : misses) {
        std::printf("  %s%s %s, %s%s%s\n", prefix,
                    miss.finding.empty() ? "missed:" : "too much:", miss.rule.c_str(),
                    miss.what.c_str(), miss.finding.empty() ? "" : " - ", miss.finding.c_str());
    }
}

void print(const char* kit, const Verdict& verdict) {
    std::printf("%s\n  %-12s %8s %8s %8s %10s %8s\n", kit, "rule", "expected", "found", "right",
                "precision", "recall");
    for (const auto& [rule, score] : verdict.scores) {
        const auto share = [right = score.right](int whole) {
            return whole > 0 ? 100.0 * right / whole : 100;
        };
        std::printf("  %-12s %8d %8d %8d %8.1f %% %6.1f %%\n", rule.c_str(), score.expected,
                    score.found, score.right, share(score.found), share(score.expected));
    }
    print("", verdict.misses);
    print("told too coarsely, not counted, ", verdict.coarse);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App command("How right an audit is.");
    std::string kit;
    command.add_option("--kit", kit, "Only this one")->check(CLI::IsMember({"chromium", "gtk3"}));
    CLI11_PARSE(command, argc, argv);
    try {
        if (kit.empty() || kit == "chromium") {
            Verdict verdict;
            for (const Scene& scene : pageScenes()) {
                auditPage(verdict, scene);
            }
            print("chromium", verdict);
        }
        if (kit.empty() || kit == "gtk3") {
            Verdict verdict;
            for (const Scene& scene : windowScenes()) {
                auditWindow(verdict, scene);
            }
            print("gtk3", verdict);
        }
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_audit_accuracy: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
