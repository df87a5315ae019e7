#include "reports.h"

#include "bench/shared/statistics.h"
#include "bench/shared/widget_factory.h"
#include "measured_page.h"
#include "probes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumetry::latency {
namespace {

using namespace bench;

constexpr double frameMicroseconds = 1e6 / 60;

using Groups = std::map<std::string, std::vector<Sample>>;

using Value = double (*)(const Sample&);

Cost costIn(const std::vector<Sample>& samples, Value value) {
    std::vector<double> values;
    values.reserve(samples.size());
    std::ranges::transform(samples, std::back_inserter(values), value);
    return costOf(values);
}

std::string cell(const std::vector<Sample>& samples, Value value) {
    const Cost cost = costIn(samples, value);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.2f / %.2f", cost.median / 1000, cost.slow / 1000);
    return text.data();
}

double whole(const Sample& sample) {
    return sample.update + sample.repaint;
}

void printRow(const std::string& what, const std::vector<Sample>& samples) {
    const auto with = [&](Value value) { return cell(samples, value); };
    std::printf("| %s | %zu | %s | %s | %s | %s | %s | %s | %.1f / %.1f |\n", what.c_str(),
                samples.size(), with(whole).c_str(),
                with([](const Sample& sample) { return sample.accessibility; }).c_str(),
                with([](const Sample& sample) { return sample.capture; }).c_str(),
                with([](const Sample& sample) { return sample.windows; }).c_str(),
                with([](const Sample& sample) { return sample.analysis(); }).c_str(),
                with([](const Sample& sample) { return sample.repaint; }).c_str(),
                mean(valuesOf(samples, &Sample::requests)),
                mean(valuesOf(samples, &Sample::waits)));
}

void printTable(const char* title, const Groups& groups) {
    std::printf("\n%s: new element and its readout, milliseconds (median / 95 %%)\n\n", title);
    std::puts("| element | samples | whole | accessibility | capture | windows | analysis | "
              "drawing | requests / waits |\n|---|---|---|---|---|---|---|---|---|");
    std::vector<double> all;
    for (const auto& [what, samples] : groups) {
        printRow(what, samples);
        for (const Sample& sample : samples) {
            all.push_back(whole(sample));
        }
    }
    const double slow = quantile(all, 0.95);
    std::printf("\nall: 95 %% within %.1f ms, %s one frame of 60 Hz (%.1f ms)\n", slow / 1000,
                slow <= frameMicroseconds ? "less than" : "more than", frameMicroseconds / 1000);
    for (const auto& [what, samples] : groups) {
        if (costIn(samples, whole).slow > frameMicroseconds) {
            std::printf("slower than that: %s\n", what.c_str());
        }
    }
}

void reportWidgetFactory() {
    desktop::PrivateDesktop desktop;
    const WidgetFactory factory(desktop);
    const auto points = gridOver(intersect(factory.window, {0, 0, 1280, 800}));
    Groups groups;
    for (int round = 0; round < 3; ++round) {
        for (const Sample& sample : probeSession(desktop, points)) {
            if (sample.anew) {
                groups[sample.bucket].push_back(sample);
            }
        }
    }
    printTable(WidgetFactory::name, groups);
}

void reportPage() {
    constexpr double slowestList = 3; // times a button
    desktop::PrivateDesktop desktop;
    const MeasuredPage page(desktop);
    const auto samples = firstSamples(probeSession(desktop, MeasuredPage::points()));
    Groups groups;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const MeasuredPage::Spot& spot = MeasuredPage::spotOf(i);
        if (samples[i].bucket != spot.bucket || !samples[i].anew) {
            throw std::runtime_error(std::string(spot.name) + " was taken for " +
                                     samples[i].bucket);
        }
        groups[samples[i].bucket + ": " + spot.name].push_back(samples[i]);
    }
    printTable("a page in Chromium", groups);
    const auto timesAButton = [&](Value value) {
        return costIn(groups.at("collection: list of 300 items"), value).median /
               costIn(groups.at("control: button"), value).median;
    };
    const double ratio = timesAButton(whole);
    std::printf("a list of 300 items takes %.1f times as long as a button (%s %.0f), %.1f times "
                "without the drawing\n",
                ratio, ratio <= slowestList ? "within" : "more than", slowestList,
                timesAButton([](const Sample& sample) { return sample.update; }));
}

} // namespace

void reportBuckets() {
    reportWidgetFactory();
    reportPage();
}

} // namespace lumetry::latency
