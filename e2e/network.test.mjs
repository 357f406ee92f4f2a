// Everything at once, as it happens at somebody's home: a computer and a phone, each with a network of its own,
// joined by a cable with private addresses.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { test } from 'node:test';
import { Chromium } from './lib/chromium.mjs';
import { makeMany } from './lib/files.mjs';
import { twoHosts } from './lib/networks.mjs';
import { binary, digests, scratch, until } from './lib/program.mjs';
import { Terminal } from './lib/terminal.mjs';

test('a phone and a computer: page, uploads, gallery, ban, key reset and a change of address', async (t) => {
  const { computer, phone } = await twoHosts(t);
  const home = scratch();
  const folder = path.join(home, 'photos');
  const terminal = new Terminal(t, [...computer.prefix, binary, '--no-qr', '--folder', folder, '--state-dir', path.join(home, 'state'), '--set', 'galleryEnabled=true'].join(' '));
  const shown = (address, but) => terminal.sees(new RegExp(`http://${address}:8000/\\?k=(?!${but ?? '-'})(\\w+)`));
  const [url, key] = await shown('192.168.77.1');
  const address = (name, where = '192.168.77.1', k = key) => `http://${where}:8000/${name}?k=${k}`;

  // The page, and photos through it.
  const browser = await Chromium.launch({ through: phone.prefix });
  t.after(() => browser.close());
  const page = await browser.visitor(t);
  await page.ready(url);
  const photos = makeMany(scratch(), 3);
  await page.choose(photos);
  await page.done();
  const saved = () => fs.readdirSync(folder).filter((name) => name.endsWith('.jpg')).map((name) => path.join(folder, name));
  assert.deepEqual(digests(saved()), digests(photos));
  await terminal.sees(/✓ (\S+\.jpg)/);

  // The gallery, and a photo back to the phone.
  await page.click('#tabWall');
  await page.waitFor(() => document.querySelectorAll('#grid li').length === 3, 'three photos in the gallery');
  const back = path.join(home, 'back.jpg');
  assert.equal(phone.ask(address(`file/${path.basename(saved()[0])}`), '--output', back).status, 200);
  assert.deepEqual(digests([back]), digests([saved()[0]]));

  // A public address is refused without a word; guessing the key bans who guesses, and nobody else.
  phone.ip('addr add 203.0.113.5/32 dev wlan0');
  computer.ip('route add 203.0.113.5 dev eth0');
  assert.equal(phone.ask(address('health'), '--interface', '203.0.113.5').status, 0);
  phone.ip('addr add 192.168.77.3/24 dev wlan0');
  const guess = (k) => phone.ask(address('', '192.168.77.1', k), '--interface', '192.168.77.3').status;
  for (let i = 0; i < 10; i++) assert.equal(guess('guess'), 403);
  assert.equal(guess(key), 429);
  assert.equal(phone.ask(url).status, 200);

  // A new key shuts the old one out.
  terminal.press('k');
  await terminal.sees(/按 y 重置/);
  terminal.press('y');
  const [newURL, newKey] = await shown('192.168.77.1', key);
  assert.equal(phone.ask(url).status, 403);
  await page.ready(newURL);

  // The address goes, another one comes, and the page works under it.
  computer.ip('addr del 192.168.77.1/24 dev eth0');
  await terminal.sees(/没有可用的局域网地址/);
  computer.ip('addr add 192.168.77.9/24 dev eth0');
  const [movedURL] = await shown('192.168.77.9');
  assert.equal(movedURL, address('', '192.168.77.9', newKey));
  assert.notEqual(phone.ask(newURL, '--max-time', '1').status, 200);
  await page.ready(movedURL);
  const more = makeMany(scratch(), 2, 6000);
  await page.choose(more);
  await page.done();
  assert.deepEqual(digests(saved()), digests([...photos, ...more]));

  terminal.press('q');
  assert.equal(await terminal.exited, 0);
  await until(() => !fs.existsSync(path.join(folder, '.fennick-incoming')) || fs.readdirSync(path.join(folder, '.fennick-incoming')).length === 0, 'no part files');
});
