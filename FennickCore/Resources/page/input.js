// ---- Input: everything the user can do

function take(files) {
  const list = Array.from(files);
  if (!list.length) return;
  gallery.show(false);
  queue.add(list);
  uploader.pump();
}

function wireChoosers() {
  ['camera', 'recorder', 'chooser'].forEach((id) => {
    on($[id], 'change', (event) => {
      take(event.target.files);
      event.target.value = '';
    });
  });
  on($.upload, 'click', awake.permit);
}

function wireRows() {
  on($.upload, 'click', (event) => {
    const button = event.target.closest('[data-act]');
    const item = button && queue.items.get(Number(button.closest('.row').dataset.id));
    if (!item) return;
    if (button.dataset.act === 'again') uploader.retry([item]);
    else if (queue.pending(item)) uploader.stopOne(item);
    else queue.remove(item);
  });
  const inState = (...states) => queue.list((item) => states.includes(item.state));
  on($.stop, 'click', uploader.stopAll);
  on($.holdButton, 'click', uploader.resume);
  on($.holdClear, 'click', uploader.clear);
  on($.retryAll, 'click', () => uploader.retry(inState('failed').filter((item) => !item.final)));
  on($.sendAll, 'click', () => uploader.retry(inState('known', 'cancelled')));
  on($.clear, 'click', () => {
    inState('saved').forEach(queue.remove);
    $.chooser.focus({ preventScroll: true });
  });
}

// Dropped folders cannot be sent as files and are ignored.
function droppedFiles(transfer) {
  const entries = Array.from(transfer.items || []).filter((item) => item.kind === 'file');
  if (!entries.length) return Array.from(transfer.files);
  return entries
    .filter((item) => !(item.webkitGetAsEntry && (item.webkitGetAsEntry() || {}).isDirectory))
    .map((item) => item.getAsFile())
    .filter(Boolean);
}

function wireDropAndPaste() {
  const carriesFiles = (event) => event.dataTransfer && Array.from(event.dataTransfer.types).includes('Files');
  const veil = (on) => { $.veil.hidden = !on; };
  on(document, 'dragover', (event) => {
    if (!carriesFiles(event)) return;
    event.preventDefault();
    veil(true);
  });
  on(document, 'dragleave', (event) => {
    if (!event.relatedTarget) veil(false);
  });
  on(document, 'drop', (event) => {
    if (!carriesFiles(event)) return;
    event.preventDefault();
    veil(false);
    take(droppedFiles(event.dataTransfer));
  });
  on(document, 'paste', (event) => {
    if (event.clipboardData) take(event.clipboardData.files);
  });
}

function wireLife() {
  on(document, 'visibilitychange', () => {
    if (document.hidden) {
      marks.flush();
      status.plan();
    } else {
      uploader.wake();
    }
  });
  on(window, 'online', uploader.wake);
  on(window, 'pagehide', marks.flush);
  on(window, 'pageshow', (event) => {
    if (event.persisted) uploader.wake();
  });
}

wireChoosers();
wireRows();
wireDropAndPaste();
wireLife();
gallery.wire();
viewer.wire();
fetcher.wire();
status.ask();
