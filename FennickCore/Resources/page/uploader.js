// ---- Uploader: sends the files, a few at a time

const uploader = (function () {
  const large = 32e6;            // with files this size two at a time fill the air
  const tries = 5;               // for one file, while the computer is otherwise well
  const silence = 30000;         // no progress for this long: the connection is dead
  const replySilence = 120000;   // the same while the computer moves a big file into place
  const perMinute = 118;         // the computer admits 120 a minute from one address
  const minute = 61000;
  const active = new Set();
  const diary = 'tevrin.pace.' + fingerprint(key);
  let starts = memory.read(diary);  // when the uploads of the last minute were sent, also by the page before a reload
  let hold = null;               // why nothing is started: { kind, text, until }
  let strikes = 0;               // "too many uploads" answers in a row
  let faults = 0;                // write failures of the computer in a row
  let checking = false;
  let timer = 0;
  let watch = 0;
  let lastTick = 0;

  // -- Starting and pausing

  function holdFor(kind, text, until) {
    hold = { kind, text: text || '', until: until || 0 };
    if (until) wakeAt(until);
    view.soon();
  }

  function release() {
    hold = null;
    view.soon();
    pump();
  }

  function wakeAt(time) {
    clearTimeout(timer);
    timer = setTimeout(pump, Math.max(50, time - now()));
  }

  function slots(item) {
    if (strikes) return 1;
    const big = item.file.size > large || Array.from(active).some((other) => other.file.size > large);
    return big ? 2 : 3;
  }

  function pump() {
    if (hold && hold.until && hold.until <= now()) hold = null;
    while (!hold && !checking) {
      const next = queue.next();
      if (!next.ready) {
        if (next.at < Infinity) wakeAt(next.at);
        break;
      }
      if (active.size >= slots(next.ready) || !welcome() || !roomy() || !paced()) break;
      start(next.ready);
    }
    guard();
    view.soon();
  }

  // Keeps below the computer's own rate, so that a pick of 500 waits instead of being turned away.
  function paced() {
    const time = now();
    starts = starts.filter((at) => time - at < minute && at <= time);
    if (starts.length < perMinute) return true;
    holdFor('pace', '', starts[0] + minute);
    return false;
  }

  // What stands in the way as far as the computer has said.
  function trouble() {
    const state = status.state;
    if (state === 'lost') return progressing() ? '' : 'offline';
    if (state !== 'ok') return state === 'asking' ? '' : state;
    if (status.info.diskLow) return 'disk';
    return status.room() < 1 && !active.size ? 'full' : '';
  }

  function welcome() {
    const kind = trouble();
    if (kind) block(kind);
    return !kind;
  }

  // Sends no file into a folder that may be full: every refusal counts against this phone.
  function roomy() {
    if (status.state !== 'asking' && status.room() > active.size) return true;
    if (!active.size) check();
    return false;
  }

  // Asks the computer before going on; what it answers sets or lifts the hold (see `learn`).
  function check() {
    if (checking || (status.state === 'key' && status.age < 5000)) return;
    checking = true;
    const asked = () => {
      checking = false;
      pump();
    };
    status.ask().then(asked, asked);
  }

  function learn() {
    const kind = trouble();
    if (kind) block(kind);
    else if (status.state === 'ok') recover();
  }

  // A stop that the person asked for stays, whatever the computer says.
  function block(kind) {
    const waiting = queue.list((item) => item.state === 'waiting' || item.heldBy).length;
    if (hold && hold.kind === 'stopped') return;
    if (!waiting) hold = null;
    else if (!hold || hold.kind !== kind) holdFor(kind);
    view.soon();
  }

  function recover() {
    const lifted = ['offline', 'key', 'banned', 'full', 'disk'];
    if (hold && !lifted.includes(hold.kind)) return;
    const was = hold && hold.kind;
    hold = null;
    queue.list((item) => item.heldBy && item.state === 'failed').forEach(queue.requeue);
    if (was === 'offline') hurry();
    pump();
  }

  // A network that came back need not wait for the rest of the pauses.
  function hurry() {
    queue.list((item) => item.state === 'waiting').forEach((item) => { item.notBefore = 0; });
  }

  // -- One file

  // The body is the file itself, whole: the browser streams it from storage, and the type it knows
  // goes along; a file without a type is sent without one.
  function start(item) {
    const xhr = new XMLHttpRequest();
    const ended = (handle) => () => {
      if (item.xhr !== xhr) return;
      item.xhr = null;
      active.delete(item);
      handle(item, xhr);
      pump();
    };
    xhr.open('POST', path('upload'));
    xhr.responseType = 'text';
    if (item.file.type) xhr.setRequestHeader('Content-Type', item.file.type);
    xhr.setRequestHeader('x-filename', encoded(item.file.name));
    xhr.upload.onprogress = (event) => moved(item, event.loaded);
    xhr.upload.onload = () => moved(item, item.file.size);
    xhr.onload = ended(answered);
    // An end that nobody asked for, whatever its name, is a lost connection; see `stopOne` for the others.
    xhr.onerror = xhr.ontimeout = xhr.onabort = ended(lost);
    item.xhr = xhr;
    item.movedAt = now();
    active.add(item);
    starts.push(item.movedAt);
    memory.write(diary, starts);
    queue.set(item, 'sending');
    xhr.send(item.file);
  }

  // Half a surrogate pair in a name cannot be encoded; the computer then goes by the content alone.
  function encoded(name) {
    try {
      return encodeURIComponent(name);
    } catch (e) {
      return '';
    }
  }

  function moved(item, loaded) {
    item.sent = Math.min(loaded, item.file.size);
    item.movedAt = now();
    queue.touch(item);
  }

  function answered(item, xhr) {
    const text = (xhr.responseText || '').trim();
    if (xhr.status !== 429) strikes = 0;
    if (xhr.status !== 500) faults = 0;
    if (xhr.status === 200) saved(item, text);
    else if (xhr.status === 429) tooMany(item, text);
    else refused(item, xhr.status, text || '电脑拒绝了这个文件 / The computer refused this file' + ' (' + xhr.status + ')');
  }

  function saved(item, name) {
    marks.add(item.mark);
    status.saved();
    item.heldBy = '';
    queue.set(item, 'saved', name);
  }

  // Two reasons share one code: this phone was turned away altogether, or it is only too quick.
  function tooMany(item, text) {
    queue.set(item, 'waiting');
    if (/too many requests/i.test(text)) return status.believe('banned');
    strikes++;
    holdFor('pace', '', now() + Math.min(15000, 4000 + 2000 * strikes));
  }

  // What would be refused again for every other file stops the queue; anything else is this file's own.
  function refused(item, code, text) {
    queue.set(item, 'failed', text);
    if (code === 403) {
      const kind = /文件夹已满|folder is full/i.test(text) ? 'full' : 'key';
      item.heldBy = kind;
      holdFor(kind, text);
      if (kind === 'key') status.believe('key');
    } else if (code === 413) {
      limit.learn(text);
      queue.list((other) => other.state === 'waiting' && limit.refusal(other.file))
        .forEach((other) => queue.set(other, 'failed', limit.refusal(other.file)));
    } else if (code === 507) {
      check();
    } else if (code === 500 && ++faults >= 3) {
      holdFor('fault', text);
    }
  }

  // A refusal can reach the browser as a broken connection, since the computer does not read a body
  // that it will not keep. So the computer is asked first; only if it is well is the file at fault.
  function lost(item) {
    item.tries++;
    item.notBefore = Infinity;
    queue.set(item, 'waiting');
    checking = true;
    const settled = () => {
      if (item.notBefore === Infinity) item.notBefore = 0;
      checking = false;
      pump();
    };
    readable(item.file).then((fine) => {
      if (!fine) return unreadable(item);
      return status.ask().then((state) => {
        if (state === 'ok') again(item);
        else item.tries = 0;
      });
    }).then(settled, settled);
  }

  function again(item) {
    if (item.state !== 'waiting') return;
    item.notBefore = now() + pause(item.tries - 1);
    if (item.tries < tries) return queue.touch(item);
    const text = item.file.size > large
      ? '连接总是中断，也可能是电脑空间不够 / The connection keeps breaking; the computer may also lack the room'
      : '连接总是中断，文件还在手机里 / The connection keeps breaking; the file is still on the phone';
    queue.set(item, 'failed', text);
  }

  // A picked file can be gone by the time its turn comes (deleted, or still only in the cloud).
  function unreadable(item) {
    if (item.state === 'waiting') queue.set(item, 'failed', '读不到这个文件，请重新选择 / Cannot read this file; please pick it again');
  }

  function readable(file) {
    return new Promise((resolve) => {
      const reader = new FileReader();
      reader.onload = () => resolve(true);
      reader.onerror = () => resolve(false);
      reader.readAsArrayBuffer(file.slice(0, 1));
    });
  }

  // -- What the person asks for

  function detach(item) {
    const xhr = item.xhr;
    item.xhr = null;
    active.delete(item);
    if (xhr) xhr.abort();
  }

  function stopOne(item) {
    detach(item);
    queue.set(item, 'cancelled', '已取消 / Cancelled');
    pump();
  }

  function stopAll() {
    Array.from(active).forEach((item) => {
      detach(item);
      queue.set(item, 'waiting');
    });
    holdFor('stopped');
    guard();
  }

  function resume() {
    const kind = hold && hold.kind;
    if (kind === 'stopped' || kind === 'fault') {
      faults = 0;
      hold = null;
    }
    hurry();
    view.soon();
    check();
  }

  function retry(list) {
    const held = list.some((item) => item.heldBy);
    list.forEach(queue.requeue);
    faults = 0;
    if (hold && hold.kind === 'fault') hold = null;
    if (held || hold) resume();
    else pump();
  }

  // -- Guards

  const progressing = () => Array.from(active).some((item) => now() - item.movedAt < 5000);

  // Timers stand still while the screen is locked. After such a gap the running uploads get a few
  // seconds to show life before they are given up.
  function tick() {
    const time = now();
    const asleep = time - lastTick > 8000;
    lastTick = time;
    active.forEach((item) => {
      const allowed = item.sent < item.file.size ? silence : replySilence;
      if (asleep) item.movedAt = Math.max(item.movedAt, time - allowed + 8000);
      if (time - item.movedAt > allowed && item.xhr) item.xhr.abort();
    });
    view.soon();
  }

  const leaving = (event) => {
    event.preventDefault();
    event.returnValue = '';
  };

  const running = () => !(hold && hold.kind === 'stopped') && queue.list(queue.pending).length > 0;

  // While files are on their way the page watches them, and asks before it is left.
  function guard() {
    const busy = running();
    if (busy === Boolean(watch)) return;
    if (busy) {
      lastTick = now();
      watch = setInterval(tick, 1000);
      on(window, 'beforeunload', leaving);
    } else {
      clearInterval(watch);
      watch = 0;
      window.removeEventListener('beforeunload', leaving);
    }
  }

  status.listen(learn);
  return {
    pump, stopOne, stopAll, resume, retry, running,
    get hold() { return hold; },
    wake() {
      hurry();
      if (status.state !== 'key' || status.age > 10000) status.ask().then(pump);
      if (watch) tick();
    },
  };
})();
