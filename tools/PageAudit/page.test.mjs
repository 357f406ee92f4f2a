// Takes screenshots of the main states of the phone page into build/screenshots/page, and checks contrast, accessible
// names, and the size of targets in each. script/test runs it with the browser tests.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { Chromium } from '../../e2e/lib/chromium.mjs';
import { faintTexts, smallTargets, widerThanTheScreen } from './measures.mjs';
import { make } from '../../e2e/lib/files.mjs';
import { Program, scratch } from '../../e2e/lib/program.mjs';

const album = fileURLToPath(new URL('../../build/screenshots/page', import.meta.url));
const screens = [
  { name: 'phone', width: 320, height: 568, scale: 2 },
  { name: 'tablet', width: 820, height: 1180, scale: 1 },
];

// Draws plain colours of many hues, so that the screenshots resemble real use.
async function pictures(page, folder, count) {
  const painted = await page.evaluate((many) => Array.from({ length: many }, (_, i) => {
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = i % 3 ? [960, 720] : [720, 960];
    const pen = canvas.getContext('2d');
    pen.fillStyle = `hsl(${i * 47} 55% 72%)`;
    pen.fillRect(0, 0, canvas.width, canvas.height);
    return canvas.toDataURL('image/jpeg', 0.9).split(',')[1];
  }), count);
  return painted.map((picture, i) => {
    const file = path.join(folder, `IMG_${2041 + i}.jpg`);
    fs.writeFileSync(file, Buffer.concat([Buffer.from(picture, 'base64'), Buffer.alloc(60_000 + 9_000 * i)]));
    return file;
  });
}

async function inspect(page, state) {
  assert.deepEqual(await page.evaluate(faintTexts, 4.5), [], `faint text: ${state}`);
  assert.deepEqual(await page.evaluate(smallTargets, 44), [], `small target: ${state}`);
  assert.equal(await page.evaluate(widerThanTheScreen), false, `sideways scrolling: ${state}`);
  const tree = await page.page.locator('body').ariaSnapshot();
  assert.doesNotMatch(tree, /- (button|textbox|progressbar|link|heading)( \[.*\])?:?$/m, `a control without a name: ${state}`);
}

describe('page audit', () => {
  let browser;
  before(async () => {
    browser = await Chromium.launch();
    fs.rmSync(album, { recursive: true, force: true });
    fs.mkdirSync(album, { recursive: true });
  });
  after(() => browser?.close());

  for (const scheme of ['light', 'dark']) {
    for (const screen of screens) {
      test(`every state can be read and reached: ${screen.name}, ${scheme}`, async (t) => {
        const program = await Program.start(t, { set: { maxUploadBytes: 3_000_000, folderLimit: 30, autoPrune: false } });
        const page = await browser.visitor(t, { ...screen, colorScheme: scheme, reducedMotion: 'reduce' });
        const look = async (state) => {
          await inspect(page, state);
          await page.screenshot(path.join(album, `${screen.name}-${scheme}-${state}.png`));
        };
        await page.ready(program.url);
        await look('start');

        const from = scratch();
        const picked = await pictures(page, from, 9);
        await page.slow(300_000);
        await page.choose(picked);
        await page.waitFor(() => document.querySelectorAll('.row[data-state=saved]').length > 1
          && document.querySelectorAll('.row[data-state=sending]').length === 3
          && document.querySelectorAll('.row canvas').length > 3
          && /\/s/.test(document.querySelector('#sumPace').innerText), 'a busy queue');
        await look('uploading');
        await page.click('#stop');
        await page.hold('stopped');
        await look('stopped');
        await page.slow();
        await page.click('#holdButton');
        await page.done();
        await look('done');

        await page.choose([make(from, 'notes.txt'), make(from, 'holiday-in-the-mountains-with-everybody.mp4', 4_000_000), picked[0], picked[1]]);
        await page.count('failed', 2);
        await page.count('known', 2);
        await look('errors');

        await program.stop();
        await page.choose([make(from, 'later.jpg')]);
        await page.hold('offline');
        await page.evaluate(() => scrollTo(0, 0));
        await look('offline');
      });

      test(`the gallery can be seen and reached: ${screen.name}, ${scheme}`, async (t) => {
        const program = await Program.start(t, { set: { galleryEnabled: true } });
        const page = await browser.visitor(t, { ...screen, colorScheme: scheme, reducedMotion: 'reduce' });
        const look = async (state) => {
          await inspect(page, state);
          await page.screenshot(path.join(album, `${screen.name}-${scheme}-gallery-${state}.png`));
        };
        await page.ready(program.url);
        await page.click('#tabWall');
        await page.page.waitForSelector('#wallEmpty:not([hidden])');
        await look('empty');
        await pictures(page, program.folder, 24);
        fs.writeFileSync(path.join(program.folder, 'broken.heic'), 'no picture');
        await page.evaluate(() => document.dispatchEvent(new Event('visibilitychange')));
        await page.page.waitForSelector('#grid [data-state=missing] ~ [data-state=shown], #grid [data-state=shown] ~ [data-state=missing]');
        await look('grid');
        await page.click('#wallPick');
        await page.click('#grid li:nth-child(2)');
        await look('choosing');
        await page.click('#wallPick');
        await page.click('#grid li:nth-child(2)');
        await page.page.waitForSelector('.slide img[src*="s=large"]');
        await look('photo');
        await page.click('#viewClose');
        await program.stop();
        await page.evaluate(() => document.dispatchEvent(new Event('visibilitychange')));
        await page.page.waitForSelector('#wallNote:not([hidden])');
        await look('offline');
      });
    }
  }
});
