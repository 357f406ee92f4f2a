// What the page does around the sending itself, the same in every browser.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import { after, before, describe, test } from 'node:test';
import { make, makeMany } from './files.mjs';
import { Program, scratch, until } from './program.mjs';

export function sendingScenarios(Browser) {
  describe(`${Browser.name}, sending`, () => {
    let browser;
    before(async () => { browser = await Browser.launch(); });
    after(() => browser?.close());

    // As on a phone, which offers no wake lock to a page that is not encrypted.
    test('a video keeps the screen on from the tap that continues the queue until it is done', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      await page.ready(program.url);
      await page.evaluate(() => { delete Navigator.prototype.wakeLock; });
      await Promise.all([program.freezeInUpload(), page.choose([make(scratch(), 'long.mp4', 60e6)])]);
      await page.count('sending', 1);
      await page.click('#stop');
      await page.hold('stopped');
      const isPlaying = () => !document.querySelector('#awake').paused && document.querySelector('#awake').currentTime > 0;
      await page.waitFor(() => document.querySelector('#awake').paused && document.querySelector('#stay').hidden, 'the video to stand still');
      await page.click('#holdButton');
      await page.waitFor(isPlaying, 'the video to play');
      program.thaw();
      await page.done();
      await page.waitFor(() => document.querySelector('#awake').paused, 'the video to stand still at the end');
    });

    test('a stopped queue is cleared with one tap, and saved files stay visible', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const from = scratch();
      await page.ready(program.url);
      await page.choose([make(from, 'first.jpg', 5000)]);
      await page.done();
      await Promise.all([program.freezeInUpload(), page.choose([make(from, 'long.mp4', 60e6), ...makeMany(scratch(), 8, 7000)])]);
      await page.click('#stop');
      await page.hold('stopped');
      await page.click('#holdClear');
      program.thaw();
      await page.waitFor(() => document.querySelectorAll('.row:not([data-state=saved])').length === 0, 'the queue to be empty');
      assert.equal((await page.inState('saved')).length, program.saved().length);
      await until(() => program.parts().length === 0, 'no unfinished file');
    });

    test('a photo is recognised by its date, or by name and size if the date is that of the selection', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const dated = (days) => {
        const file = make(scratch(), 'IMG_0001.jpg', 9000);
        if (days) fs.utimesSync(file, Date.now() / 1000 - days * 86400, Date.now() / 1000 - days * 86400);
        return file;
      };
      await page.ready(program.url);
      await page.choose([dated(2)]);
      await page.count('saved', 1);
      await page.choose([dated(3)]);  // another photo that happens to have the same name and size
      await page.count('saved', 2);
      await page.choose([dated(0)]);
      await page.count('known', 1);
      assert.equal(program.saved().length, 2);
    });

    test('videos that together would take too long are sent one at a time', { skip: Browser.name !== 'Chromium' && 'only Chromium can be made slow' }, async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const from = scratch();
      await page.ready(program.url);
      await page.slow(100_000);
      await page.choose([make(from, 'one.mp4', 40e6), make(from, 'two.mp4', 40e6)]);
      await page.waitFor(() => /\/s/.test(document.querySelector('#sumPace').innerText), 'the speed to be known');
      assert.deepEqual((await page.rows()).map((row) => row.state), ['sending', 'waiting']);
      await page.slow();
      await page.done();
    });
  });
}
