// ---- Hands: everything the person can do

function take(files) {
  const list = Array.from(files);
  if (!list.length) return;
  queue.add(list);
  uploader.pump();
}

function wireChoosers() {
  ['camera', 'chooser'].forEach((id) => $(id).addEventListener('change', (event) => {
    take(event.target.files);
    event.target.value = '';
  }));
}

function wireRows() {
  $('upload').addEventListener('click', (event) => {
    const button = event.target.closest('[data-act]');
    const item = button && queue.items.get(Number(button.closest('.row').dataset.id));
    if (!item) return;
    if (button.dataset.act === 'again') uploader.retry([item]);
    else if (queue.pending(item)) uploader.stopOne(item);
    else queue.remove(item);
  });
  const inState = (...states) => queue.list((item) => states.includes(item.state));
  $('stop').addEventListener('click', uploader.stopAll);
  $('holdButton').addEventListener('click', uploader.resume);
  $('retryAll').addEventListener('click', () => uploader.retry(inState('failed')));
  $('sendAll').addEventListener('click', () => uploader.retry(inState('known', 'cancelled')));
  $('clear').addEventListener('click', () => {
    inState('saved').forEach(queue.remove);
    $('chooser').focus({ preventScroll: true });
  });
}

// A folder dropped along with the pictures cannot be sent as a file and is left out.
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
  const veil = (on) => { $('veil').hidden = !on; };
  document.addEventListener('dragover', (event) => {
    if (!carriesFiles(event)) return;
    event.preventDefault();
    veil(true);
  });
  document.addEventListener('dragleave', (event) => {
    if (!event.relatedTarget) veil(false);
  });
  document.addEventListener('drop', (event) => {
    if (!carriesFiles(event)) return;
    event.preventDefault();
    veil(false);
    take(droppedFiles(event.dataTransfer));
  });
  document.addEventListener('paste', (event) => {
    if (event.clipboardData) take(event.clipboardData.files);
  });
}

function wireLife() {
  document.addEventListener('visibilitychange', () => {
    if (document.hidden) {
      marks.flush();
      status.plan();
    } else {
      uploader.wake();
    }
  });
  window.addEventListener('online', uploader.wake);
  window.addEventListener('pagehide', marks.flush);
  window.addEventListener('pageshow', (event) => {
    if (event.persisted) uploader.wake();
  });
}

wireChoosers();
wireRows();
wireDropAndPaste();
wireLife();
status.ask();
