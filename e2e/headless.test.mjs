// The terminal receiver as a process: what it says, how it ends, what it leaves, and how it bears faults that only a
// real file system makes.

import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import http from 'node:http';
import net from 'node:net';
import path from 'node:path';
import { test } from 'node:test';
import { make } from './lib/files.mjs';
import { Program, binary, digests, scratch, until } from './lib/program.mjs';

// What a shortcut or curl does: one file, one answer.
function post(program, file, { host = '127.0.0.1', headers = {} } = {}) {
  return new Promise((resolve, reject) => {
    const request = http.request({ host, port: program.port, method: 'POST', path: `/upload?k=${program.key}`,
      headers: { 'content-length': fs.statSync(file).size, ...headers } }, (response) => {
      let text = '';
      response.on('data', (data) => { text += data; });
      response.on('end', () => resolve({ status: response.statusCode, text }));
    });
    request.on('error', reject);
    fs.createReadStream(file).pipe(request);
  });
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

test('a command line that makes no sense ends with 2 and a sentence on standard error', () => {
  for (const args of [['--bogus'], ['photos'], ['--port', '70000'], ['--set', 'nothing=1'], ['--set', 'folderLimit=many'],
    ['--set', 'folderLimit=-1'], ['--set', 'imaging.maxPixels=1.5'], ['--set', 'naming=sideways'], ['--set', 'folderLimit']]) {
    const { status, stdout, stderr } = run(...args);
    assert.equal(status, 2, args.join(' '));
    assert.equal(stdout, '');
    assert.match(stderr, /^.+ \/ .+\n$/, args.join(' '));
  }
});

test('no free port ends with 1 and says so on both channels', async (t) => {
  const taken = net.createServer().listen(65535, '::');
  t.after(() => taken.close());
  await new Promise((resolve, reject) => { taken.once('listening', resolve); taken.once('error', reject); });
  const { status, stdout, stderr } = run('--json', '--port', '65535', '--folder', scratch());
  assert.equal(status, 1);
  assert.deepEqual(JSON.parse(stdout), { event: 'error', message: '无法启动服务：端口 65535 已被占用' });
  assert.match(stderr, /fennick: server failed /);
});

test('a photo is made smaller by the locked-down process, its original is kept and the note says so', async (t) => {
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

test('a signal in the middle of an upload ends with 0 and leaves no part file', async (t) => {
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

test('IPv4 and IPv6 are served, and names follow the settings', async (t) => {
  const program = await Program.start(t, { set: { naming: '{"prefixSequence":{"prefix":"Party","separator":"-","digits":4,"start":7}}', sessionSubfolder: 'night' } });
  const files = [make(scratch(), 'a.jpg'), make(scratch(), 'b.png')];
  assert.deepEqual(await post(program, files[0]), { status: 200, text: 'Party-0007.jpg' });
  assert.deepEqual(await post(program, files[1], { host: '::1' }), { status: 200, text: 'Party-0008.png' });
  assert.deepEqual(digests(program.saved()), digests(files));
  await program.names(2);
  assert.deepEqual(program.received.map(({ event, note, path: where, bytes, name }) => ({ event, note, where, bytes, name }))[0], {
    event: 'received', note: 'Party-0007.jpg：4 KB', where: path.join(program.folder, 'night', 'Party-0007.jpg'), bytes: 4000, name: 'Party-0007.jpg',
  });
});

test('a folder that is replaced by a file gives a clear answer and recovers without a restart', async (t) => {
  const program = await Program.start(t);
  const photo = make(scratch(), 'a.jpg');
  assert.equal((await post(program, photo)).status, 200);
  const aside = `${program.folder}.aside`;
  fs.renameSync(program.folder, aside);
  fs.writeFileSync(program.folder, 'in the way');
  assert.deepEqual(await post(program, photo), { status: 500, text: '无法写入保存目录，请检查 Mac 端设置 / cannot write to the save folder' });
  fs.rmSync(program.folder);
  fs.renameSync(aside, program.folder);
  assert.equal((await post(program, photo)).status, 200);
  assert.equal(program.saved().length, 2);
  assert.deepEqual(program.parts(), []);
});

test('the preferences are private, and damaged ones are kept aside', async (t) => {
  const home = scratch();
  const file = path.join(home, 'state', 'preferences.json');
  const first = await Program.start(t, { home });
  assert.equal(fs.statSync(file).mode & 0o777, 0o600);
  await first.stop();
  fs.writeFileSync(file, '{"accessKey":');
  const second = await Program.start(t, { home });
  assert.notEqual(second.key, first.key);
  assert.equal(fs.readFileSync(`${file}.damaged`, 'utf8'), '{"accessKey":');
  assert.equal(JSON.parse(fs.readFileSync(file, 'utf8')).accessKey, second.key);
});

test('ten wrong keys ban the address, and the page of a stranger is not served', async (t) => {
  const program = await Program.start(t);
  const ask = async (target) => {
    const response = await fetch(`http://127.0.0.1:${program.port}${target}`);
    return { status: response.status, text: await response.text() };
  };
  for (let i = 0; i < 10; i++) assert.equal((await ask('/?k=guess')).status, 403);
  assert.deepEqual(await ask(`/?k=${program.key}`), { status: 429, text: 'too many requests' });
});

test('in words: the code, the address, and a line for every file', async (t) => {
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
