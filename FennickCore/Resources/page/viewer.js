// ---- Viewer: one photo, as large as the screen

const viewer = (function () {
  const gap = 16;                // between two photos side by side
  const most = 6;                // times the fitted size
  const stage = $.stage;
  const slides = new Map();      // what is seen and its two neighbours, by item
  const fingers = new Map();     // where each touches, measured from the middle of the screen
  let at = -1;                   // the place of the photo in the list, -1 while closed
  let list = [];
  let scale = 1, x = 0, y = 0;   // how the photo is zoomed and moved
  let dx = 0, dy = 0, axis = '';  // how far an unzoomed photo is dragged, and which way
  let start = 0;                 // when the first finger came down
  let tapped = 0;

  // -- Showing

  function make(item) {
    const slide = document.createElement('div');
    const words = document.createElement('p');
    slide.className = 'slide';
    words.textContent = '这张没有预览，可以下载原图 / No preview of this one; the original can be downloaded';
    slide.append(words, picture(item, item.source || ''));
    slide.classList.toggle('missing', item.cell.dataset.state === 'missing');
    slides.set(item, slide);
    stage.append(slide);
    return slide;
  }

  function picture(item, source) {
    const image = new Image();
    image.alt = item.name;
    // Prevents a mouse from dragging the image out of the page; a long press on a phone needs the default.
    if (matchMedia('(hover: hover)').matches) image.draggable = false;
    if (source) image.src = source;
    return image;
  }

  // Shows the small picture until the large one is decoded. The large one has the URL of the photo, so that a file
  // saved by a long press has the right name; the browser has it in its cache by then.
  function sharpen(item) {
    const slide = slides.get(item);
    if (!slide || slide.unwant) return;
    const address = gallery.url('thumb', item, '&s=large');
    slide.unwant = pictures.want(address, item === list[at], async (blob) => {
      if (!blob) return slide.classList.toggle('missing', !item.source);
      const large = picture(item, address);
      await large.decode().catch(() => {});
      if (slides.get(item) !== slide) return;
      slide.lastChild.replaceWith(large);
      slide.classList.remove('missing');
      paint();
    });
  }

  function drop(item) {
    const slide = slides.get(item);
    if (slide.unwant) slide.unwant();
    slide.remove();
    slides.delete(item);
  }

  function place(glide) {
    const item = list[at];
    const near = [item, list[at + 1], list[at - 1]].filter(Boolean);
    Array.from(slides.keys()).forEach((other) => {
      if (!near.includes(other)) drop(other);
    });
    stage.classList.toggle('glide', glide);
    near.forEach((other) => slides.get(other) || make(other));
    stage.getBoundingClientRect();
    paint();
    caption(item);
    near.forEach(sharpen);
  }

  function caption(item) {
    const date = item.time > 0 ? ' · ' + new Date(item.time * 1000).toLocaleString('sv').slice(0, 16) : '';
    $.viewCount.textContent = at + 1 + ' / ' + list.length;
    $.viewName.textContent = item.name;
    $.viewFacts.textContent = bytesText(item.bytes) + date;
    $.viewSave.href = gallery.url('file', item);
    $.viewSave.download = item.name;
    $.viewPrev.disabled = !at;
    $.viewNext.disabled = at === list.length - 1;
    if (document.activeElement.disabled || !$.viewer.contains(document.activeElement)) $.viewer.focus();
  }

  function paint() {
    slides.forEach((slide, item) => {
      const offset = (list.indexOf(item) - at) * (innerWidth + gap);
      slide.style.transform = 'translate3d(' + (offset + dx) + 'px,' + (offset ? 0 : dy) + 'px,0)';
      slide.lastChild.style.transform = offset ? '' : 'translate3d(' + x + 'px,' + y + 'px,0) scale(' + scale + ')';
    });
  }

  // -- Moving

  function rest() {
    [dx, dy, axis] = [0, 0, ''];
    stage.classList.add('glide');
    paint();
  }

  function go(step) {
    [dx, dy, axis] = [0, 0, ''];
    if (!list[at + step]) return rest();
    at += step;
    [scale, x, y] = [1, 0, 0];
    place(true);
  }

  function zoom(factor, point) {
    const next = Math.max(1, Math.min(most, scale * factor));
    x = point.x - (point.x - x) * next / scale;
    y = point.y - (point.y - y) * next / scale;
    scale = next;
    pan(0, 0);
  }

  // The edges of a zoomed photo never leave a gap on the screen.
  function pan(right, down) {
    const { naturalWidth: w, naturalHeight: h } = slides.get(list[at]).lastChild;
    const fit = Math.min(innerWidth / w, innerHeight / h) || 0;
    const clamp = (value, room) => Math.max(-room, Math.min(room, value));
    x = clamp(x + right, Math.max(0, (w * fit * scale - innerWidth) / 2));
    y = clamp(y + down, Math.max(0, (h * fit * scale - innerHeight) / 2));
  }

  const spot = (event) => ({ x: event.clientX - innerWidth / 2, y: event.clientY - innerHeight / 2 });

  function grip() {
    const [a, b = a] = Array.from(fingers.values());
    return { x: (a.x + b.x) / 2, y: (a.y + b.y) / 2, span: Math.hypot(a.x - b.x, a.y - b.y) };
  }

  function down(event) {
    if (event.button) return;
    stage.setPointerCapture(event.pointerId);
    stage.classList.remove('glide');
    fingers.set(event.pointerId, spot(event));
    if (fingers.size === 1) start = now();
    else [dx, dy, axis] = [0, 0, 'both'];
  }

  function move(event) {
    if (!fingers.has(event.pointerId)) return;
    const before = grip();
    fingers.set(event.pointerId, spot(event));
    const after = grip();
    const right = after.x - before.x, lower = after.y - before.y;
    if (fingers.size > 1) zoom(before.span ? after.span / before.span : 1, after);
    if (scale > 1) {
      axis = 'both';
      pan(right, lower);
    } else if (axis !== 'both') {
      drag(right, lower);
    }
    paint();
  }

  function drag(right, lower) {
    dx += right;
    dy += lower;
    if (!axis && Math.hypot(dx, dy) > 8) axis = Math.abs(dx) > Math.abs(dy) ? 'x' : 'y';
    if (axis === 'x') dy = 0;
    if (axis === 'y') dx = 0;
  }

  function up(event) {
    if (!fingers.delete(event.pointerId) || fingers.size) return;
    const quick = now() - start < 300;
    const far = Math.abs(dx) > innerWidth / 4 || (quick && Math.abs(dx) > 30);
    if (event.type === 'pointerup') {
      if (!axis && quick) return tap(event);
      if (axis === 'x' && far) return go(dx < 0 ? 1 : -1);
      if (axis === 'y' && dy > 100) return close();
    }
    rest();
  }

  function tap(event) {
    rest();
    const twice = now() - tapped < 300;
    tapped = twice ? 0 : now();
    if (!twice) return;
    zoom(scale > 1 ? 0 : 2.5, spot(event));
    paint();
  }

  // -- Opening and closing

  function open(item) {
    list = gallery.items;
    at = list.indexOf(item);
    [scale, x, y, dx, dy] = [1, 0, 0, 0, 0];
    $.viewer.hidden = false;
    stay(true);
    history.pushState({ viewer: true }, '');
    place(false);
  }

  // The page behind the viewer neither scrolls nor takes the focus.
  function stay(still) {
    document.documentElement.classList.toggle('still', still);
    [$.page, $.tabs, $.fetcher].forEach((part) => { part.inert = still; });
  }

  function shut() {
    if (at < 0) return;
    const button = list[at].button;
    at = -1;
    fingers.clear();
    Array.from(slides.keys()).forEach(drop);
    $.viewer.hidden = true;
    stay(false);
    button.focus();
  }

  function close() {
    if (at < 0) return;
    shut();
    history.back();
  }

  // After a change of the list, the current photo stays visible, or the next one replaces it if it is gone.
  function refresh() {
    if (at < 0) return;
    const next = gallery.items;
    const found = next.indexOf(list[at]);
    if (!next.length) return close();
    if (found < 0) [scale, x, y] = [1, 0, 0];
    at = found < 0 ? Math.min(at, next.length - 1) : found;
    list = next;
    place(false);
  }

  function keys(event) {
    const act = {
      Escape: close, ArrowLeft: () => go(-1), ArrowRight: () => go(1),
      '+': () => zoom(1.5, { x: 0, y: 0 }), '-': () => zoom(1 / 1.5, { x: 0, y: 0 }),
    }[event.key];
    if (!act || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    act();
    if (at >= 0) paint();
  }

  function wire() {
    on(stage, 'pointerdown', down);
    on(stage, 'pointermove', move);
    on(stage, 'pointerup pointercancel', up);
    on(stage, 'wheel', (event) => {
      event.preventDefault();
      zoom(event.deltaY < 0 ? 1.2 : 1 / 1.2, spot(event));
      paint();
    }, { passive: false });
    on($.viewer, 'keydown', keys);
    on($.viewClose, 'click', close);
    on($.viewPrev, 'click', () => go(-1));
    on($.viewNext, 'click', () => go(1));
    on(window, 'popstate', shut);
    on(window, 'resize', () => { if (at >= 0) place(false); });
    if (history.state) history.replaceState(null, '');
  }

  return { wire, open, close, refresh };
})();
