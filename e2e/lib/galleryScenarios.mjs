// What the gallery must do in every browser when pictures cannot be had.

import assert from 'node:assert/strict';
import net from 'node:net';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { makeMany } from './files.mjs';
import { Program, scratch } from './program.mjs';

const on = { set: { galleryEnabled: true } };

export function galleryScenarios(Browser) {
  describe(`${Browser.name}, gallery`, () => {
    let browser;
    before(async () => { browser = await Browser.launch(); });
    after(() => browser?.close());

    const shown = (page, number) => page.waitFor((least) => document.querySelectorAll('#grid [data-state=shown]').length >= least, `${number} pictures`, number);

    test('a guest with an old key is asked to scan, and the new code works immediately', async (t) => {
      const home = scratch();
      const first = await Program.start(t, { home, ...on });
      makeMany(first.folder, 120);
      const page = await browser.visitor(t);
      await page.ready(first.url);
      await page.click('#tabWall');
      await shown(page, 9);
      await first.stop();
      const second = await Program.start(t, { home, state: path.join(home, 'other'), port: first.port, ...on });
      await page.evaluate(() => { for (let i = 1; i < 20; i++) setTimeout(() => scrollTo(0, i * 400), i * 60); });
      await page.link('key');
      assert.match(await page.text(), /请重新扫码/);
      await page.ready(second.url);
      await page.click('#tabWall');
      await shown(page, 9);
    });

    test('thumbnails that failed while the computer was busy are loaded later', async (t) => {
      const program = await Program.start(t, on);
      makeMany(program.folder, 12);
      const page = await browser.visitor(t);
      await page.ready(program.url);
      await page.waitFor(() => !document.querySelector('#tabs').hidden, 'the gallery to be offered');
      const held = await Promise.all(Array.from({ length: 62 }, () => new Promise((resolve) => {
        const socket = net.connect(program.port, '127.0.0.1', () => resolve(socket));
        socket.on('error', () => {});
      })));
      await page.click('#tabWall');
      await new Promise((resolve) => setTimeout(resolve, 4000));  // as long as guests hold them
      held.forEach((socket) => socket.destroy());
      await shown(page, 12);
    });
  });
}
