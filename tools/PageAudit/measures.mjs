// Functions that run inside the page and measure what the user sees.

// Returns every visible text whose contrast with its background is below `least`.
export function faintTexts(least) {
  const parse = (color) => {
    const [r, g, b, a = 1] = color.match(/[\d.]+/g).map(Number);
    return { r, g, b, a };
  };
  const over = (top, below) => {
    const mix = (channel) => top[channel] * top.a + below[channel] * (1 - top.a);
    return { r: mix('r'), g: mix('g'), b: mix('b'), a: 1 };
  };
  const luminance = ({ r, g, b }) => {
    const linear = (v) => (v / 255 <= 0.03928 ? v / 255 / 12.92 : ((v / 255 + 0.055) / 1.055) ** 2.4);
    return 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
  };
  const contrast = (a, b) => {
    const [light, dark] = [luminance(a), luminance(b)].sort((x, y) => y - x);
    return (light + 0.05) / (dark + 0.05);
  };
  const chain = (element) => {
    const parents = [];
    for (let at = element; at; at = at.parentElement) parents.push(at);
    return parents.reverse();
  };
  const faint = [];
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    const box = element.getBoundingClientRect();
    if (!walker.currentNode.textContent.trim() || box.width < 2 || box.height < 2) continue;
    let ground = { r: 255, g: 255, b: 255, a: 1 };
    let opacity = 1;
    for (const parent of chain(element)) {
      const style = getComputedStyle(parent);
      opacity *= Number(style.opacity);
      ground = over(parse(style.backgroundColor), ground);
    }
    const ink = parse(getComputedStyle(element).color);
    const ratio = contrast(over({ ...ink, a: ink.a * opacity }, ground), ground);
    if (ratio < least) faint.push(`${ratio.toFixed(2)}: ${walker.currentNode.textContent.trim()}`);
  }
  return faint;
}

// Returns the visible controls that are smaller than `least` pixels. A label that contains its input is the target, and
// the invisible margin of a button counts.
export function smallTargets(least) {
  return Array.from(document.querySelectorAll('button, label'), (control) => {
    const box = control.getBoundingClientRect();
    const margin = -parseFloat(getComputedStyle(control, '::after').top) || 0;
    return { name: control.innerText || control.getAttribute('aria-label'), width: box.width, height: box.height + 2 * margin };
  }).filter((target) => target.width > 0 && (target.width < least || target.height < least));
}

export function widerThanTheScreen() {
  return document.documentElement.scrollWidth > document.documentElement.clientWidth;
}
