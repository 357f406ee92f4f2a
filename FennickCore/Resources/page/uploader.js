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

  // Returns how many files may be sent at the same time as this one. Large files that share a slow connection could
  // each exceed the lifetime of a connection. The speed is measured with the first one.
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

  // Stays below the rate limit of the computer, so that 500 selected files wait instead of being refused.
  function paced() {
    const time = now();
    starts = starts.filter((at) => time - at < minute && at <= time);
    if (starts.length < perMinute) return true;
    holdFor('pace', '', starts[0] + minute);
    return false;
  }

  // Returns the reason for a pause that is known from the computer.
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

  // Sends no file into a folder that may be full: each refusal counts as a failure of this phone.
  function roomy() {
    if (status.state !== 'asking' && status.room() > active.size) return true;
    if (!active.size) check();
    return false;
  }

  // Requests the status before continuing; the answer sets or ends the hold (see `learn`).
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

  // A stop by the user stays, whatever the status is.
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

  // When the network is back, the remaining pauses end.
  function hurry() {
    queue.list((item) => item.state === 'waiting' && !item.unsure).forEach((item) => { item.notBefore = 0; });
  }

  // -- One file

  // Checks by the first bytes whether the computer accepts the file, before all of it is sent.
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

  // The body is the file itself, which the browser streams from storage. The media type is sent if the browser
  // knows it.
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
    // Every unexpected end is treated as a lost connection; `detach` handles the intended ones.
    xhr.onerror = xhr.ontimeout = xhr.onabort = ended(lost);
    item.xhr = xhr;
    item.movedAt = now();
    starts.push(item.movedAt);
    memory.write(diary, starts);
    outbox.add(item.upload, item.mark);
    xhr.send(item.file);
  }

  // A name with half a surrogate pair cannot be encoded; the computer then uses the content alone.
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

  // -- Outcomes

  // Handles an answer, which came with the upload or with the status.
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

  // The code has two reasons: this phone is banned, or it exceeds the rate limit.
  function tooMany(item, text) {
    queue.set(item, 'waiting');
    if (/too many requests/i.test(text)) return status.believe('banned');
    strikes++;
    item.notBefore = 0;
    holdFor('pace', '', now() + Math.min(15000, 4000 + 2000 * strikes));
  }

  // Returns the text of the computer, except for texts that mention another kind of computer.
  function words(code, text) {
    if (/Mac/.test(text)) {
      return code === 507
        ? '电脑磁盘空间不足，已停止接收 / Not enough disk space on the computer'
        : '电脑无法写入保存目录，请检查电脑上的设置 / The computer cannot write to its save folder; check its settings';
    }
    return text || '电脑拒绝了这个文件 / The computer refused this file (' + code + ')';
  }

  // A refusal that would apply to every other file holds the queue; any other concerns only this file.
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

  // The file returns to the queue and is sent when it fits; smaller files may be sent before it.
  function noRoom(item) {
    item.notBefore = now() + 5000;
    queue.set(item, 'waiting');
    check();
  }

  function keepToLimit() {
    queue.list((item) => item.state === 'waiting' && !item.unsure && limit.refusal(item.file))
      .forEach((item) => queue.set(item, 'failed', limit.refusal(item.file)));
  }

  // A refusal can reach the browser as a broken connection, because the computer does not read a body that it will
  // not keep. An answer can also be lost although the photo is saved. Therefore the outcome is requested.
  function lost(item) {
    queue.set(item, 'waiting');
    doubt(item, 0);
  }

  function doubt(item, delay) {
    item.unsure = true;
    queue.touch(item);
    inquire(delay);
  }

  // Requests the outcomes of all unsure files. While the computer cannot be reached, the status request repeats this.
  function inquire(delay) {
    clearTimeout(inquiry);
    inquiry = setTimeout(() => { if (status.state !== 'key') status.ask(); }, delay);
  }

  const unsure = () => queue.list((item) => item.unsure).map((item) => item.upload);

  // Handles the outcomes of the requested files.
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

  // If an upload is still being received, it has not ended yet, or its connection is dead, which the computer
  // detects after a minute.
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

  // A selected file may no longer be readable (deleted, or stored only in the cloud).
  function unreadable(item) {
    active.delete(item);
    queue.set(item, 'failed', '读不到这个文件，请重新选择 / Cannot read this file; please pick it again');
  }

  // -- Commands of the user

  // The computer may have received the whole file already, so its outcome is requested.
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

  // Removes unsent files from the queue; the photos stay on the phone. A file whose outcome is unknown stays visible
  // until it is known.
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

  // Timers stop while the screen is locked. After such a gap, running uploads get a few seconds to make progress
  // before they are cancelled.
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

  // While files are being sent, the page checks their progress, keeps the screen on, and asks before it closes.
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
