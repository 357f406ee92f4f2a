// A shell command in a terminal of its own, with keys that are pressed and a screen that is read.

import { spawn } from 'node:child_process';
import { until } from './program.mjs';

export class Terminal {
  constructor(t, command, env = {}) {
    this.screen = '';
    this.seen = 0;
    this.child = spawn('script', ['-qfec', command, '/dev/null'], { env: { ...process.env, TERM: 'xterm', ...env } });
    this.child.stdout.on('data', (data) => { this.screen += data; });
    this.exited = new Promise((resolve) => { this.child.once('exit', resolve); });
    t.after(() => this.child.kill('SIGKILL'));
  }

  press(keys) { this.child.stdin.write(keys); }

  // What `pattern` matches in what was written since the last match.
  async sees(pattern) {
    const match = await until(() => pattern.exec(this.screen.slice(this.seen)), `${pattern}`)
      .catch((error) => { throw new Error(`${error.message} in ${JSON.stringify(this.screen)}`); });
    this.seen += match.index + match[0].length;
    return match;
  }
}
