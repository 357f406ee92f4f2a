// The page's looks: contrast, names, reach, and pictures of the main states for a person to judge.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { faintTexts, smallTargets, widerThanTheScreen } from './lib/eye.mjs';
import { make } from './lib/files.mjs';
import { Program, scratch } from './lib/program.mjs';

const album = path.join(import.meta.dirname, 'screenshots');
const screens = [
  { name: 'phone', width: 390, height: 844, scale: 2 },
  { name: 'small', width: 320, height: 568, scale: 2 },
  { name: 'tablet', width: 820, height: 1180, scale: 1 },
];

// Paints little landscapes, so that the pictures show what a person would see.
function paintLandscapes(count) {
  return Array.from({ length: count }, (_, i) => {
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = i % 3 ? [960, 720] : [720, 960];
    const pen = canvas.getContext('2d');
    const { width, height } = canvas;
    const hue = (i * 47) % 360;
    const sky = pen.createLinearGradient(0, 0, 0, height);
    sky.addColorStop(0, `hsl(${hue} 55% 72%)`);
    sky.addColorStop(1, `hsl(${(hue + 40) % 360} 70% 88%)`);
    pen.fillStyle = sky;
    pen.fillRect(0, 0, width, height);
    pen.fillStyle = `hsl(${(hue + 60) % 360} 90% 80%)`;
    pen.beginPath();
    pen.arc(width * (0.25 + (i % 5) * 0.12), height * 0.3, width * 0.08, 0, 7);
    pen.fill();
    for (let hill = 0; hill < 4; hill++) {
      pen.fillStyle = `hsl(${(hue + 150 + hill * 8) % 360} ${30 + hill * 5}% ${62 - hill * 13}%)`;
      pen.beginPath();
      pen.moveTo(0, height);
      for (let x = 0; x <= width; x += 8) {
        pen.lineTo(x, height * (0.5 + hill * 0.12) + Math.sin(x / (90 + hill * 40) + i * 2 + hill) * height * 0.06);
      }
      pen.lineTo(width, height);
      pen.fill();
    }
    return canvas.toDataURL('image/jpeg', 0.9).split(',')[1];
  });
}

async function landscapes(page, folder, count) {
  const pictures = await page.evaluate(paintLandscapes, count);
  return pictures.map((picture, i) => {
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

describe('looks', () => {
  let browser;
  before(async () => {
    browser = await Chromium.launch();
    fs.rmSync(album, { recursive: true, force: true });
    fs.mkdirSync(album);
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
        const pictures = await landscapes(page, from, 9);
        await page.slow(300_000);
        await page.choose(pictures);
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

        await page.choose([make(from, 'notes.txt'), make(from, 'holiday-in-the-mountains-with-everybody.mp4', 4_000_000), pictures[0], pictures[1]]);
        await page.count('failed', 2);
        await page.count('known', 2);
        await look('errors');

        await program.stop();
        await page.choose([make(from, 'later.jpg')]);
        await page.hold('offline');
        await page.evaluate(() => scrollTo(0, 0));
        await look('offline');
      });
    }
  }
});
