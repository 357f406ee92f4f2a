// ---- Gallery: the list of photos on the computer

const gallery = (function () {
  const chosen = new Set();
  const grid = $.grid;
  let items = [];         // { name, bytes, time, version, id, cell, source }, in the order of the computer
  let total = 0;          // of all photos, of which the computer lists the first
  let filled = false;     // the list has been read
  let open = false;       // this view, not the upload's, is shown
  let choosing = false;
  let asking = false;
  let elsewhere = 0;      // where the other view was scrolled to

  const url = (route, item, more) => path(route + '/' + encodeURIComponent(item.name), (item.version ? '&v=' + item.version : '') + (more || ''));
  const owner = (node) => items.find((item) => item.cell === node.closest('li'));
  const near = new IntersectionObserver(look, { rootMargin: '400px' });

  // -- The list

  async function load() {
    if (asking || !open) return;
    asking = true;
    try {
      const { code, json, text } = await query('gallery', '&versions=1');
      if (json) fill(json.photos || json, json.total || json.length);
      else if (!pictures.refused(code, text)) tell('list');
    } catch (error) {
      tell(error instanceof SyntaxError ? 'list' : 'lost');
    }
    asking = false;
  }

  function fill(list, all) {
    total = all;
    const known = new Map(items.map((item) => [item.id, item]));
    const next = list.map((entry) => {
      const id = entry.name + '/' + (entry.version || entry.bytes + '/' + entry.time);
      return known.get(id) || Object.assign(entry, { id });
    });
    tell('');
    if (!filled || next.length !== items.length || next.some((item, i) => item !== items[i])) steady(() => arrange(next));
    filled = true;
    tally();
  }

  function arrange(next) {
    const kept = new Set(next);
    const fresh = next.filter((item) => !item.cell);
    items.filter((item) => !kept.has(item)).forEach((item) => {
      item.cell.remove();
      chosen.delete(item);
      drop(item);
      if (item.source) URL.revokeObjectURL(item.source);
    });
    fresh.forEach(build);
    let at = grid.firstChild;
    next.forEach((item) => {
      if (item.cell === at) at = at.nextSibling;
      else grid.insertBefore(item.cell, at);
    });
    items = next;
    viewer.refresh();
    if (filled && fresh.length) greet(fresh);
  }

  function build(item) {
    item.cell = $.cellTemplate.content.firstElementChild.cloneNode(true);
    item.cell.dataset.kind = item.name.split('.').pop();
    item.button = item.cell.firstChild;
    item.button.ariaLabel = item.name;
    if (choosing) item.button.ariaPressed = false;
    near.observe(item.cell);
  }

  // Thumbnails are loaded when they come close to the viewport.
  function look(entries) {
    entries.forEach(({ target, isIntersecting }) => {
      const item = owner(target);
      if (!item || item.cell.dataset.state) return;
      if (!isIntersecting) drop(item);
      else if (!item.unwant) item.unwant = pictures.want(url('thumb', item), false, (blob) => show(item, blob));
    });
  }

  function drop(item) {
    if (item.unwant) item.unwant();
    item.unwant = null;
  }

  function show(item, blob) {
    item.unwant = null;
    if (!blob) {
      item.cell.dataset.state = 'missing';
      return;
    }
    item.source = URL.createObjectURL(blob);
    item.cell.querySelector('img').src = item.source;
  }

  // Keeps the visible photos in place when photos above them appear or disappear.
  function steady(change) {
    const above = (item) => item.cell.getBoundingClientRect().top;
    const seen = grid.getBoundingClientRect().top < 0 && items.find((item) => above(item) >= 0);
    const before = seen && above(seen);
    change();
    if (seen && seen.cell.isConnected) scrollBy(0, above(seen) - before);
  }

  function greet(fresh) {
    const mark = (on) => fresh.forEach((item) => item.cell.classList.toggle('fresh', on));
    mark(true);
    setTimeout(mark, 2500, false);
    announce(both('新到 ' + fresh.length + ' 张', fresh.length + ' new'));
  }

  // -- Messages

  function tell(state) {
    const known = { list: ['alert', 'warning', '照片列表没读到，请重试 / The list of photos could not be read, please retry'] };
    const [icon, tone, text] = known[state] || view.walls[state] || [];
    const note = $.wallNote;
    note.hidden = !text;
    grid.hidden = state === 'key' || state === 'banned';
    $.wallAgain.hidden = grid.hidden;
    if (!text) return;
    note.dataset.tone = tone;
    note.querySelector('use').setAttribute('href', '#i-' + icon);
    note.querySelector('.words').textContent = text;
    announce(text);
  }

  function tally() {
    const count = chosen.size;
    const feet = fetcher.running || choosing;
    $.wallTitle.textContent = choosing ? '已选 ' + count + ' / selected'
      : items.length < total ? '最新 ' + items.length + ' 张，共 ' + total + ' 张 / the newest ' + items.length + ' of ' + total
      : items.length ? items.length + ' 张照片 / photos' : filled ? '照片墙 / Photos' : '正在读取 / Loading';
    $.wallEmpty.hidden = !filled || items.length > 0;
    $.gallery.classList.toggle('choosing', choosing);
    $.wallAll.hidden = !choosing || fetcher.running;
    $.wallPick.hidden = !choosing && !items.length || fetcher.running;
    $.wallPick.textContent = choosing ? '完成 / Done' : '选择 / Select';
    $.tabs.hidden = !status.info.gallery || feet;
    $.fetcher.hidden = !feet;
    $.fetch.disabled = !count;
    $.fetch.textContent = '下载所选 / Download selected' + (count ? ' (' + count + ')' : '');
    if (!grid.querySelector('[tabindex="0"]') && items.length) items[0].button.tabIndex = 0;
  }

  // -- The two views

  function turn(on) {
    status.info.gallery = on;
    tally();
    $.page.classList.toggle('tabbed', on);
    if (on) $.wallOff.hidden = true;
    if (on || !open) return;
    viewer.close();
    fetcher.stop();
    go(false);
    $.wallOff.hidden = false;
    announce($.wallOff.textContent);
  }

  function go(wall) {
    if (wall === open) return;
    open = wall;
    pictures.run(wall && status.state === 'ok');
    $.upload.hidden = wall;
    $.gallery.hidden = !wall;
    $.page.classList.toggle('wide', wall);
    $.tabWall.ariaCurrent = wall;
    $.tabUpload.ariaCurrent = !wall;
    choose(false);
    const top = elsewhere;
    elsewhere = scrollY;
    scrollTo(0, top);
    if (!wall) return;
    tell(status.state);
    if (status.state === 'ok') load();
  }

  function follow(state) {
    pictures.run(open && state === 'ok');
    if (state !== 'ok') {
      if (open) tell(state);
      return;
    }
    turn(Boolean(status.info.gallery));
    load();
  }

  // -- Selection

  function choose(on) {
    choosing = on;
    chosen.clear();
    fetcher.say('');
    items.forEach((item) => { item.button.ariaPressed = on ? false : null; });
    tally();
  }

  function pick(item, on) {
    if (on) chosen.add(item);
    else chosen.delete(item);
    item.button.ariaPressed = on;
  }

  function toggle(item) {
    if (fetcher.running) return;
    pick(item, !chosen.has(item));
    fetcher.say('');
    tally();
  }

  // -- Input

  // A long press selects a photo; the click that may follow is ignored.
  function wireLongPress() {
    let timer = 0, from = null, held = false;
    const off = () => clearTimeout(timer);
    on(grid, 'pointerdown', (event) => {
      held = false;
      off();
      const item = owner(event.target);
      if (!item || event.pointerType === 'mouse' || fetcher.running) return;
      from = event;
      timer = setTimeout(() => {
        held = true;
        if (!choosing) choose(true);
        toggle(item);
      }, 450);
    });
    on(grid, 'pointermove', (event) => {
      if (from && Math.hypot(event.clientX - from.clientX, event.clientY - from.clientY) > 10) off();
    });
    on(grid, 'pointerup pointercancel', off);
    on(grid, 'contextmenu', (event) => {
      if (from && from.pointerType !== 'mouse') event.preventDefault();
    });
    on(grid, 'click', (event) => {
      const item = owner(event.target);
      if (!item || held) held = false;
      else if (choosing) toggle(item);
      else viewer.open(item);
    });
  }

  // The grid is a single tab stop; arrow keys move inside it.
  function wireKeys() {
    on(grid, 'focusin', (event) => {
      grid.querySelectorAll('[tabindex="0"]').forEach((button) => { button.tabIndex = -1; });
      event.target.tabIndex = 0;
    });
    on(grid, 'keydown', (event) => {
      const columns = getComputedStyle(grid).gridTemplateColumns.split(' ').length;
      const step = { ArrowLeft: -1, ArrowRight: 1, ArrowUp: -columns, ArrowDown: columns, Home: -1e9, End: 1e9 }[event.key];
      if (!step) return;
      event.preventDefault();
      const at = items.indexOf(owner(event.target)) + step;
      items[Math.max(0, Math.min(items.length - 1, at))].button.focus();
    });
    on($.gallery, 'keydown', (event) => {
      if (event.key === 'Escape' && choosing && !fetcher.running) choose(false);
    });
  }

  function wire() {
    on(grid, 'load error', (event) => {
      event.target.closest('li').dataset.state = event.type === 'load' ? 'shown' : 'missing';
    }, true);
    [$.tabUpload, $.wallUpload].forEach((button) => on(button, 'click', () => go(false)));
    on($.tabWall, 'click', () => go(true));
    on($.wallAgain, 'click', () => status.ask());
    on($.wallPick, 'click', () => choose(!choosing));
    on($.wallAll, 'click', () => {
      const all = chosen.size < items.length;
      items.forEach((item) => pick(item, all));
      tally();
    });
    on($.fetch, 'click', () => fetcher.start(items.filter((item) => chosen.has(item))));
    wireLongPress();
    wireKeys();
  }

  status.listen(follow);
  return { wire, url, tally, turn, show: go, unpick: (item) => pick(item, false), get items() { return items; } };
})();
