#include "page.h"

namespace lumetry::accuracy {

std::string pageScript() {
    // A point in the middle of an element hits the text that stands there, one in its padding the
    // element itself; data-point says which of them is meant.
    return R"(
const rectOf = box => ({x: box.x, y: box.y, width: box.width, height: box.height});
const contentOf = element => {
  const range = document.createRange();
  range.selectNodeContents(element);
  return range;
};
const fillOf = element => {
  for (let e = element; e; e = e.parentElement) {
    const fill = getComputedStyle(e).backgroundColor;
    if (!/, 0\)$/.test(fill)) return fill;
  }
  return 'rgb(255, 255, 255)';
};
const pointIn = element => {
  const frame = element.getBoundingClientRect();
  if (element.dataset.point === 'edge') {
    return {x: frame.right - 4, y: (frame.top + frame.bottom) / 2};
  }
  const box = element.dataset.point === 'text' ? contentOf(element).getClientRects()[0] : frame;
  return {x: (box.left + box.right) / 2, y: (box.top + box.bottom) / 2};
};
const truthOf = element => {
  const style = getComputedStyle(element);
  const border = side => parseFloat(style['border' + side + 'Width']);
  const padding = side => parseFloat(style['padding' + side]) + border(side);
  return {
    id: element.id, kind: element.dataset.kind, role: element.dataset.role,
    point: pointIn(element),
    frame: rectOf(element.getBoundingClientRect()),
    text: rectOf(contentOf(element).getBoundingClientRect()),
    items: [...element.children].map(child => rectOf(child.getBoundingClientRect())),
    family: style.fontFamily.split(',')[0].replaceAll('"', ''),
    fontSize: parseFloat(style.fontSize), fontWeight: parseInt(style.fontWeight),
    color: style.color, fill: fillOf(element), radius: parseFloat(style.borderTopLeftRadius),
    padding: ['Top', 'Right', 'Bottom', 'Left'].map(padding),
  };
};
const settled = () => new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)));
const report = async () => {
  await document.fonts.ready;
  await settled();
  const root = document.documentElement;
  const elements = [...document.querySelectorAll('[data-kind]')];
  await fetch('/truth', {method: 'POST', body: JSON.stringify({
    overflow: {x: root.scrollWidth - innerWidth, y: root.scrollHeight - innerHeight},
    origin: {x: screenX, y: screenY}, pixelRatio: devicePixelRatio,
    elements: elements.map(truthOf),
  })});
};
addEventListener('load', report);
)";
}

} // namespace lumetry::accuracy
