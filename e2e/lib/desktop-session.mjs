// A desktop of its own for a test: an X server without a screen, a session bus and a window manager, and the real
// program with windows in it. All of it is gone when the test ends.

import { execFileSync, spawn, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';
import { scratch, until } from './program.mjs';

export const tevrin = process.env.TEVRIN_DESKTOP;

function running(t, command, args, env, stdio) {
  const child = spawn(command, args, { env, stdio });
  child.exited = new Promise((resolve) => child.once('exit', (code, signal) => {
    child.gone = true;
    resolve({ code, signal });
  }));
  t.after(async () => {
    child.kill('SIGKILL');
    await child.exited;
  });
  return child;
}

// The first line that a child writes.
function firstLine(stream) {
  return new Promise((resolve, reject) => {
    let text = '';
    stream.on('data', (data) => {
      text += data;
      if (text.includes('\n')) resolve(text.trim());
    });
    stream.on('end', () => reject(new Error('ended without a word')));
  });
}

export class Session {
  // `programs` are what the session has besides a window manager: a tray, a notification service.
  static async start(t, { programs = [], env = {} } = {}) {
    const session = new Session();
    session.t = t;
    session.home = scratch();
    const server = running(t, 'Xvfb', ['-displayfd', '3', '-screen', '0', '1280x900x24', '-noreset', '-nolisten', 'tcp'], process.env,
      ['ignore', 'ignore', 'ignore', 'pipe']);
    const bus = running(t, 'dbus-daemon', ['--session', '--nofork', '--print-address'], process.env, ['ignore', 'pipe', 'ignore']);
    session.env = {
      ...process.env,
      DISPLAY: `:${await firstLine(server.stdio[3])}`,
      DBUS_SESSION_BUS_ADDRESS: await firstLine(bus.stdout),
      HOME: session.home,
      XDG_RUNTIME_DIR: session.home,
      XDG_CONFIG_HOME: path.join(session.home, '.config'),
      XDG_CACHE_HOME: path.join(session.home, '.cache'),
      XDG_CURRENT_DESKTOP: '',
      QT_QUICK_BACKEND: 'software',
      LANG: 'C.UTF-8',
      ...env,
    };
    fs.chmodSync(session.home, 0o700);
    session.add('openbox');
    await until(() => /0x/.test(session.property('-root', '_NET_SUPPORTING_WM_CHECK')), 'the window manager');
    // The first key changes the keyboard, upon which the window manager takes its keys anew and misses some: its key for
    // showing the bare desktop tells when it hears again.
    for (const shown of [1, 0])
      await until(() => {
        session.key('super+d');
        return session.property('-root', '_NET_SHOWING_DESKTOP').includes(`= ${shown}`);
      }, 'the window manager to hear keys');
    for (const each of programs) session.add(...each);
    return session;
  }

  // Another program of the session, such as a tray.
  add(program, ...args) {
    return running(this.t, program, args, this.env, 'ignore');
  }

  run(command, ...args) {
    return spawnSync(command, args, { env: this.env, encoding: 'utf8', timeout: 30000 });
  }
  say(command, ...args) {
    return this.run(command, ...args).stdout;
  }
  property(...args) {
    return this.say('xprop', ...args);
  }

  // The windows on the screen whose title or class matches, as xdotool's numbers.
  search(...how) {
    return this.say('xdotool', 'search', '--onlyvisible', ...how).split('\n').filter(Boolean);
  }
  titled(title) {
    return this.search('--name', `^${title}$`).filter((id) => this.property('-id', id, '_NET_WM_NAME').includes('= '));
  }
  place(id) {
    const values = Object.fromEntries(this.say('xdotool', 'getwindowgeometry', '--shell', id).split('\n').map((line) => line.split('=')));
    return { x: Number(values.X), y: Number(values.Y), width: Number(values.WIDTH), height: Number(values.HEIGHT) };
  }
  // The window that has focus.
  get active() {
    return this.say('xdotool', 'getactivewindow').trim();
  }
  key(...names) {
    this.run('xdotool', 'key', '--clearmodifiers', ...names);
  }
  click({ x, y, width = 0, height = 0 }, button = 1) {
    this.run('xdotool', 'mousemove', String(x + Math.floor(width / 2)), String(y + Math.floor(height / 2)), 'click', String(button));
  }
  // What is on the screen there: red, green and blue of each pixel, in hexadecimal.
  look({ x, y, width = 1, height = 1 }) {
    return execFileSync('import', ['-window', 'root', '-crop', `${width}x${height}+${x}+${y}`, '-depth', '8', 'rgb:-'],
      { env: this.env, maxBuffer: 64 << 20 }).toString('hex');
  }

  bus(destination, object, method, ...args) {
    return this.say('gdbus', 'call', '--session', '--dest', destination, '--object-path', object, '--method', method, '--', ...args);
  }
}

// The program in a session, with a state and a save folder of its own.
export class Tevrin {
  constructor(session, { args = [], settings = {}, onboardingDone = true } = {}) {
    this.session = session;
    this.state = path.join(session.home, 'state');
    this.photos = path.join(session.home, 'photos');
    this.port = 20000 + Math.floor(Math.random() * 20000);
    this.key = 'aB3dE5gH7j';
    fs.mkdirSync(this.state, { recursive: true });
    fs.mkdirSync(this.photos, { recursive: true });
    if (!fs.existsSync(this.preferences))
      fs.writeFileSync(this.preferences, JSON.stringify({
        'settings.v1': JSON.stringify({ preferredPort: this.port, saveFolderBookmark: Buffer.from(this.photos).toString('base64'), ...settings }),
        accessKey: this.key, onboardingDone }), { mode: 0o600 });
    this.child = running(session.t, tevrin, ['--state-dir', this.state, ...args], session.env, ['ignore', 'ignore', 'pipe']);
    this.stderr = '';
    this.child.stderr.on('data', (data) => { this.stderr += data; });
  }

  get preferences() { return path.join(this.state, 'preferences.json'); }
  stored(key) { return JSON.parse(fs.readFileSync(this.preferences, 'utf8'))[key]; }

  // What it shows: the icon in an embedding tray, the panel, and a window by its title.
  get own() { return this.session.search('--class', '^tevrin$').map((id) => ({ id, ...this.session.place(id) })); }
  icon() { return until(() => this.own.find(({ width }) => width > 1 && width <= 64), 'the icon'); }
  panel() { return until(() => this.own.find(({ width }) => width === 300), 'the panel'); }
  noPanel() { return until(() => !this.own.some(({ width }) => width === 300), 'the panel to close'); }
  window(title) { return until(() => this.session.titled(title).find((id) => this.session.place(id).width > 64), `"${title}"`); }
  noWindow(title) { return until(() => this.session.titled(title).every((id) => this.session.place(id).width <= 64), `"${title}" to close`); }
  hasKeyboard(id) { return until(() => this.session.active === id, 'the keyboard'); }

  // A second launch of the same program.
  again(...args) {
    return this.session.run(tevrin, '--state-dir', this.state, ...args);
  }
  async end() {
    this.child.kill('SIGTERM');
    return this.child.exited;
  }

  upload(bytes) {
    return new Promise((resolve, reject) => {
      const request = http.request({ host: '127.0.0.1', port: this.port, method: 'POST', path: `/upload?k=${this.key}`,
        headers: { 'content-length': bytes.length } }, (response) => {
        response.resume();
        response.on('end', () => resolve(response.statusCode));
      });
      request.on('error', reject);
      request.end(bytes);
    });
  }
  // Once it answers.
  async listens() {
    await until(() => new Promise((resolve) => {
      http.get({ host: '127.0.0.1', port: this.port, path: '/health' }, (response) => {
        response.resume();
        resolve(true);
      }).on('error', () => resolve(false));
    }), 'the service');
  }
}
