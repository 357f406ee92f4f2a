// The terminal receiver in a terminal: single keys, the terminal's state whichever way the program leaves it, and one
// program at a time.

import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { test } from 'node:test';
import { twoHosts } from './lib/networks.mjs';
import { Program, binary, scratch, until } from './lib/program.mjs';
import { Terminal } from './lib/terminal.mjs';

const anyPort = () => String(20000 + Math.floor(Math.random() * 20000));

// The receiver's own command line in such a terminal.
function command(home, ...more) {
  return [binary, '--folder', path.join(home, 'photos'), '--state-dir', path.join(home, 'state'), '--port', anyPort(), ...more].join(' ');
}

const address = /http:\/\/[^:]+:(\d+)\/\?k=(\w+)/;
const served = async (port, key) => (await fetch(`http://127.0.0.1:${port}/?k=${key}`)).status;

test('keys show the code again, reset the access key after a confirmation, and end the program', async (t) => {
  const home = scratch();
  const terminal = new Terminal(t, `stty -g; ${command(home)}; echo "status $?"; stty -g`, { DISPLAY: '', WAYLAND_DISPLAY: '' });
  const [, modes] = await terminal.sees(/^([\w:]+)\r\n/);
  const [, port, key] = await terminal.sees(address);
  await terminal.sees(/press \?/);
  terminal.press('?');
  await terminal.sees(/ {2}q {2}.*end/);
  terminal.press('c');
  await terminal.sees(/▀/);
  assert.deepEqual((await terminal.sees(address)).slice(1), [port, key]);

  terminal.press('#k#');
  await terminal.sees(/The key stays/);
  assert.equal(await served(port, key), 200);
  terminal.press('k');
  await terminal.sees(/Reset the key\?/);
  terminal.press('y');
  await terminal.sees(/The key was reset/);
  const [, , newKey] = await terminal.sees(address);
  assert.notEqual(newKey, key);
  assert.equal(await served(port, key), 403);
  assert.equal(await served(port, newKey), 200);

  terminal.press('o');
  await terminal.sees(new RegExp(`no desktop here\r\n +${path.join(home, 'photos')}\r\n`));
  terminal.press('q');
  await terminal.sees(/status 0\r\n/);
  assert.equal((await terminal.sees(/^([\w:]+)\r\n/))[1], modes);
  assert.ok(!terminal.screen.includes('#'), 'keys are not echoed');
});

test('a key cycles through the addresses of the interfaces for this run only', async (t) => {
  const home = scratch();
  const { computer } = await twoHosts(t);
  computer.ip('link add eth1 type veth peer name far');
  for (const name of ['eth1', 'far']) computer.ip(`link set ${name} up`);
  const terminal = new Terminal(t, [...computer.prefix, command(home, '--no-qr')].join(' '));
  await terminal.sees(/http:\/\/192\.168\.77\.1:/);
  await terminal.sees(/press \?/);
  terminal.press('n');
  await terminal.sees(/no other network/);
  computer.ip('addr add 192.168.78.1/24 dev eth1');
  const next = async () => {
    terminal.press('n');
    await terminal.sees(/The address has changed/);
    return (await terminal.sees(/http:\/\/(192\.168\.7\d\.1):/))[1];
  };
  // Until the program has noticed, there is still one only.
  await until(async () => {
    terminal.press('n');
    return (await terminal.sees(/no other network|http:\/\/192\.168\.78\.1:/))[0].startsWith('http');
  }, 'the second interface');
  assert.equal(await next(), '192.168.77.1');
  assert.equal(await next(), '192.168.78.1');
  terminal.press('q');
  assert.equal(await terminal.exited, 0);
  assert.doesNotMatch(fs.readFileSync(path.join(home, 'state', 'preferences.json'), 'utf8'), /eth[01]/);
});

test('the save folder is opened in the file manager', async (t) => {
  const home = scratch();
  const opened = path.join(home, 'opened');
  fs.mkdirSync(path.join(home, 'data', 'applications'), { recursive: true });
  fs.writeFileSync(path.join(home, 'manager'), `#!/bin/sh\necho "$1" > ${opened}.aside\nmv ${opened}.aside ${opened}\n`, { mode: 0o755 });
  fs.writeFileSync(path.join(home, 'data', 'applications', 'manager.desktop'),
    `[Desktop Entry]\nType=Application\nName=Files\nExec=${home}/manager %f\nMimeType=inode/directory;\n`);
  fs.writeFileSync(path.join(home, 'mimeapps.list'), '[Default Applications]\ninode/directory=manager.desktop\n');
  const terminal = new Terminal(t, command(home), { DISPLAY: ':99', XDG_DATA_HOME: path.join(home, 'data'), XDG_CONFIG_HOME: home });
  await terminal.sees(/press \?/);
  terminal.press('o');
  await until(() => fs.existsSync(opened), 'the file manager to start');
  assert.equal(fs.readFileSync(opened, 'utf8'), `${path.join(home, 'photos')}\n`);
  terminal.press('q');
  assert.equal(await terminal.exited, 0);
});

test('the terminal mode is restored by signals, while stopped, and in the background', async (t) => {
  const home = scratch();
  const terminal = new Terminal(t, 'exec sh -im', { ENV: '' });
  const modes = async () => {
    terminal.press('stty -g | tr : _\r');
    return (await terminal.sees(/\n(\w+_\w+)\r\n/))[1];
  };
  terminal.press('PS1="rea""dy> "\r');
  await terminal.sees(/ready> /);
  const usual = await modes();
  terminal.press(`${command(home)}\r`);
  await terminal.sees(/press \?/);
  terminal.press('\x1a');
  await terminal.sees(/Stopped[^]*ready> /);
  assert.equal(await modes(), usual, 'while it is stopped');
  terminal.press('fg\r');
  await terminal.sees(/fg\r\n[^]*tevrin-headless/);
  terminal.press('c');
  await terminal.sees(address);

  terminal.press('\x1a');
  await terminal.sees(/Stopped[^]*ready> /);
  terminal.press('bg\r');
  await terminal.sees(/ready> /);
  assert.equal(await modes(), usual, 'while it runs in the background');
  terminal.press('fg\r');
  await terminal.sees(/fg\r\n[^]*tevrin-headless/);
  for (const [end, status] of [['\x03', 0], ['\x1c', 131]]) {
    terminal.press(end);
    await terminal.sees(/ready> /);
    terminal.press('echo "status $?"\r');
    assert.equal(Number((await terminal.sees(/\nstatus (\d+)\r\n/))[1]), status);
    assert.equal(await modes(), usual, JSON.stringify(end));
    terminal.press(`${command(home)}\r`);
    await terminal.sees(/press \?/);
  }
});

test('a second instance exits with 3 and forwards its arguments to the first', async (t) => {
  const home = scratch();
  const state = path.join(home, 'state');
  const first = await Program.start(t, { home });
  const again = (...args) => spawnSync(binary, ['--state-dir', state, '--port', anyPort(), ...args], { encoding: 'utf8', timeout: 20000 });
  const { status, stdout, stderr } = again('--folder', first.folder);
  assert.deepEqual({ status, stdout }, { status: 3, stdout: '' });
  assert.match(stderr, /^.*--folder.* \/ .*--state-dir.*\n$/);
  const [socket] = fs.readdirSync(state).filter((name) => name.endsWith('.socket'));
  const handOver = 'socket(S, PF_UNIX, SOCK_DGRAM, 0); send(S, $ARGV[1], 0, sockaddr_un($ARGV[0])) or die $!';
  assert.equal(spawnSync('perl', ['-MSocket', '-e', handOver, path.join(state, socket), '["--show-panel"]']).status, 0);
  await until(() => first.events.filter(({ event }) => event === 'listening').length === 2, 'the address again');
  await Program.start(t, { home, folder: scratch() });
  await Program.start(t, { home, state: path.join(scratch(), 'state') });
});
