// ---- Pictures: loads thumbnails, a few at a time, and repeats failed requests

// Browsers open only a few connections to one address and never repeat the request of a failed image. Therefore the
// page requests thumbnails itself, leaves connections to other requests, and retries with growing pauses.
const pictures = (function () {
  const most = 4;
  const jobs = new Set();
  let running = 0;
  let open = false;
  let timer = 0;

  function next() {
    clearTimeout(timer);
    const ready = Array.from(jobs).filter((job) => !job.stopper).sort((a, b) => b.urgent - a.urgent || a.at - b.at);
    while (open && running < most && ready.length && ready[0].at <= now()) start(ready.shift());
    if (open && running < most && ready.length) timer = setTimeout(next, Math.max(50, Math.min(...ready.map((job) => job.at)) - now()));
  }

  async function start(job) {
    const stopper = new AbortController();
    job.stopper = stopper;
    running++;
    try {
      await answer(job, await fetch(job.url, { signal: stopper.signal }));
    } catch (e) {
      if (!stopper.signal.aborted) later(job, 0);
    }
    job.stopper = null;
    running--;
    next();
  }

  // A thumbnail that cannot be created stays missing until the photo changes; after "busy" it is requested again.
  async function answer(job, reply) {
    if (reply.ok) finish(job, await reply.blob());
    else if (reply.status === 404) finish(job, null);
    else if (!refused(reply.status, await reply.text())) later(job, Number(reply.headers.get('Retry-After')));
  }

  function finish(job, blob) {
    if (jobs.delete(job)) job.done(blob);
  }

  function later(job, seconds) {
    job.at = now() + Math.max(1000 * (seconds || 0), pause(job.tries++));
  }

  // Each request with an invalid key would count as a failure of this phone, so no more are sent.
  function refused(code, text) {
    if (code === 403 && /gallery is off/.test(text)) gallery.turn(false);
    else if (code === 403) status.believe('key');
    else if (code === 429) status.believe('banned');
    else return false;
    return true;
  }

  return {
    refused,
    // Calls `done` with the picture, or with null if there is none. Returns a function that cancels the request.
    want(url, urgent, done) {
      const job = { url, urgent: urgent ? 1 : 0, done, at: 0, tries: 0, stopper: null };
      jobs.add(job);
      next();
      return () => {
        jobs.delete(job);
        if (job.stopper) job.stopper.abort();
      };
    },
    // Sends no requests while the gallery is not visible or the computer cannot be reached.
    run(on) {
      open = on;
      jobs.forEach((job) => {
        if (!on && job.stopper) job.stopper.abort();
        job.at = 0;
      });
      if (on) next();
    },
  };
})();
