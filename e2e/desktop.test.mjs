// What only one browser can be made to show: leaving, dropping and pasting, the keyboard, the clock, a full disk.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { make, makeMany } from './lib/files.mjs';
import { Program, digests, scratch, until } from './lib/program.mjs';

// A small disk of its own in memory. Only root may make one.
function smallDisk(t, size) {
  const home = scratch();
  const disk = path.join(home, 'disk');
  fs.mkdirSync(disk);
  try {
    execFileSync('mount', ['-t', 'tmpfs', '-o', `size=${size}`, 'tmpfs', disk], { stdio: 'pipe' });
  } catch {
    return null;
  }
  t.after(() => execFileSync('umount', ['--lazy', disk]));
  return {
    home,
    folder: path.join(disk, 'photos'),
    resize: (size) => execFileSync('mount', ['-o', `remount,size=${size}`, disk]),
  };
}

describe('Chromium alone', () => {
  let browser;
  before(async () => { browser = await Chromium.launch(); });
  after(() => browser?.close());

  test('leaving asks first while files are on their way, and only then', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    const asked = [];
    page.page.on('dialog', (dialog) => {
      asked.push(dialog.type());
      return dialog.dismiss();
    });
    await page.ready(program.url);
    await page.click('h1');
    program.freeze();
    await page.choose([make(scratch(), 'long.mp4', 30e6)]);
    await page.count('sending', 1);
    await page.page.close({ runBeforeUnload: true });
    await until(() => asked.length === 1, 'the question');
    program.thaw();
    await page.done();
    const closed = page.page.waitForEvent('close');
    await page.page.close({ runBeforeUnload: true });
    await closed;
    assert.deepEqual(asked, ['beforeunload']);
  });

  test('dropped files and a pasted picture are uploaded, a dropped text is not taken', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t, { width: 1200, height: 800, scale: 1, phone: false });
    await page.ready(program.url);
    await page.evaluate(() => {
      const carry = (file) => {
        const transfer = new DataTransfer();
        if (file) transfer.items.add(file);
        else transfer.setData('text/plain', 'words');
        return transfer;
      };
      const picture = (name, tail) => new File([new Uint8Array([0xff, 0xd8, 0xff, 0xe0]), tail.repeat(50)], name, { type: 'image/jpeg', lastModified: 1 });
      const drag = (type, transfer) => document.body.dispatchEvent(new DragEvent(type, { dataTransfer: transfer, bubbles: true, cancelable: true }));
      drag('dragover', carry());
      window.veiledByText = !document.querySelector('#veil').hidden;
      drag('drop', carry());
      const dropped = carry(picture('dropped.jpg', 'd'));
      drag('dragover', dropped);
      window.veiledByFile = !document.querySelector('#veil').hidden;
      drag('drop', dropped);
      document.body.dispatchEvent(new ClipboardEvent('paste', { clipboardData: carry(picture('pasted.jpg', 'p')), bubbles: true }));
    });
    await page.done();
    await page.count('saved', 2);
    assert.deepEqual((await page.rows()).map((row) => row.name).sort(), ['dropped.jpg', 'pasted.jpg']);
    assert.deepEqual(await page.evaluate(() => [veiledByText, veiledByFile, document.querySelector('#veil').hidden]), [false, true, true]);
  });

  test('the keyboard reaches everything in order, and the focus survives what it sets off', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t, { width: 800, height: 900, scale: 1, phone: false });
    const focused = () => page.evaluate(() => document.activeElement.id || document.activeElement.getAttribute('aria-label') || document.activeElement.tagName);
    const press = async (key) => {
      await page.page.keyboard.press(key);
      return focused();
    };
    await page.ready(program.url);
    assert.equal(await press('Tab'), 'camera');
    assert.equal(await press('Tab'), 'chooser');
    const outline = await page.evaluate(() => getComputedStyle(document.querySelector('#chooser + .face')).outlineStyle);
    assert.equal(outline, 'solid');
    program.freeze();
    await page.choose([make(scratch(), 'one.mp4', 30e6)]);
    await page.count('sending', 1);
    assert.equal(await press('Tab'), 'stop');
    assert.match(await press('Tab'), /取消 \/ Cancel: one\.mp4/);
    await page.page.keyboard.press('Enter');
    await page.count('cancelled', 1);
    assert.match(await focused(), /发送 \/ Send: one\.mp4/);
    await page.page.keyboard.press('Enter');
    program.thaw();
    await page.done();
    assert.equal(await page.evaluate(() => document.querySelector('#live').textContent.includes('全部完成')), true);
  });

  test('uploads carry the type the browser knows, or none, and the whole name', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    const headers = {};
    page.page.on('request', async (request) => {
      if (request.method() !== 'POST') return;
      const sent = await request.allHeaders();
      headers[decodeURIComponent(sent['x-filename'])] = sent['content-type'];
    });
    const from = scratch();
    await page.ready(program.url);
    await page.choose([make(from, '猫 + "dog".jpg'), make(from, 'raw.zzz')]);
    await page.done();
    await until(() => Object.keys(headers).length === 2, 'both requests');
    assert.deepEqual(headers, { '猫 + "dog".jpg': 'image/jpeg', 'raw.zzz': undefined });
  });

  test('a disk that is low is said beforehand, nothing is sent, and room sets it going', async (t) => {
    const disk = smallDisk(t, '500m');
    if (!disk) return t.skip('only root can mount a small disk');
    const program = await Program.start(t, { home: disk.home, folder: disk.folder });
    const page = await browser.visitor(t);
    const files = makeMany(scratch(), 4);
    await page.ready(program.url);
    await page.waitFor(() => /磁盘空间不足/.test(document.querySelector('#hint').innerText), 'the low disk');
    await page.choose(files);
    assert.match(await page.hold('disk'), /磁盘空间不足/);
    assert.equal(await page.uploads(), 0);
    disk.resize('3g');
    await page.click('#holdButton');
    await page.done();
    assert.deepEqual(digests(program.saved()), digests(files));
  });

  test('a file too large for what is left on the disk fails alone, with a reason', async (t) => {
    const disk = smallDisk(t, '1010m');
    if (!disk) return t.skip('only root can mount a small disk');
    const program = await Program.start(t, { home: disk.home, folder: disk.folder });
    const page = await browser.visitor(t);
    const from = scratch();
    const small = make(from, 'small.jpg');
    await page.ready(program.url);
    await page.choose([make(from, 'long.mp4', 100e6), small]);
    await page.done(60_000);
    await page.count('failed', 1);
    assert.match((await page.inState('failed'))[0].text, /磁盘空间不足|连接总是中断/);
    assert.deepEqual(digests(program.saved()), digests([small]));
  });

  test('an upload that stands still is given up and sent again', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    const file = make(scratch(), 'long.mp4', 30e6);
    await page.page.clock.install();
    await page.ready(program.url);
    program.freeze();
    await page.choose([file]);
    await page.count('sending', 1);
    await page.page.clock.runFor(45_000);
    await page.hold('offline');
    program.thaw();
    await page.click('#holdButton');
    await page.done();
    assert.deepEqual(digests(program.saved()), digests([file]));
  });

  test('an upload survives a locked screen: the time that passed unseen is not held against it', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    let uploads = 0;
    page.page.on('request', (request) => { uploads += request.method() === 'POST'; });
    await page.page.clock.install();
    await page.ready(program.url);
    program.freeze();
    await page.choose([make(scratch(), 'long.mp4', 30e6)]);
    await page.count('sending', 1);
    await page.page.clock.fastForward(600_000);
    assert.equal((await page.inState('sending')).length, 1);
    program.thaw();
    await page.done();
    assert.equal(uploads, 1);
  });

  test('five hundred files at once are listed, and sending them starts right away', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t);
    const files = makeMany(scratch(), 500);
    await page.ready(program.url);
    await page.choose(files);
    await page.waitFor(() => document.querySelectorAll('.row').length === 500, 'all the rows');
    await page.waitFor(() => document.querySelectorAll('.row[data-state=saved]').length >= 100, 'the first hundred');
    assert.equal((await page.inState('failed')).length, 0);
    await page.click('#stop');
    await page.hold('stopped');
  });
});
