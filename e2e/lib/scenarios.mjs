// What the page must do in every browser.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { make, makeMany } from './files.mjs';
import { Program, digest, digests, scratch, until } from './program.mjs';

export function scenarios(Browser) {
  describe(Browser.name, () => {
    let browser;
    before(async () => { browser = await Browser.launch(); });
    after(() => browser?.close());

    test('photos and a video arrive unchanged and are shown under their final names', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const from = scratch();
      const files = [
        make(from, 'IMG_0001.jpg', 300_000), make(from, 'image.png', 20_000), make(from, '夏天 #2 100%.jpeg', 5_000),
        make(from, '旅行 & raw.DNG', 9_000), make(from, 'clip.mp4', 2_000_000),
      ];
      await page.ready(program.url);
      await page.choose(files);
      await page.done();
      const shown = (await page.inState('saved')).map((row) => row.text.split(' · ')[1]).sort();
      assert.equal(shown.length, files.length);
      assert.deepEqual(shown, await program.names(files.length));
      assert.deepEqual(digests(program.saved()), digests(files));
      assert.ok(shown.some((name) => name.endsWith('.dng')), 'only the name tells a raw picture from a scan');
    });

    test('a file that is too large, empty or not a photo is refused before it is sent', async (t) => {
      const program = await Program.start(t, { set: { maxUploadBytes: 100_000 } });
      const page = await browser.visitor(t);
      const from = scratch();
      await page.ready(program.url);
      await page.choose([make(from, 'big.jpg', 100_001), make(from, 'empty.jpg', 0), make(from, 'exact.jpg', 100_000), make(from, 'notes.txt')]);
      await page.done();
      const failed = Object.fromEntries((await page.inState('failed')).map((row) => [row.name, row.text]));
      assert.match(failed['big.jpg'], /上限 100 KB \/ Too large, the limit is 100 KB/);
      assert.match(failed['empty.jpg'], /空文件/);
      assert.match(failed['notes.txt'], /不支持的文件类型/);
      assert.equal(await page.uploads(), 1);
      assert.equal((await program.names(1)).length, 1);
    });

    test('a wrong key is refused, and a changed key stops the queue immediately', async (t) => {
      const home = scratch();
      const first = await Program.start(t, { home });
      const page = await browser.visitor(t);
      await page.open(first.url.replace(/k=.*/, 'k=wrong'));
      assert.match(await page.text(), /请扫描/);
      await page.ready(first.url);
      await first.stop();
      const second = await Program.start(t, { home, state: path.join(home, 'other'), port: first.port });
      assert.equal(second.port, first.port);
      await page.choose(makeMany(scratch(), 12));
      assert.match(await page.hold('key'), /扫码/);
      assert.ok((await page.uploads()) <= 3, 'the rest of the queue is kept back');
      assert.deepEqual(second.saved(), []);
      assert.equal((await fetch(second.url)).status, 200, 'this address is not banned for what the page did');
    });

    test('an upload interrupted by a restart of the program continues by itself', async (t) => {
      const home = scratch();
      const first = await Program.start(t, { home });
      const page = await browser.visitor(t);
      const file = make(scratch(), 'long.mp4', 120e6);
      await page.ready(first.url);
      await Promise.all([first.freezeInUpload(), page.choose([file])]);
      await page.count('sending', 1);
      await first.stop();
      assert.match(await page.hold('offline'), /自动继续/);
      const second = await Program.start(t, { home, port: first.port });
      await page.done();
      assert.deepEqual(second.saved().map(digest), [digest(file)]);
      await until(() => second.parts().length === 0, 'no unfinished file');
    });

    test('a full folder is reported before a selection, and nothing is sent', async (t) => {
      const program = await Program.start(t, { set: { folderLimit: 1, autoPrune: false } });
      make(program.folder, 'present.jpg');
      const page = await browser.visitor(t);
      await page.ready(program.url);
      await page.waitFor(() => /文件夹已满/.test(document.querySelector('#hint').innerText), 'the full folder');
      await page.choose(makeMany(scratch(), 3));
      await page.hold('full');
      assert.equal(await page.uploads(), 0);
    });

    test('a folder that becomes full stops the queue without a refusal, and room continues it', async (t) => {
      const program = await Program.start(t, { set: { folderLimit: 3, autoPrune: false } });
      const page = await browser.visitor(t);
      await page.ready(program.url);
      await page.waitFor(() => /3 more/.test(document.querySelector('#hint').innerText), 'the room that is left');
      await page.choose(makeMany(scratch(), 6));
      assert.match(await page.hold('full'), /文件夹已满/);
      assert.equal(await page.uploads(), 3);
      assert.equal((await page.inState('waiting')).length, 3);

      program.saved().slice(0, 2).forEach((file) => fs.rmSync(file));
      await page.click('#holdButton');
      await page.count('saved', 5);
      await page.hold('full');
    });

    test('files that were sent before are marked and skipped, also after a reload', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const files = makeMany(scratch(), 3);
      await page.ready(program.url);
      await page.choose(files);
      await page.done();
      await page.reload();
      await page.link('ok');
      await page.choose([...files, make(scratch(), 'new.jpg')]);
      await page.count('known', 3);
      await page.count('saved', 1);
      assert.match((await page.inState('known'))[0].text, /已发送过 \/ Already sent/);
      await page.click('.row[data-state=known] [data-act=again]');
      await page.count('saved', 2);
      await page.click('#sendAll');
      await page.count('saved', 4);
      assert.equal((await program.names(7)).length, 7);
    });

    test('a cancelled upload and a stopped queue leave no part file and can be continued', async (t) => {
      const program = await Program.start(t);
      const page = await browser.visitor(t);
      const from = scratch();
      const [unwanted, wanted] = [make(from, 'unwanted.mp4', 60e6), make(from, 'wanted.mp4', 60e6)];
      await page.ready(program.url);
      await Promise.all([program.freezeInUpload(), page.choose([unwanted])]);
      await page.count('sending', 1);
      // While the computer does not answer, a notice may appear and move the row away under the pointer.
      await until(async () => {
        const isCancelled = (await page.inState('cancelled')).length === 1;
        if (!isCancelled) await page.click('.row[data-state=sending] [data-act=drop]');
        return isCancelled;
      }, 'the upload to be cancelled', 20000, 300);
      program.thaw();
      await until(() => program.parts().length === 0, 'no unfinished file after a cancel');

      await Promise.all([program.freezeInUpload(), page.choose([wanted])]);
      await page.count('sending', 1);
      await page.click('#stop');
      await page.hold('stopped');
      program.thaw();
      await until(() => program.parts().length === 0, 'no unfinished file after a stop');
      assert.deepEqual(program.saved(), []);
      await page.click('#holdButton');
      await page.count('saved', 1);
      assert.deepEqual(digests(program.saved()), digests([wanted]));
    });
  });
}
