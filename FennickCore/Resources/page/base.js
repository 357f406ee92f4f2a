const key = new URLSearchParams(location.search).get('k') || '';
const $ = new Proxy({}, { get: (none, id) => document.getElementById(id) });
const on = (node, names, handle, how) => names.split(' ').forEach((name) => node.addEventListener(name, handle, how));
const both = (zh, en) => zh + ' / ' + en;
const now = () => Date.now();
const path = (route, more) => route + '?k=' + encodeURIComponent(key) + (more || '');

// ---- Small helpers

// Returns a short hash of a text. It distinguishes the files of one phone and is not cryptographic:
// browsers offer their digests only to pages of encrypted sites.
function fingerprint(text) {
  let a = 0xdeadbeef, b = 0x41c6ce57;
  for (let i = 0; i < text.length; i++) {
    const c = text.charCodeAt(i);
    a = Math.imul(a ^ c, 2654435761);
    b = Math.imul(b ^ c, 1597334677);
  }
  a = Math.imul(a ^ (a >>> 16), 2246822507) ^ Math.imul(b ^ (b >>> 13), 3266489909);
  b = Math.imul(b ^ (b >>> 16), 2246822507) ^ Math.imul(a ^ (a >>> 13), 3266489909);
  return (4294967296 * (2097151 & b) + (a >>> 0)).toString(36);
}

// Returns 128 random bits in hexadecimal: the identity of an upload.
const newID = () => Array.from(crypto.getRandomValues(new Uint8Array(16)), (byte) => byte.toString(16).padStart(2, '0')).join('');

function bytesText(n) {
  if (n < 1000) return n + ' B';
  const units = ['KB', 'MB', 'GB', 'TB'];
  let i = -1;
  do { n /= 1000; i++; } while (n >= 999.5 && i < units.length - 1);
  return (n < 10 && i > 0 ? n.toFixed(1) : Math.round(n)) + ' ' + units[i];
}

function clockText(seconds) {
  const s = Math.max(1, Math.round(seconds));
  const two = (n) => (n < 10 ? '0' + n : '' + n);
  const h = Math.floor(s / 3600), m = Math.floor(s / 60) % 60;
  return h ? h + ':' + two(m) + ':' + two(s % 60) : m + ':' + two(s % 60);
}

// Returns the pause before attempt `n` (from 0): 1, 2, 4 ... 30 s, with random jitter so that phones
// that lost the same network do not all reconnect at the same moment.
const pause = (n) => Math.min(30000, 1000 * Math.pow(2, n)) * (0.85 + Math.random() * 0.3);

let live = '';
function announce(text) {
  if (text === live) return;
  live = text;
  $.live.textContent = text;
}

// Sends a request. Returns { code, json } or, for a refusal, { code, text }. Throws if no answer comes in time.
async function query(route, more) {
  const stopper = new AbortController();
  const alarm = setTimeout(() => stopper.abort(), 10000);
  try {
    const reply = await fetch(path(route, more), { cache: 'no-store', signal: stopper.signal });
    const code = reply.status;
    return code === 200 ? { code, json: await reply.json() } : { code, text: await reply.text() };
  } finally {
    clearTimeout(alarm);
  }
}

// Lists that the browser stores for this computer. If it refuses (private browsing, a full store), they last
// as long as the page.
const memory = {
  read(name) {
    try {
      const list = JSON.parse(localStorage.getItem(name) || '[]');
      return Array.isArray(list) ? list : [];
    } catch (e) {
      return [];
    }
  },
  write(name, list) {
    try {
      localStorage.setItem(name, JSON.stringify(list));
    } catch (e) {
      // The list lasts as long as the page.
    }
  },
};

// ---- Limit: the largest file that the computer accepts

const limit = {
  bytes: Number('__MAX_BYTES__') || Infinity,

  // A refusal contains the current limit.
  learn(message) {
    const found = /limit\s(\d+)\sbytes/.exec(message);
    if (found) limit.bytes = Number(found[1]);
  },
  refusal(file) {
    if (file.size < 1) return '空文件，没有内容可发 / Empty file, nothing to send';
    if (file.size <= limit.bytes) return '';
    const size = bytesText(limit.bytes);
    return both('太大，上限 ' + size, 'Too large, the limit is ' + size);
  },
};

// ---- Marks: which files this phone has already sent to this computer

const marks = (function () {
  const store = 'tevrin.sent.' + fingerprint(key);
  const most = 5000;
  const withoutDate = (mark) => mark.replace(/\.[^.]*\./, '..');
  const known = new Set();
  let fresh = [];
  let timer = 0;

  function remember(mark) {
    known.add(mark).add(withoutDate(mark));
  }

  // Another tab may have written in the meantime, so the stored list is read again and extended.
  function flush() {
    clearTimeout(timer);
    timer = 0;
    if (!fresh.length) return;
    const all = Array.from(new Set(memory.read(store).concat(fresh))).slice(-most);
    fresh = [];
    memory.write(store, all);
  }

  memory.read(store).forEach(remember);

  return {
    flush,
    // An iPhone reports the time of the selection as the date of a photo. If the date is recent, the file is
    // identified by its name and size alone.
    of(file) {
      const date = Math.abs(now() - file.lastModified) > 120000 ? file.lastModified.toString(36) : '';
      return file.size.toString(36) + '.' + date + '.' + fingerprint(file.name);
    },
    has: (mark) => known.has(mark),
    add(mark) {
      if (known.has(mark)) return;
      remember(mark);
      fresh.push(mark);
      if (!timer) timer = setTimeout(flush, 500);
    },
  };
})();

// ---- Outbox: uploads that were sent and whose outcome is unknown

// They are kept across a reload: the computer may have saved a photo although its answer was lost.
const outbox = (function () {
  const store = 'tevrin.outbox.' + fingerprint(key);
  const sent = new Map(memory.read(store).map((entry) => entry.split(' ')));  // identity to mark
  const earlier = new Set(sent.keys());  // sent by a page before this one
  const resolved = new Set();

  // Another tab may have written in the meantime, so its uploads are kept unless this tab knows their outcome.
  function keep() {
    const others = memory.read(store).map((entry) => entry.split(' ')).filter(([id]) => !sent.has(id) && !resolved.has(id));
    memory.write(store, others.concat(Array.from(sent)).map((entry) => entry.join(' ')).slice(-200));
  }

  function forget(id) {
    earlier.delete(id);
    resolved.add(id);
    if (sent.delete(id)) keep();
  }

  return {
    earlier, forget,
    add(id, mark) {
      sent.set(id, mark);
      keep();
    },
    // Returns the identity under which an earlier page sent this file, or a new one.
    idOf: (mark) => Array.from(earlier).find((id) => sent.get(id) === mark) || newID(),
    // Takes the outcomes of uploads of earlier pages. Returns the marks of those that were saved.
    learn(outcomes) {
      const saved = [];
      Array.from(earlier).filter((id) => outcomes[id] && outcomes[id].state !== 'receiving').forEach((id) => {
        if (outcomes[id].state === 'saved') saved.push(sent.get(id));
        forget(id);
      });
      saved.forEach(marks.add);
      return saved;
    },
  };
})();
