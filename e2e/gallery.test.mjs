// The gallery on a phone: what is shown and when, moving about in it, and what ends up on the phone.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { make, makeMany } from './lib/files.mjs';
import { Program, digests, scratch, until } from './lib/program.mjs';

const on = { set: { galleryEnabled: true } };
const strange = '夏天 #2 100%&?.jpg';

describe('gallery', () => {
  let browser;
  before(async () => { browser = await Chromium.launch(); });
  after(() => browser?.close());

  // A phone that has opened the gallery of a program with `count` photos, the newest first.
  async function visit(t, count, options) {
    const program = await Program.start(t, { ...on, ...options });
    const old = (file, i) => fs.utimesSync(file, 1.7e9 - i, 1.7e9 - i);
    makeMany(program.folder, count).forEach(old);
    const page = await browser.visitor(t);
    await page.ready(program.url);
    await page.click('#tabWall');
    await page.waitFor((n) => document.querySelectorAll('#grid li').length === n, `${count} photos`, Math.min(count, 500));
    return { program, page };
  }

  const names = (page) => page.evaluate(() => Array.from(document.querySelectorAll('#grid button'), (button) => button.ariaLabel));
  const ask = (page) => page.evaluate(() => document.dispatchEvent(new Event('visibilitychange')));
  const seen = (page, number) => page.waitFor((text) => document.querySelector('#viewCount').innerText === text, `photo ${number}`, number);

  async function swipe(page, from, to) {
    const wire = await page.context.newCDPSession(page.page);
    const touch = (type, x) => wire.send('Input.dispatchTouchEvent', { type, touchPoints: x === undefined ? [] : [{ x, y: 400 }] });
    await touch('touchStart', from);
    for (let i = 1; i <= 4; i++) await touch('touchMove', from + (to - from) * i / 4);
    await touch('touchEnd');
  }

  test('the gallery tab follows the setting, and an open gallery is replaced by the upload view', async (t) => {
    const home = scratch();
    const { program, page } = await visit(t, 3, { home });
    await program.stop();
    const off = await Program.start(t, { home, port: program.port });
    await ask(page);
    await page.waitFor(() => document.querySelector('#gallery').hidden, 'the upload');
    assert.match(await page.text(), /关掉了照片墙/);
    assert.equal(await page.page.isVisible('#tabs'), false);
    await off.stop();
    await Program.start(t, { home, port: program.port, ...on });
    await ask(page);
    await page.page.waitForSelector('#tabs:not([hidden])');
    assert.equal(await page.page.isVisible('#wallOff'), false);
  });

  test('a new photo appears first without a reload and without moving the visible photos', async (t) => {
    const { program, page } = await visit(t, 60);
    const listed = await names(page);
    await page.evaluate(() => scrollTo(0, 1200));
    const place = () => page.evaluate(() => Math.round(document.querySelectorAll('#grid button[aria-label="IMG_0040.jpg"]')[0].getBoundingClientRect().top));
    const before = await place();
    ['a', 'b', strange].forEach((name) => make(program.folder, name.endsWith('.jpg') ? name : `${name}.jpg`));
    fs.rmSync(path.join(program.folder, 'IMG_0060.jpg'));
    await ask(page);
    await page.waitFor(() => document.querySelectorAll('#grid .fresh').length === 3, 'three new photos');
    assert.deepEqual((await names(page)).slice(3), listed.slice(0, -1));
    assert.equal(await place(), before);
  });

  test('the large view swipes, zooms, handles keys, and closes with the back button', async (t) => {
    const { page } = await visit(t, 5);
    await page.click('#grid li:nth-child(2)');
    await seen(page, '2 / 5');
    await swipe(page, 300, 60);
    await seen(page, '3 / 5');
    await swipe(page, 60, 300);
    await seen(page, '2 / 5');
    for (let i = 0; i < 2; i++) await page.page.touchscreen.tap(200, 400);
    await page.waitFor(() => /scale\(2\.5\)/.test(document.querySelector('.slide img[style*="scale"]')?.style.transform), 'a zoomed photo');
    await page.page.keyboard.press('ArrowRight');
    await seen(page, '3 / 5');
    for (let i = 0; i < 4; i++) await page.page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => Boolean(document.activeElement.closest('#page'))), false, 'the focus stays in the large view');
    await page.page.keyboard.press('Escape');
    await page.waitFor(() => document.querySelector('#viewer').hidden, 'the grid');
    assert.equal(await page.evaluate(() => document.activeElement.ariaLabel), 'IMG_0003.jpg');
    await page.page.keyboard.press('ArrowRight');
    await page.page.keyboard.press('Enter');
    await seen(page, '4 / 5');
    await page.page.goBack();
    await page.waitFor(() => document.querySelector('#viewer').hidden && !document.querySelector('#gallery').hidden, 'the grid');
  });

  test('selected photos are downloaded unchanged under their names; a failed one is reported and stays selected', async (t) => {
    const { program, page } = await visit(t, 3);
    make(program.folder, strange, 90_000);
    await ask(page);
    await page.page.waitForSelector('#grid li:nth-child(4)');
    const got = [];
    page.page.on('download', (download) => got.push(download));
    await page.click('#wallPick');
    await page.click('#wallAll');
    fs.rmSync(path.join(program.folder, 'IMG_0002.jpg'));
    await page.click('#fetch');
    await page.waitFor(() => /已把 3 张交给浏览器.*1 张没下成.*IMG_0002\.jpg/.test(document.querySelector('#fetchText').innerText), 'the report');
    await until(() => got.length === 3, 'three downloads');
    assert.deepEqual(got.map((download) => download.suggestedFilename()), [strange.replace('?', '_'), 'IMG_0001.jpg', 'IMG_0003.jpg']);
    assert.deepEqual(digests(await Promise.all(got.map((download) => download.path()))), digests(program.saved()));
    assert.equal(await page.evaluate(() => document.querySelector('[aria-pressed=true]').ariaLabel), 'IMG_0002.jpg');
  });

  test('500 photos load only the thumbnails near the viewport', async (t) => {
    const { program, page } = await visit(t, 501);
    const asked = () => page.evaluate(() => performance.getEntriesByType('resource').filter((entry) => entry.name.includes('/thumb/')).length);
    await page.page.waitForSelector('#grid li[data-state=shown]');
    assert.ok(await asked() < 200, `${await asked()} pictures were asked for at once`);
    await page.evaluate(() => scrollTo(0, document.body.scrollHeight));
    await page.page.waitForSelector('#grid li:last-child[data-state=shown]');
    assert.ok(await page.evaluate(() => getComputedStyle(document.querySelector('#grid')).gridTemplateColumns.split(' ').length) === 3);
    const { headers } = await fetch(program.url);
    assert.equal(headers.get('content-encoding'), 'gzip');
    assert.ok(Number(headers.get('content-length')) < 30_000, 'the page stays small');
  });
});
