// How right the measurements are: what lumetry-measure says of the elements of a page in a browser
// against what the browser itself says of them.
//
//   lumetry_accuracy [--browser chromium|firefox]
//
// LUMETRY_ACCURACY_PICTURE may name a PNG file for a picture of the page.

#include "browser.h"
#include "comparison.h"
#include "page.h"
#include "page_server.h"
#include "reading.h"
#include "report.h"
#include "truth.h"

#include "support/processes/wait_until.h"
#include "support/real_desktop/chromium.h"
#include "support/real_desktop/firefox.h"
#include "support/real_desktop/private_desktop.h"
#include "support/real_desktop/screenshot.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace lumetry::accuracy;
using namespace lumetry::desktop;

/// The tree of a page is built once it is asked for, and arrives piece by piece.
void awaitTree(const PrivateDesktop& desktop, const Truth& last) {
    (void)requireUntil("the tree of the page",
                       [&] { return measure(desktop, last.point).header.starts_with(last.role); });
}

ChildProcess startBrowser(Browser browser, PrivateDesktop& desktop, const std::string& html) {
    return browser == Browser::firefox ? startFirefoxWith(desktop, html, FirefoxGuise::application)
                                       : startChromiumWith(desktop, html);
}

void run(Browser kind) {
    DesktopOptions options;
    options.width = screenWidth;
    options.height = screenHeight;
    PrivateDesktop desktop(options);
    PageServer server(pageHtml(), truthPath);
    const auto browser = startBrowser(
        kind, desktop, "<meta http-equiv=refresh content='0;url=" + server.address() + "'>");
    const std::vector<Truth> truths = parseTruth(server.waitForPost(generousDeadline));
    if (const char* picture = std::getenv("LUMETRY_ACCURACY_PICTURE")) {
        writePng(screenshot(desktop.server()), picture);
    }
    awaitTree(desktop, truths.back());
    std::vector<Finding> findings;
    for (const Truth& truth : truths) {
        for (Finding& finding : compare(truth, measure(desktop, truth.point))) {
            findings.push_back(std::move(finding));
        }
    }
    std::printf("%zu elements\n\n", truths.size());
    printReport(findings, kind);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App options("Measures a page in a browser and compares with what the browser says of it.",
                     "lumetry_accuracy");
    Browser browser = Browser::chromium;
    const std::map<std::string, Browser> browsers = {{"chromium", Browser::chromium},
                                                     {"firefox", Browser::firefox}};
    options.add_option("--browser", browser, "Which browser shows the page")
        ->transform(CLI::CheckedTransformer(browsers));
    CLI11_PARSE(options, argc, argv);
    try {
        run(browser);
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_accuracy: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
