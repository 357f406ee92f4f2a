// What only one browser can be made to show: dropping and pasting, the keyboard, the clock.

import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { make, makeMany } from './lib/files.mjs';
import { Program, digests, scratch } from './lib/program.mjs';

describe('Chromium alone', () => {
  let browser;
  before(async () => { browser = await Chromium.launch(); });
  after(() => browser?.close());

  test('dropped files and a pasted picture are uploaded, dropped text is ignored', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t, { width: 1200, height: 800, scale: 1, phone: false });
    await page.ready(program.url);
    await page.evaluate(() => {
      const carry = (name) => {
        const transfer = new DataTransfer();
        if (name) transfer.items.add(new File([new Uint8Array([0xff, 0xd8, 0xff, 0xe0]), name.repeat(50)], name, { type: 'image/jpeg' }));
        else transfer.setData('text/plain', 'words');
        return transfer;
      };
      const drop = (dataTransfer) => document.body.dispatchEvent(new DragEvent('drop', { dataTransfer, bubbles: true, cancelable: true }));
      drop(carry());
      drop(carry('dropped.jpg'));
      document.body.dispatchEvent(new ClipboardEvent('paste', { clipboardData: carry('pasted.jpg'), bubbles: true }));
    });
    await page.done();
    assert.deepEqual((await page.inState('saved')).map((row) => row.name).sort(), ['dropped.jpg', 'pasted.jpg']);
  });

  test('the keyboard reaches all controls in order, and actions keep the focus', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t, { width: 800, height: 900, scale: 1, phone: false });
    const focused = () => page.evaluate(() => document.activeElement.id || document.activeElement.getAttribute('aria-label') || document.activeElement.tagName);
    const press = async (key) => {
      await page.page.keyboard.press(key);
      return focused();
    };
    await page.ready(program.url);
    assert.equal(await press('Tab'), 'camera');
    assert.equal(await press('Tab'), 'recorder');
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

  test('500 files are listed without a refusal, and leaving the page asks first', async (t) => {
    const program = await Program.start(t);
    const page = await browser.visitor(t, { phone: false });
    await page.ready(program.url);
    await page.choose(makeMany(scratch(), 500, 200));
    await page.hold('pace');
    await page.waitFor(() => document.querySelectorAll('.row').length === 500, '500 rows');
    assert.equal((await page.inState('failed')).length, 0);
    await page.page.mouse.click(5, 5);
    const question = page.page.waitForEvent('dialog');
    page.page.close({ runBeforeUnload: true });
    assert.equal((await question).type(), 'beforeunload');
    await (await question).accept();
  });

  test('an upload without progress is cancelled and sent again', async (t) => {
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
});
