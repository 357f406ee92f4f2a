// The terminal receiver as a process: what it says, how it ends, what it leaves, and how it bears faults that only a
// real file system makes.

import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import net from 'node:net';
import path from 'node:path';
import { test } from 'node:test';
import { make } from './lib/files.mjs';
import { Program, binary, digests, scratch, until } from './lib/program.mjs';

// What a shortcut or curl does: one file, one answer.
async function post({ port, key }, file) {
  const answer = await fetch(`http://127.0.0.1:${port}/upload?k=${key}`, { method: 'POST', body: fs.readFileSync(file) });
  return { status: answer.status, text: await answer.text() };
}

// An upload that has begun and does not go on.
async function hangingUpload(program) {
  const socket = net.connect(program.port, '127.0.0.1');
  socket.on('error', () => {});
  socket.write(`POST /upload?k=${program.key} HTTP/1.1\r\ncontent-length: 100000\r\n\r\n\u00ff`);
  await until(() => program.parts().length > 0, 'the upload to begin');
  return socket;
}

const run = (...args) => spawnSync(binary, ['--state-dir', path.join(scratch(), 'state'), ...args], { encoding: 'utf8', timeout: 20000 });

test('an invalid command line exits with 2 and a message on standard error', () => {
  for (const args of [['--bogus'], ['photos'], ['--port', '70000'], ['--set', 'nothing=1'], ['--set', 'folderLimit=many'],
    ['--set', 'folderLimit=-1'], ['--set', 'imaging.maxPixels=1.5'], ['--set', 'naming=sideways'], ['--set', 'folderLimit']]) {
    const { status, stdout, stderr } = run(...args);
    assert.equal(status, 2, args.join(' '));
    assert.equal(stdout, '');
    assert.match(stderr, /^.+ \/ .+\n$/, args.join(' '));
  }
});

test('without a free port it exits with 1 and reports the error on both channels', async (t) => {
  const taken = net.createServer().listen(65535, '::');
  t.after(() => taken.close());
  await new Promise((resolve, reject) => { taken.once('listening', resolve); taken.once('error', reject); });
  const { status, stdout, stderr } = run('--json', '--port', '65535', '--folder', scratch());
  assert.equal(status, 1);
  assert.deepEqual(JSON.parse(stdout), { event: 'error', message: '无法启动服务：端口 65535 已被占用' });
  assert.match(stderr, /fennick: server failed /);
});

test('the sandboxed process reduces a photo, the original is kept and the note describes it', async (t) => {
  const program = await Program.start(t, { set: { 'imaging.maxPixels': 4, 'imaging.keepOriginal': true } });
  const photo = make(scratch(), 'a.jpg');
  const { text } = await post(program, photo);
  await until(() => program.received.length === 1, 'the photo to be processed');
  const [{ name, path: file, note }] = program.received;
  assert.equal(name, text.replace('.jpg', '.jpeg'));
  assert.match(note, /：.+ → 4px · q85 · .+ · JPEG$/);
  assert.ok(fs.statSync(file).size > 0);
  assert.deepEqual(digests([path.join(program.folder, 'originals', text)]), digests([photo]));
  assert.deepEqual(program.parts(), []);
});

test('a signal during an upload exits with 0 and leaves no part file', async (t) => {
  for (const signal of ['SIGINT', 'SIGTERM']) {
    const program = await Program.start(t);
    const socket = await hangingUpload(program);
    program.child.kill(signal);
    assert.deepEqual(await program.exited, { code: 0, signal: null });
    assert.deepEqual(program.parts(), []);
    socket.destroy();
  }
});

test('a crash leaves a part file, and the next start in that folder removes it', async (t) => {
  const home = scratch();
  const crashing = await Program.start(t, { home });
  await hangingUpload(crashing);
  crashing.child.kill('SIGKILL');
  await crashing.exited;
  assert.equal(crashing.parts().length, 1);
  const next = await Program.start(t, { home });
  assert.equal(next.key, crashing.key);
  assert.deepEqual(next.parts(), []);

  // A second program beside it must not take the first one's uploads for leftovers.
  const socket = await hangingUpload(next);
  await Program.start(t, { home, state: path.join(scratch(), 'state') });
  assert.equal(next.parts().length, 1);
  socket.destroy();
  await until(() => next.parts().length === 0, 'the broken upload to be cleared');
});

test('text output: the code, the address, and a line for each file', async (t) => {
  const home = scratch();
  const child = spawn(binary, ['--folder', path.join(home, 'photos'), '--state-dir', path.join(home, 'state'), '--port', String(20000 + Math.floor(Math.random() * 20000))]);
  t.after(() => child.kill());
  let output = '';
  child.stdout.on('data', (data) => { output += data; });
  const address = await until(() => /http:\/\/[^:]+:(\d+)\/\?k=(\w+)/.exec(output), 'the address');
  const { text } = await post({ port: address[1], key: address[2] }, make(scratch(), 'a.jpg'));
  await until(() => output.includes(`✓ ${text}：4 KB\n`), 'the line for the file');
  child.kill('SIGINT');
  assert.equal(await new Promise((resolve) => { child.on('exit', resolve); }), 0);
});
