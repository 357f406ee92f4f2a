// Starts the real program and listens to what it says on its standard output.

import { spawn } from 'node:child_process';
import { createHash } from 'node:crypto';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import readline from 'node:readline';

export const binary = process.env.TEVRIN_HEADLESS;

const scratches = [];
process.on('exit', () => scratches.forEach((folder) => fs.rmSync(folder, { recursive: true, force: true })));

// A folder for as long as the tests run: programs and browsers are still using it when a test ends.
export function scratch() {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'tevrin-e2e-'));
  scratches.push(folder);
  return folder;
}

export class Program {
  // `home` holds the save folder and the state; programs that share a home share the access key. `through` are words
  // before the program's command line.
  static async start(t, { home = scratch(), folder = path.join(home, 'photos'), state = path.join(home, 'state'), port, set = {},
    through = [] } = {}) {
    fs.mkdirSync(folder, { recursive: true });
    const args = ['--json', '--no-qr', '--folder', folder, '--state-dir', state];
    args.push('--port', String(port ?? 20000 + Math.floor(Math.random() * 20000)));
    for (const [name, value] of Object.entries(set)) args.push('--set', `${name}=${value}`);
    const program = new Program(folder, [...through, binary, ...args]);
    t.after(() => program.stop());
    const listening = await until(() => {
      if (program.gone) throw new Error(`the program ended: ${program.stderr}`);
      return program.events.find((event) => event.event === 'listening');
    }, 'the program to listen');
    program.port = listening.port;
    program.key = listening.accessKey;
    program.url = `http://127.0.0.1:${program.port}/?k=${encodeURIComponent(program.key)}`;
    return program;
  }

  constructor(folder, [command, ...args]) {
    this.folder = folder;
    this.events = [];
    this.stderr = '';
    this.child = spawn(command, args, { stdio: ['ignore', 'pipe', 'pipe'] });
    this.child.stderr.on('data', (data) => { this.stderr += data; });
    this.exited = new Promise((resolve) => this.child.once('exit', (code, signal) => {
      this.gone = true;
      resolve({ code, signal });
    }));
    readline.createInterface({ input: this.child.stdout }).on('line', (line) => this.events.push(JSON.parse(line)));
  }

  get received() {
    return this.events.filter((event) => event.event === 'received');
  }

  // The names of the files announced so far, once there are `count` of them: a file is announced a little after
  // the phone has got its answer.
  async names(count) {
    await until(() => this.received.length >= count, `${count} files to be announced`);
    return this.received.map((event) => event.name).sort();
  }

  // The program stands still, as a computer that fell asleep; connections stay open.
  freeze() { this.child.kill('SIGSTOP'); }
  thaw() { this.child.kill('SIGCONT'); }

  async stop() {
    if (!this.gone) {
      this.child.kill('SIGTERM');
      this.thaw();
      const alarm = setTimeout(() => this.child.kill('SIGKILL'), 10000);
      await this.exited;
      clearTimeout(alarm);
    }
    return this.exited;
  }

  // Unfinished uploads on the disk.
  parts() {
    const incoming = path.join(this.folder, '.fennick-incoming');
    return fs.existsSync(incoming) ? fs.readdirSync(incoming) : [];
  }

  saved() {
    return fs.readdirSync(this.folder, { recursive: true })
      .map((name) => path.join(this.folder, name))
      .filter((file) => !file.includes('.fennick-') && fs.statSync(file).isFile());
  }

  async freezeInUpload() {
    await until(() => this.parts().length > 0, 'an upload to begin', 20000, 1);
    this.freeze();
  }
}

export const digest = (file) => createHash('sha256').update(fs.readFileSync(file)).digest('hex');
export const digests = (files) => files.map(digest).sort();

// Looks again and again until `test` holds.
export async function until(test, what, patience = 20000, every = 30) {
  const end = Date.now() + patience;
  for (;;) {
    const value = await test();
    if (value) return value;
    if (Date.now() > end) throw new Error(`timed out waiting for ${what}`);
    await new Promise((resolve) => setTimeout(resolve, every));
  }
}
