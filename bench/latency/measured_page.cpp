#include "measured_page.h"

#include "probes.h"

#include "rig/chromium.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string>

namespace lumetry::latency {
namespace {

constexpr std::size_t rounds = 60;

std::string listOf(int items) {
    std::string list;
    for (int item = 1; item <= items; ++item) {
        list += "<li>Item " + std::to_string(item) + "</li>";
    }
    return list;
}

std::string pageHtml() {
    return R"(<!doctype html><meta charset="utf-8"><title>Latency</title>
<style>
  * { position: absolute; margin: 0; box-sizing: border-box; font: 14px 'DejaVu Sans'; }
  html, body, span, li { position: static; }
  body { background: white; height: 800px; overflow: hidden; }
  button { left: 40px; width: 160px; height: 40px; border: 0; border-radius: 8px;
           background: #1d4ed8; color: white; }
  #plain { top: 40px; } #parts { top: 100px; }
  input { left: 40px; top: 160px; width: 240px; height: 36px; padding: 8px; }
  h1 { left: 40px; top: 220px; width: 240px; font-size: 24px; }
  p { left: 40px; top: 270px; width: 400px; }
  img { left: 40px; top: 320px; width: 160px; height: 90px; background: #7c3aed; }
  #card { left: 40px; top: 440px; width: 240px; padding: 20px; background: #fde68a;
          border-radius: 12px; }
  #card p { position: static; width: auto; height: 24px; }
  ul { list-style: none; padding: 12px; background: #f3f4f6; width: 200px; overflow: hidden; }
  li { height: 20px; margin-bottom: 4px; background: #dbeafe; }
  #short { left: 500px; top: 40px; } #long { left: 760px; top: 40px; height: 740px; }
</style>
<button id="plain">Buy now</button>
<button id="parts"><span>Add </span><span>to cart</span></button>
<input value="Ada Lovelace"><h1>Prices</h1><p>Costs are shown without tax</p>
<img alt="Cover" src="data:image/gif;base64,R0lGODlhAQABAAAAACwAAAAAAQABAAA=">
<div id="card" role="group" aria-label="Card"><p>One line</p><p>Another</p><p>A third</p></div>
<ul id="short">)" +
           listOf(8) + R"(</ul><ul id="long">)" + listOf(300) + "</ul>";
}

constexpr std::array<MeasuredPage::Spot, 9> spots = {{
    {"button", "control", {50, 60}},
    {"paragraph", "text", {60, 278}},
    {"list of 300 items", "collection", {766, 300}},
    {"text field", "input", {60, 178}},
    {"button with parts", "control", {50, 120}},
    {"list of 8 items", "collection", {506, 100}},
    {"heading", "text", {60, 236}},
    {"group", "generic", {50, 500}},
    {"image", "graphic", {120, 360}},
}};

/// The spots at which something else is found than there is; empty when there are none.
std::string misreadSpots(const desktop::PrivateDesktop& desktop) {
    std::vector<Point> points;
    std::ranges::transform(spots, std::back_inserter(points), &MeasuredPage::Spot::at);
    const auto samples = firstSamples(probeSession(desktop, points));
    std::string misread;
    for (std::size_t i = 0; i < spots.size(); ++i) {
        if (samples[i].bucket != spots[i].bucket) {
            misread += std::string(" ") + spots[i].name + " (" + samples[i].bucket + ")";
        }
    }
    return misread;
}

} // namespace

MeasuredPage::MeasuredPage(desktop::PrivateDesktop& desktop)
    : browser_(desktop::startChromiumWith(desktop, pageHtml())) {
    // Its tree is built once it is asked for, and arrives piece by piece.
    std::string wrong;
    const bool found = desktop::waitUntil([&] {
        wrong = misreadSpots(desktop);
        return wrong.empty();
    });
    if (!found) {
        throw std::runtime_error("elements of the page are not what they are:" + wrong);
    }
}

std::vector<Point> MeasuredPage::points() {
    std::vector<Point> points;
    points.reserve(rounds * spots.size());
    for (std::size_t round = 0; round < rounds; ++round) {
        for (const Spot& spot : spots) {
            points.push_back(spot.at);
        }
    }
    return points;
}

const MeasuredPage::Spot& MeasuredPage::spotOf(std::size_t point) {
    return spots[point % spots.size()];
}

} // namespace lumetry::latency
