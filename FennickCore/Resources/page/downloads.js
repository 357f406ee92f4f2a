// ---- Fetcher: saves the chosen photos on the phone, one after another

const fetcher = (function () {
  const large = 200e6;  // bytes; a larger file is left to the browser, which need not hold it in memory
  let stopper = null;   // while downloads run
  let lent = '';        // the address of the photo that the browser is still storing

  function hand(address, name) {
    const link = document.createElement('a');
    link.href = address;
    link.download = name;
    link.click();
  }

  // Frees the memory of the previous photo, which has been stored by now.
  function lend(address) {
    if (lent) URL.revokeObjectURL(lent);
    lent = address;
  }

  // Pauses between downloads: browsers, especially on iPhones, drop downloads that follow within a second.
  async function one(item) {
    const address = gallery.url('file', item);
    if (item.bytes > large) return hand(address, item.name);
    const reply = await fetch(address, { cache: 'no-store', signal: stopper.signal });
    if (!reply.ok) {
      if (pictures.refused(reply.status, await reply.text())) stop();
      throw reply.status;
    }
    lend(URL.createObjectURL(await reply.blob()));
    hand(lent, item.name);
    await new Promise((resolve) => setTimeout(resolve, 1200));
  }

  async function start(list) {
    const failed = [];
    let done = 0;
    stopper = new AbortController();
    gallery.tally();
    for (const item of list) {
      show(item, done + failed.length, list.length);
      try {
        await one(item);
        done++;
        gallery.unpick(item);
      } catch (reason) {
        if (!stopper.signal.aborted) failed.push(item.name);
      }
      if (stopper.signal.aborted) break;
    }
    stopper = null;
    setTimeout(() => stopper || lend(''), 10000);
    report(done, failed);
  }

  function show(item, before, all) {
    say(before + 1 + ' / ' + all + ' · ' + item.name);
    $.fetchBar.setAttribute('aria-valuemax', all);
    $.fetchBar.setAttribute('aria-valuenow', before);
    $.fetchBar.firstElementChild.style.transform = 'scaleX(' + before / all + ')';
    swap(true);
  }

  function report(done, failed) {
    swap(false);
    say(both('已把 ' + done + ' 张交给浏览器', done + ' handed to the browser') + (failed.length
      ? ' · ' + both(failed.length + ' 张没下成，可重试', failed.length + ' failed, please retry') + ': ' + failed.slice(0, 3).join(', ') : ''));
    gallery.tally();
  }

  function swap(running) {
    $.fetch.hidden = running;
    $.fetchBar.hidden = $.fetchStop.hidden = !running;
  }

  function say(text) {
    $.fetchText.textContent = text;
  }

  function stop() {
    if (stopper) stopper.abort();
  }

  return { start, stop, say, get running() { return Boolean(stopper); }, wire: () => on($.fetchStop, 'click', stop) };
})();
