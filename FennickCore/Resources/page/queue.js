// ---- Queue: the files and their states

// The states of an item: waiting, sending, saved, failed, cancelled, known (already sent, skipped). An item is unsure
// while the outcome of its last attempt is unknown; it is not sent again before the computer was asked.
const queue = (function () {
  const items = new Map();
  const changed = new Set();
  const pending = (item) => item.state === 'waiting' || item.state === 'sending';
  let nextId = 1;
  let batch = 1;  // a pick after everything was done starts a new count

  function set(item, state, note) {
    item.state = state;
    item.note = note || '';
    if (state !== 'sending') item.sent = state === 'saved' ? item.file.size : 0;
    touch(item);
  }

  function touch(item) {
    changed.add(item);
    view.soon();
  }

  function add(files) {
    const all = Array.from(items.values());
    if (!all.some(pending)) batch++;
    const listed = new Map(all.filter((item) => item.state !== 'saved').map((item) => [item.mark, item]));
    let added = 0, twice = 0;
    for (const file of files) {
      const mark = marks.of(file);
      const item = listed.get(mark);
      if (item && (pending(item) || item.state === 'known')) {
        twice++;
        continue;
      }
      if (item) requeue(Object.assign(item, { file }));
      else listed.set(mark, admit(file, mark));
      added++;
    }
    announce(added ? both('添加了 ' + added + ' 个', added + ' added') : twice ? '已经在列表里 / Already in the list' : '');
  }

  function admit(file, mark) {
    const item = {
      id: nextId++, upload: outbox.idOf(mark), file, mark, batch, tries: 0, asks: 0, notBefore: 0, sent: 0,
      heldBy: '', final: false, unsure: false, unwanted: false, xhr: null, row: null,
    };
    items.set(item.id, item);
    const refusal = limit.refusal(file);
    if (refusal) set(item, 'failed', refusal);
    else if (marks.has(mark)) set(item, 'known', '已发送过 / Already sent');
    else set(item, 'waiting');
    return item;
  }

  function requeue(item) {
    const refusal = limit.refusal(item.file);
    if (item.state === 'known') item.upload = newID();  // the user wants it a second time
    Object.assign(item, { tries: 0, notBefore: 0, heldBy: '', final: false, unwanted: false, batch });
    if (refusal) set(item, 'failed', refusal);
    else set(item, 'waiting');
  }

  function remove(item) {
    items.delete(item.id);
    changed.add(item);
    item.state = 'gone';
    view.soon();
  }

  return {
    items, changed, add, set, touch, requeue, remove, pending,
    list: (test) => Array.from(items.values()).filter(test),
    inBatch: (item) => item.batch === batch,

    // Returns the next file that fits and whose pause is over, or else when the first pause ends.
    next(fits) {
      let soonest = Infinity;
      for (const item of items.values()) {
        if (item.state !== 'waiting' || item.unsure || !fits(item.file)) continue;
        if (item.notBefore <= now()) return { ready: item };
        soonest = Math.min(soonest, item.notBefore);
      }
      return { at: soonest };
    },
  };
})();
