// What the page says and does when the computer refuses a file or its answer is lost, in every browser. A refusal that
// comes before the end of a large body reaches some browsers only as a broken connection.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { onDisk, resizeDisk, seenFromOutside } from './lib/disk.mjs';
import { make, makeMany, makeSparse } from './lib/files.mjs';
import { Program, digest, digests, scratch } from './lib/program.mjs';
import { Proxy } from './lib/proxy.mjs';
import { WebKit } from './lib/webkit.mjs';

for (const Browser of [WebKit, Chromium]) {
  describe(`${Browser.name}, refusals and lost answers`, () => {
    let browser;
    before(async () => { browser = await Browser.launch(); });
    after(() => browser?.close());

    // A phone that reaches the program through a proxy.
    async function connect(t) {
      const program = await Program.start(t);
      const proxy = await Proxy.start(t, program);
      const page = await browser.visitor(t);
      await page.ready(proxy.url);
      return { program, proxy, page };
    }

    const admitted = async (program) => assert.equal((await fetch(program.url)).status, 200, 'this address is not banned');

    test('an unwritable save folder is shown as the reason, and a retry saves both photos', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const files = makeMany(scratch(), 2, 8e6);
      const incoming = path.join(program.folder, '.fennick-incoming');
      fs.rmSync(incoming, { recursive: true, force: true });
      fs.writeFileSync(incoming, 'in the way');
      await page.ready(program.url);
      await page.choose(files);
      await page.count('failed', 2, 60_000);
      for (const row of await page.inState('failed')) assert.match(row.text, /无法写入保存目录/);
      await admitted(program);
      fs.rmSync(incoming);
      await page.click('#retryAll');
      await page.count('saved', 2, 60_000);
      assert.deepEqual(digests(program.saved()), digests(files));
    });

    test('a video without enough disk space pauses the queue until there is room', async (t) => {
      const home = scratch();
      const folder = path.join(home, 'photos');
      fs.mkdirSync(folder);
      const through = onDisk(folder, '1100M');
      if (!through) return t.skip('no disk can be made here');
      const program = await Program.start(t, { home, through });
      const page = await browser.visitor(t);
      const video = makeSparse(scratch(), 'long.mp4', 200e6);
      await page.ready(program.url);
      await page.choose([video]);
      assert.match(await page.hold('disk'), /空间不足.*disk space/s);
      assert.equal((await page.inState('failed')).length, 0);
      resizeDisk(program, '3G');
      await page.count('saved', 1, 90_000);
      program.folder = seenFromOutside(program);
      assert.deepEqual(digests(program.saved()), digests([video]));
    });

    test('a limit that is lowered while the page is open is shown, and each file is sent once', async (t) => {
      const home = scratch();
      const first = await Program.start(t, { home });
      const page = await browser.visitor(t);
      await page.ready(first.url);
      await first.stop();
      const program = await Program.start(t, { home, port: first.port, set: { maxUploadBytes: 5_000_000 } });
      await page.choose(makeMany(scratch(), 4, 8e6));
      await page.count('failed', 4, 60_000);
      for (const row of await page.inState('failed')) assert.match(row.text, /too large.*limit .*(5\.0 MB|5000000 bytes)/i);
      await admitted(program);
      assert.ok(await page.uploads() <= 4, `${await page.uploads()} uploads were sent`);
      assert.deepEqual(program.saved(), []);
    });

    test('a lost answer results in one saved row and one file', async (t) => {
      const { program, proxy, page } = await connect(t);
      const file = make(scratch(), 'once.jpg', 3e6);
      const lost = proxy.loseNextAnswer();
      await page.choose([file]);
      await lost;
      await page.count('saved', 1, 60_000);
      assert.deepEqual(program.saved().map(digest), [digest(file)]);
      assert.ok((await page.inState('saved'))[0].text.endsWith(path.basename(program.saved()[0])));
      assert.equal(proxy.uploads, 1, 'the computer was asked instead of sent the photo again');
    });

    test('a stop while a photo is being saved shows it as saved, and the queue can continue', async (t) => {
      const { program, proxy, page } = await connect(t);
      const from = scratch();
      const [first, second] = [make(from, 'first.jpg', 3e6), make(from, 'second.jpg', 3e6)];
      const held = proxy.holdNextAnswer();
      await page.choose([first]);
      await held;
      await page.waitFor(() => /Saving/.test(document.querySelector('.row[data-state=sending]')?.innerText), 'the photo to be saved');
      await page.click('#stop');
      await page.count('saved', 1, 60_000);
      await page.choose([second]);
      await page.waitFor(() => {
        if (document.querySelector('#hold[data-kind=stopped]:not([hidden])')) document.querySelector('#holdButton').click();
        return document.querySelectorAll('.row[data-state=saved]').length === 2;
      }, 'both photos to be saved', undefined, 60_000);
      assert.deepEqual(digests(program.saved()), digests([first, second]));
      assert.equal(proxy.uploads, 2);
    });

    test('a photo whose answer was lost by a reload is not sent twice', async (t) => {
      const { program, proxy, page } = await connect(t);
      const file = make(scratch(), 'reloaded.jpg', 3e6);
      const held = proxy.holdNextAnswer();
      await page.choose([file]);
      await held;
      await page.reload();
      await page.link('ok');
      await page.choose([file]);
      await page.waitFor(() => document.querySelector('.row[data-state=saved], .row[data-state=known]'), 'the photo to be known', undefined, 60_000);
      assert.deepEqual(program.saved().map(digest), [digest(file)]);
    });

    test('another tab of the phone does not make it forget a photo whose answer was lost', { skip: !Browser.hasTabs && 'one tab only' }, async (t) => {
      const { program, proxy, page } = await connect(t);
      const other = await page.newTab();
      await other.ready(proxy.url);
      const [file, another] = [make(scratch(), 'first.jpg', 3e6), make(scratch(), 'second.jpg', 9000)];
      const held = proxy.holdNextAnswer();
      await page.choose([file]);
      await held;
      await other.choose([another]);
      await other.count('saved', 1);
      await page.reload();
      await page.link('ok');
      await page.choose([file]);
      await page.waitFor(() => document.querySelector('.row[data-state=saved], .row[data-state=known]'), 'the photo to be known', undefined, 60_000);
      assert.deepEqual(digests(program.saved()), digests([file, another]));
    });
  });
}
