// The photo wall as people use it: with the pointer and the keyboard, on real files.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { test } from 'node:test';
import { Session, Tevrin } from './lib/desktop-session.mjs';
import { until } from './lib/program.mjs';

// Where the first photos stand in a window of the usual size.
const first = { x: 95, y: 145 };
const step = 178;

function drag(session, from, to) {
  const at = ({ x, y }) => ['mousemove', String(x), String(y), 'sleep', '0.05'];
  const between = [0.1, 0.3, 0.6, 0.9, 1].map((share) => ({
    x: Math.round(from.x + share * (to.x - from.x)), y: Math.round(from.y + share * (to.y - from.y)) }));
  session.run('xdotool', ...at(from), 'mousedown', '1', ...between.flatMap(at), 'sleep', '0.2', 'mouseup', '1');
}

test('photos are renamed, deleted, rotated and reordered, and each action can be undone', async (t) => {
  const session = await Session.start(t);
  const photos = path.join(session.home, 'photos');
  fs.mkdirSync(photos);
  for (const name of ['third', 'second', 'first']) // the newest comes first
    execFileSync('convert', ['-size', '90x60', 'gradient:red-blue', path.join(photos, `${name}.jpg`)]);
  const program = new Tevrin(session);
  const main = await program.window('Tevrin');
  await program.hasKeyboard(main);
  const { x, y } = session.place(main);
  const tile = (place) => ({ x: x + first.x + place * step, y: y + first.y });
  const has = (name) => fs.existsSync(path.join(photos, name));
  const blank = session.look(tile(3));
  await until(() => [0, 1, 2].every((place) => session.look(tile(place)) !== blank), 'the photos on the wall');

  session.click(tile(0));
  session.key('F2');
  session.run('xdotool', 'type', 'Morning');
  session.key('Return');
  await until(() => has('Morning.jpg') && !has('first.jpg'), 'the new name');
  session.key('ctrl+z');
  await until(() => has('first.jpg') && !has('Morning.jpg'), 'the old name');

  session.click(tile(1));
  session.key('shift+Right', 'Delete');
  await until(() => !has('second.jpg') && !has('third.jpg') && has('first.jpg'), 'the photos to go');
  const trash = path.join(session.home, '.local/share/Trash/files');
  assert.deepEqual(fs.readdirSync(trash).sort(), ['second.jpg', 'third.jpg']);
  session.key('ctrl+z');
  await until(() => has('second.jpg') && has('third.jpg'), 'the photos to be back');
  assert.deepEqual(fs.readdirSync(trash), []);

  const orientation = () => execFileSync('identify', ['-format', '%[EXIF:Orientation]', path.join(photos, 'first.jpg')],
    { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] });
  await until(() => [0, 1, 2].every((place) => session.look(tile(place)) !== blank), 'all on the wall again');
  session.click(tile(0));
  session.key('ctrl+r');
  await until(() => orientation() === '6', 'the turn');

  // Away from the click before, which would make it a double click that opens the photo.
  drag(session, { ...tile(0), x: tile(0).x + 40 }, { ...tile(2), x: tile(2).x + 60 });
  const order = path.join(photos, '.fennick-order.json');
  await until(() => fs.existsSync(order), 'the new order');
  const arranged = { order: ['second.jpg', 'third.jpg', 'first.jpg'] };
  assert.deepEqual(JSON.parse(fs.readFileSync(order, 'utf8')), arranged);
  session.key('ctrl+t');
  await until(() => !fs.existsSync(order), 'the order to be gone');
  session.key('ctrl+z');
  await until(() => fs.existsSync(order), 'the order to be back');
  assert.deepEqual(JSON.parse(fs.readFileSync(order, 'utf8')), arranged);
  session.key('ctrl+z');
  await until(() => !fs.existsSync(order), 'the drag to be undone');

  assert.deepEqual(await program.end(), { code: 0, signal: null });
  assert.equal(program.stderr, '');
});
