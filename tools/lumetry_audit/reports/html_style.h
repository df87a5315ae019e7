#pragma once

#include <string_view>

namespace lumetry {

/// How the page of an audit looks. It has no scripts: numbers are links between list and picture.
inline constexpr std::string_view htmlStyle = R"(
:root { --error: #b3123e; --warning: #7a4b00; --known: #4a4a55; --ink: #17171c; --soft: #55555f;
  --line: #d9d9e0; --paper: #ffffff; --ground: #f4f4f7; }
* { box-sizing: border-box; }
body { margin: 0; padding: 32px; background: var(--ground); color: var(--ink);
  font: 15px/1.5 Inter, system-ui, sans-serif; }
h1 { margin: 0 0 8px; font-size: 28px; line-height: 1.2; }
h2 { margin: 0 0 12px; font-size: 18px; line-height: 1.3; }
h3 { margin: 20px 0 4px; font-size: 15px; }
p { margin: 0 0 4px; }
a { color: inherit; }
header, footer { max-width: 100ch; }
header { margin-bottom: 24px; }
footer { margin-top: 24px; color: var(--soft); }
.where { color: var(--soft); font-size: 13px; overflow-wrap: anywhere; }
main { display: grid; grid-template-columns: minmax(682px, 3fr) minmax(300px, 2fr); gap: 24px;
  align-items: start; }
section { background: var(--paper); border: 1px solid var(--line); border-radius: 8px;
  padding: 20px; }
.picture { position: sticky; top: 16px; }
.frame { position: relative; max-width: 100%; }
.frame img { display: block; width: 100%; height: auto;
  background: repeating-linear-gradient(45deg, #ececf1 0 8px, #ffffff 8px 16px); }
.outline { position: absolute; border: 2px solid var(--kind); box-shadow: 0 0 0 1px #ffffff;
  pointer-events: none; }
.badge { position: absolute; z-index: 1; width: 24px; height: 24px; background: var(--kind);
  color: #ffffff; font-size: 12px; line-height: 24px; text-align: center; text-decoration: none;
  border-radius: 4px; transform: translateY(-100%); }
.badge.inside { transform: none; }
.badge:hover, .badge:focus-visible, .badge:target { z-index: 3; outline: 2px solid #ffffff; }
.badge:hover + .outline, .badge:focus-visible + .outline, .badge:target + .outline { z-index: 2;
  box-shadow: 0 0 0 2px #ffffff, 0 0 0 6px var(--kind); }
.error { --kind: var(--error); }
.warning { --kind: var(--warning); }
.known { --kind: var(--known); }
.findings ol { list-style: none; margin: 8px 0 0; padding: 0; }
.findings li { padding: 8px 12px; border-left: 4px solid var(--kind);
  border-bottom: 1px solid var(--line); scroll-margin: 16px; }
.findings li:target { background: #fff4d6; }
.findings em { color: var(--kind); font-style: normal; font-size: 13px; }
.number { display: inline-block; min-width: 24px; padding: 0 6px; background: var(--kind);
  color: #ffffff; font-size: 13px; line-height: 24px; text-align: center; text-decoration: none;
  border-radius: 4px; }
.number:focus-visible { outline: 3px solid var(--ink); outline-offset: 2px; }
.inventory { margin-top: 24px; }
.inventory > div { display: grid; grid-template-columns: repeat(auto-fit, minmax(240px, 1fr));
  gap: 24px; }
.inventory h3 { margin-top: 0; }
.inventory ul { list-style: none; margin: 0; padding: 0; }
.inventory li { padding: 4px 0; }
.swatch, .corner { display: inline-block; width: 24px; height: 24px; margin-right: 8px;
  vertical-align: middle; border: 1px solid #8a8a94; }
.swatch { border-radius: 4px; }
.corner { border-width: 2px 0 0 2px; border-color: var(--ink); }
@media (max-width: 1100px) { main { display: block; } .picture { position: static; }
  .findings { margin-top: 24px; } }
@media print { body { background: #ffffff; padding: 0; } .picture { position: static; } }
)";

} // namespace lumetry
