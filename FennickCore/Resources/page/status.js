// ---- Status: what the computer says about itself

const status = (function () {
  const calm = 12000;      // between two questions while all is well and the page is seen
  let state = 'asking';    // asking, ok, lost, key, banned
  let info = {};
  let asking = null;
  let timer = 0;
  let misses = 0;
  let taken = 0;           // files saved since the question behind `info` was sent
  let askedAt = 0;
  const listeners = [];

  function setState(next) {
    state = next;
    misses = next === 'lost' ? misses + 1 : 0;
    plan();
    listeners.forEach((listen) => listen(state));
    return state;
  }

  // A hidden page sends no requests unless files are waiting for the connection. After a wrong key no request is
  // repeated: each would count as a failure of this phone, and only a new scan helps.
  function plan() {
    clearTimeout(timer);
    if (state === 'key' || (document.hidden && !(state === 'lost' && uploader.running()))) return;
    timer = setTimeout(ask, state === 'lost' ? pause(misses - 1) : calm);
  }

  function verdict(code) {
    if (code === 200) return 'ok';
    if (code === 403) return 'key';
    return code === 429 ? 'banned' : 'lost';
  }

  // The status request also asks for the outcomes of uploads that are unknown to this phone.
  async function question() {
    const takenBefore = taken;
    askedAt = now();
    const ids = uploader.unsure().concat(Array.from(outbox.earlier)).slice(0, 64);
    try {
      const { code, json } = await query('quota', '&upload=' + ids.join(','));
      if (json) {
        info = json;
        taken -= takenBefore;
        if (json.maxBytes) limit.bytes = json.maxBytes;
      }
      return verdict(code);
    } catch (e) {
      return 'lost';
    }
  }

  function ask() {
    if (asking) return asking;
    if (!key) return Promise.resolve(setState('key'));
    clearTimeout(timer);
    asking = question().then((next) => {
      asking = null;
      return setState(next);
    });
    return asking;
  }

  return {
    ask,
    plan,
    believe: setState,  // what an upload's answer has already told
    listen: (listener) => listeners.push(listener),
    get state() { return state; },
    get info() { return info; },
    get age() { return now() - askedAt; },
    saved() { taken++; },

    // Returns whether a file fits on the computer's disk, as far as known.
    fits: (file) => !info.diskLow && file.size <= (typeof info.roomBytes === 'number' ? info.roomBytes : Infinity),

    // Returns how many more files fit into the folder, as far as known. With automatic pruning there is no limit.
    room() {
      if (typeof info.folderLimit !== 'number' || info.autoPrune) return Infinity;
      return Math.max(0, info.folderLimit - info.folderCount - taken);
    },
  };
})();
