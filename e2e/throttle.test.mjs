// The computer admits 120 uploads a minute from one address. This takes more than a minute of waiting, so it
// has a file of its own and runs beside the others.

import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { makeMany } from './lib/files.mjs';
import { Program, digests, scratch } from './lib/program.mjs';
import { WebKit } from './lib/webkit.mjs';

describe('throttle', { concurrency: 3 }, () => {
  test('more files than the rate limit allows are all delivered without a failure', async (t) => {
    const browser = await Chromium.launch();
    t.after(() => browser.close());
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    const files = makeMany(scratch(), 130);
    await page.ready(program.url);
    await page.choose(files);
    assert.match(await page.hold('pace'), /每分钟/);
    await page.count('failed', 0);

    // The same phone scanning again remembers what it has sent.
    const tab = await page.newTab();
    await tab.ready(program.url);
    await tab.choose(makeMany(scratch(), 2, 6000));
    await tab.hold('pace');
    assert.equal(await tab.uploads(), 0);
    await tab.page.close();

    // A second phone behind the same address knows nothing of the first, and is turned away until there is room.
    const other = await browser.visitor(t);
    const more = makeMany(scratch(), 4, 5000);
    await other.ready(program.url);
    await other.choose(more);
    assert.match(await other.hold('pace'), /每分钟/);
    assert.equal((await other.inState('failed')).length, 0);

    await Promise.all([page.done(100_000), other.done(100_000)]);
    assert.equal((await page.inState('saved')).length, 130);
    assert.deepEqual(digests(program.saved()), digests([...files, ...more]));
  });

  // Large files, since the answer to them can reach a browser as a broken connection.
  for (const Browser of [Chromium, WebKit]) {
    test(`${Browser.name}: photos wait while another visitor of the same address has used the rate limit`, async (t) => {
      const browser = await Browser.launch();
      t.after(() => browser.close());
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const files = makeMany(scratch(), 2, 8e6);
      await page.ready(program.url);
      const send = () => fetch(program.url.replace('/?', '/upload?'), { method: 'POST', body: 'not a photo' });
      for (let i = 0; i < 120; i++) assert.equal((await send()).status, 415);
      assert.equal((await send()).status, 429);
      await page.choose(files);
      assert.match(await page.hold('pace'), /每分钟/);
      await page.waitFor(() => {
        if (document.querySelector('.row[data-state=failed]')) throw new Error('a photo failed');
        return !document.querySelector('#done').hidden;
      }, 'the photos to be saved', undefined, 100_000);
      assert.deepEqual(digests(program.saved()), digests(files));
    });
  }
});
