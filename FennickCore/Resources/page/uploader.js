// ---- Uploader: sends the files, a few at a time

const uploader = (function () {
  const large = 32e6;            // with files this size two at a time fill the air, and one until the speed is known
  const longest = 900;           // seconds; the computer closes a connection that lasts longer
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
  let inquiry = 0;
  let watch = 0;
  let lastTick = 0;

  // -- Starting and pausing

  function holdFor(kind, text, until) {
    hold = { kind, text: text || '', until: until || 0 };
    if (until) wakeAt(until);
    view.soon();
  }

  function wakeAt(time) {
    clearTimeout(timer);
    timer = setTimeout(pump, Math.max(50, time - now()));
  }

  // How many files may be on their way together with this one. Large files that share a slow connection could each take
  // longer than the computer keeps a connection; how slow it is shows with the first one.
  function slots(item) {
    if (strikes) return 1;
    const largest = Math.max(...[item, ...active].map((each) => each.file.size));
    const most = largest > large ? 2 : 3;
    const speed = view.speed();
    if (!speed) return largest > large ? 1 : most;
    return Math.max(1, Math.min(most, Math.floor(0.7 * longest * speed / largest)));
  }

  function pump() {
    if (hold && hold.until && hold.until <= now()) hold = null;
    while (!hold && !checking) {
      const next = queue.next(status.fits);
      if (!next.ready) {
        if (next.at < Infinity) wakeAt(next.at);
        else if (!active.size && queue.list(crowded).length) holdFor('disk');
        break;
      }
      if (active.size >= slots(next.ready) || !welcome() || !roomy() || !paced()) break;
      start(next.ready);
    }
    guard();
    view.soon();
  }

  const crowded = (item) => item.state === 'waiting' && !item.unsure && !status.fits(item.file);

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
    if (status.state === 'ok') hear(status.info.uploads);
    const kind = trouble();
    if (kind) block(kind);
    else if (status.state === 'ok') recover();
  }

  // A stop that the user asked for stays, whatever the computer says.
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
    queue.list((item) => item.state === 'waiting' && !item.unsure).forEach((item) => { item.notBefore = 0; });
  }

  // -- One file

  // The first bytes tell whether the computer takes the file, before all of it is sent.
  function start(item) {
    item.movedAt = now();
    active.add(item);
    queue.set(item, 'sending');
    const settled = (handle) => (value) => {
      if (item.state !== 'sending' || item.xhr || !active.has(item)) return;
      handle(value);
      pump();
    };
    sniff.takes(item.file).then(
      settled((fine) => (fine ? send(item) : refuse(item, 415, sniff.refusal))),
      settled(() => unreadable(item)),
    );
  }

  // The body is the file itself, whole: the browser streams it from storage, and the type it knows
  // goes along; a file without a type is sent without one.
  function send(item) {
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
    xhr.setRequestHeader('x-upload-id', item.upload);
    xhr.upload.onprogress = (event) => moved(item, event.loaded);
    xhr.upload.onload = () => moved(item, item.file.size);
    xhr.onload = ended(() => answered(item, xhr.status, (xhr.responseText || '').trim()));
    // An end that nobody asked for, whatever its name, is a lost connection; see `detach` for the others.
    xhr.onerror = xhr.ontimeout = xhr.onabort = ended(lost);
    item.xhr = xhr;
    item.movedAt = now();
    starts.push(item.movedAt);
    memory.write(diary, starts);
    outbox.add(item.upload, item.mark);
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

  // -- What became of it

  // An answer of the computer, whether it came with the upload or was asked for.
  function answered(item, code, text) {
    item.unsure = false;
    item.asks = 0;
    if (code === 409) return doubt(item, 1000);
    outbox.forget(item.upload);
    if (code !== 429) strikes = 0;
    if (code !== 500) faults = 0;
    if (code === 200) saved(item, text);
    else if (item.state === 'cancelled') dropUnwanted(item);
    else if (code === 429) tooMany(item, text);
    else refuse(item, code, text);
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
    item.notBefore = 0;
    holdFor('pace', '', now() + Math.min(15000, 4000 + 2000 * strikes));
  }

  // The computer's own words, but for those that were written for another one.
  function words(code, text) {
    if (/Mac/.test(text)) {
      return code === 507
        ? '电脑磁盘空间不足，已停止接收 / Not enough disk space on the computer'
        : '电脑无法写入保存目录，请检查电脑上的设置 / The computer cannot write to its save folder; check its settings';
    }
    return text || '电脑拒绝了这个文件 / The computer refused this file (' + code + ')';
  }

  // What would be refused again for every other file stops the queue; anything else is this file's own.
  function refuse(item, code, text) {
    active.delete(item);
    item.final = [400, 411, 413, 415].includes(code);
    if (code === 507 && typeof status.info.roomBytes === 'number') return noRoom(item);
    queue.set(item, 'failed', words(code, text));
    if (code === 403) {
      const kind = /文件夹已满|folder is full/i.test(text) ? 'full' : 'key';
      item.heldBy = kind;
      holdFor(kind, text);
      if (kind === 'key') status.believe('key');
    } else if (code === 413) {
      limit.learn(text);
      keepToLimit();
    } else if (code === 507) {
      check();
    } else if (code === 500 && ++faults >= 3) {
      holdFor('fault', item.note);
    }
  }

  // The file goes back and is sent once it fits; smaller ones may go before it.
  function noRoom(item) {
    item.notBefore = now() + 5000;
    queue.set(item, 'waiting');
    check();
  }

  function keepToLimit() {
    queue.list((item) => item.state === 'waiting' && !item.unsure && limit.refusal(item.file))
      .forEach((item) => queue.set(item, 'failed', limit.refusal(item.file)));
  }

  // Refusals can reach the browser as broken connections, since the computer does not read a body that it will not
  // keep, and an answer can be lost although the photo is saved. So the computer is asked what became of the file.
  function lost(item) {
    queue.set(item, 'waiting');
    doubt(item, 0);
  }

  function doubt(item, delay) {
    item.unsure = true;
    queue.touch(item);
    inquire(delay);
  }

  // Asks about all unsure files at once. While the computer cannot be reached, the status itself asks on.
  function inquire(delay) {
    clearTimeout(inquiry);
    inquiry = setTimeout(() => { if (status.state !== 'key') status.ask(); }, delay);
  }

  const unsure = () => queue.list((item) => item.unsure).map((item) => item.upload);

  // What the computer says of the files that were asked about.
  function hear(outcomes) {
    keepToLimit();
    if (outcomes) {
      const known = outbox.learn(outcomes);
      queue.list((item) => item.state === 'waiting' && !item.unsure && known.includes(item.mark))
        .forEach((item) => queue.set(item, 'known', '已发送过 / Already sent'));
    }
    queue.list((item) => item.unsure).forEach((item) => applyOutcome(item, outcomes ? outcomes[item.upload] : { state: 'unknown' }));
    const asks = queue.list((item) => item.unsure).map((item) => item.asks);
    const next = Math.min(3, ...asks);
    if (asks.length) inquire(next ? pause(next) : 200);
  }

  // An upload that is still being received has either not ended yet, or its connection is dead, which the computer
  // notices after a minute.
  function applyOutcome(item, outcome) {
    if (!outcome) return;  // it became unsure after the question was sent
    if (outcome.state === 'receiving') {
      item.asks++;
    } else if (outcome.state === 'saved') {
      answered(item, 200, outcome.name);
    } else if (outcome.state === 'rejected') {
      answered(item, outcome.status, outcome.text);
    } else {
      item.unsure = false;
      item.asks = 0;
      if (item.state === 'waiting') again(item);
      else dropUnwanted(item);
    }
  }

  function dropUnwanted(item) {
    if (item.unwanted) queue.remove(item);
    else queue.touch(item);
  }

  function again(item) {
    if (hold && hold.kind === 'stopped') return queue.touch(item);
    item.notBefore = now() + pause(item.tries++);
    const slow = item.tries > 2 && view.speed() && item.file.size / view.speed() > longest;
    if (item.tries < tries && !slow) return queue.touch(item);
    queue.set(item, 'failed', slow
      ? '按现在的网速 15 分钟内传不完，请靠近路由器再试 / At this speed it would take longer than 15 minutes; try again closer to the router'
      : '连接总是中断，文件还在手机里 / The connection keeps breaking; the file is still on the phone');
  }

  // A picked file can be gone by the time its turn comes (deleted, or still only in the cloud).
  function unreadable(item) {
    active.delete(item);
    queue.set(item, 'failed', '读不到这个文件，请重新选择 / Cannot read this file; please pick it again');
  }

  // -- What the user asks for

  // The computer may have all of the file already, so it is asked.
  function detach(item) {
    const xhr = item.xhr;
    item.xhr = null;
    active.delete(item);
    if (!xhr) return;
    xhr.abort();
    doubt(item, 300);
  }

  function stopOne(item) {
    queue.set(item, 'cancelled', '已取消 / Cancelled');
    detach(item);
    pump();
  }

  function stopAll() {
    Array.from(active).forEach((item) => {
      queue.set(item, 'waiting');
      detach(item);
    });
    holdFor('stopped');
    guard();
  }

  // Takes what was not sent out of the queue; the photos stay on the phone. A file that the computer may have stays in
  // sight until that is known.
  function clear() {
    queue.list((item) => item.state === 'waiting').forEach((item) => {
      item.unwanted = true;
      if (item.unsure) queue.set(item, 'cancelled', '正在核对 / Checking');
      else queue.remove(item);
    });
    hold = null;
    pump();
  }

  function resume() {
    const kind = hold && hold.kind;
    if (kind === 'stopped' || kind === 'fault') {
      faults = 0;
      hold = null;
    }
    hurry();
    guard();
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
    pump();
  }

  const leaving = (event) => {
    event.preventDefault();
    event.returnValue = '';
  };

  const running = () => !(hold && hold.kind === 'stopped') && queue.list(queue.pending).length > 0;

  // While files are on their way the page watches them, keeps the screen on, and asks before it is left.
  function guard() {
    const busy = running();
    awake.turn(busy);
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
    pump, stopOne, stopAll, clear, resume, retry, running, unsure,
    get hold() { return hold; },
    wake() {
      hurry();
      awake.wake();
      if (status.state !== 'key' || status.age > 10000) status.ask().then(pump);
      if (watch) tick();
    },
  };
})();
