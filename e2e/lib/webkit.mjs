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

export class WebKit {
  static name = 'WebKit';

  static async launch() {
    const browser = new WebKit();
    const { screen, display } = await startScreen();
    const port = await freePort();
    browser.base = `http://127.0.0.1:${port}`;
    browser.driver = spawn(driverPath, [`--port=${port}`], { stdio: 'ignore', env: { ...process.env, DISPLAY: display } });
    browser.screen = screen;
    await until(() => fetch(`${browser.base}/status`).then((reply) => reply.ok, () => false), 'the WebKit driver');
    return browser;
  }

  async command(method, route, body) {
    const reply = await fetch(this.base + route, { method, body: body && JSON.stringify(body) });
    const { value } = await reply.json();
    if (!reply.ok) throw new Error(`${method} ${route}: ${value.error}: ${value.message}`);
    return value;
  }

  // Every session is a browser of its own with an empty memory.
  async visitor(t, { width = 390, height = 844 } = {}) {
    const { sessionId } = await this.command('POST', '/session', { capabilities: {} });
    const call = (method, route, body) => this.command(method, `/session/${sessionId}${route}`, body);
    t.after(() => call('DELETE', ''));
    await call('POST', '/window/rect', { width, height });
    return new WebKitPage(call);
  }

  async close() {
    this.driver.kill();
    this.screen.kill();
  }
}
