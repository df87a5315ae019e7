#include "page.h"

namespace lumetry::accuracy {

std::string pageScript() {
    return R"(
const listed = box => [box.x, box.y, box.width, box.height];
const contentOf = element => {
  const range = document.createRange();
  range.selectNodeContents(element);
  return range;
};
const hexOf = css =>
  '#' + css.match(/\d+/g).slice(0, 3).map(n => (+n).toString(16).padStart(2, '0')).join('');
const fillOf = element => {
  for (let e = element; e; e = e.parentElement) {
    const fill = getComputedStyle(e).backgroundColor;
    if (!/, 0\)$/.test(fill)) return hexOf(fill);
  }
  return '#ffffff';
};
const itemsOf = element => [...(element.tBodies ? element.rows : element.children)]
  .map(item => item.getBoundingClientRect()).filter(box => box.width > 0).map(listed);
const placesOf = element => ({
  id: element.id, frame: listed(element.getBoundingClientRect()),
  items: itemsOf(element),
  ...(element.textContent ? {text: listed(contentOf(element).getBoundingClientRect())} : {}),
});
const styleOf = element => {
  const style = getComputedStyle(element);
  const inset = side => parseFloat(style['padding' + side]);
  return {
    family: style.fontFamily.split(',')[0].replaceAll('"', ''),
    size: parseFloat(style.fontSize), weight: parseInt(style.fontWeight),
    color: hexOf(style.color), fill: fillOf(element), radius: parseFloat(style.borderTopLeftRadius),
    // The text of a field stands in a box of its own, which fills what the padding leaves.
    ...(element.matches('input, textarea, select')
      ? {padding: ['Top', 'Right', 'Bottom', 'Left'].map(inset)} : {}),
  };
};
// Nothing can be said of how the browser draws a box to be ticked.
const truthOf = element => element.matches('.check, .radio')
  ? placesOf(element) : {...placesOf(element), ...styleOf(element)};
const measured = element => element.matches('.menubar') ? element.firstChild : element;
const settled = () => new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)));
const report = async () => {
  await document.fonts.ready;
  await settled();
  const elements = [...document.querySelectorAll('main > *')];
  await fetch('/truth', {method: 'POST', body: JSON.stringify({
    origin: [screenX * devicePixelRatio, screenY * devicePixelRatio], unit: devicePixelRatio,
    elements: elements.map(element => ({...truthOf(measured(element)), id: element.id})),
  })});
};
addEventListener('load', report);
)";
}

} // namespace lumetry::accuracy
