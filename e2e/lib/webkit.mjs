// WebKitGTK's own small browser on a virtual screen, driven by the WebDriver protocol.

import { spawn } from 'node:child_process';
import fs from 'node:fs';
import net from 'node:net';
import { PhonePage } from './page.mjs';
import { until } from './program.mjs';

const driverPath = process.env.WEBKIT_DRIVER ?? '/usr/bin/WebKitWebDriver';

function freePort() {
  return new Promise((resolve) => {
    const server = net.createServer().listen(0, '127.0.0.1', () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

// The number of a screen that Xvfb itself found free.
function startScreen() {
  const screen = spawn('Xvfb', ['-displayfd', '3', '-screen', '0', '900x1200x24', '-nolisten', 'tcp'], {
    stdio: ['ignore', 'ignore', 'ignore', 'pipe'],
  });
  return new Promise((resolve, reject) => {
    screen.once('error', reject);
    screen.once('exit', () => reject(new Error('Xvfb did not start')));
    screen.stdio[3].once('data', (number) => resolve({ screen, display: `:${String(number).trim()}` }));
  });
}

class WebKitPage extends PhonePage {
  constructor(call) {
    super();
    this.call = call;
  }

  open(url) { return this.call('POST', '/url', { url }); }
  reload() { return this.call('POST', '/refresh', {}); }

  evaluate(test, argument) {
    return this.call('POST', '/execute/sync', { script: `return (${test}).apply(null, arguments)`, args: [argument ?? null] });
  }

  async find(selector) {
    return Object.values(await this.call('POST', '/element', { using: 'css selector', value: selector }))[0];
  }

  async choose(files, input = '#chooser') {
    const element = await this.find(input);
    await this.call('POST', `/element/${element}/value`, { text: [].concat(files).join('\n') });
  }

  // The page shows what is new with the next frame, so the first tries may find nothing to click.
  click(selector) {
    const once = async () => this.call('POST', `/element/${await this.find(selector)}/click`, {});
    return until(() => once().then(() => true, (error) => {
      if (/not interactable|no such element|stale element/.test(error.message)) return false;
      throw error;
    }), `something to click at ${selector}`);
  }

  async screenshot(file) {
    fs.writeFileSync(file, Buffer.from(await this.call('GET', '/screenshot'), 'base64'));
  }
}

// One driver and its browser. Now and then the browser does not report to its driver when it starts; such a
// pair is given up for a new one.
class Driver {
  static async start(display) {
    for (let tries = 1; ; tries++) {
      const driver = new Driver();
      try {
        await driver.open(display);
        return driver;
      } catch (error) {
        driver.process?.kill();
        if (tries === 3) throw error;
      }
    }
  }

  async open(display) {
    const port = await freePort();
    this.base = `http://127.0.0.1:${port}`;
    this.process = spawn(driverPath, [`--port=${port}`], { stdio: 'ignore', env: { ...process.env, DISPLAY: display } });
    await until(() => fetch(`${this.base}/status`).then((reply) => reply.ok, () => false), 'the WebKit driver');
    const { sessionId } = await this.command('POST', '/session', { capabilities: {} });
    this.base += `/session/${sessionId}`;
  }

  async command(method, route, body) {
    const reply = await fetch(this.base + route, { method, body: body && JSON.stringify(body), signal: AbortSignal.timeout(20_000) });
    const { value } = await reply.json();
    if (!reply.ok) throw new Error(`${method} ${route}: ${value.error}: ${value.message}`);
    return value;
  }

  async close() {
    await this.command('DELETE', '').catch(() => {});
    this.process.kill();
  }
}

export class WebKit {
  static name = 'WebKit';

  static async launch() {
    const browser = new WebKit();
    Object.assign(browser, await startScreen());
    return browser;
  }

  // Every session is a browser of its own with an empty memory.
  async visitor(t, { width = 390, height = 844 } = {}) {
    const driver = await Driver.start(this.display);
    t.after(() => driver.close());
    await driver.command('POST', '/window/rect', { width, height });
    return new WebKitPage((...request) => driver.command(...request));
  }

  async close() {
    this.screen.kill();
  }
}
