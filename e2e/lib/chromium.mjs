// Chromium as a phone (or as a desktop browser), driven by playwright-core.

import fs from 'node:fs';
import path from 'node:path';
import { chromium } from 'playwright-core';
import { PhonePage } from './page.mjs';
import { scratch } from './program.mjs';

const flags = [
  '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync',
];

class ChromiumPage extends PhonePage {
  constructor(context, page) {
    super();
    this.context = context;
    this.page = page;
    this.complaints = [];
    page.on('pageerror', (error) => this.complaints.push(String(error)));
    page.on('console', (message) => {
      if (/content security policy/i.test(message.text())) this.complaints.push(message.text());
    });
  }

  open(url) { return this.page.goto(url); }
  reload() { return this.page.reload(); }
  evaluate(test, argument) { return this.page.evaluate(test, argument); }
  choose(files, input = '#chooser') { return this.page.setInputFiles(input, files); }
  click(selector) { return this.page.click(selector); }
  screenshot(file, options) { return this.page.screenshot({ path: file, ...options }); }

  // The same phone scans the code once more.
  async newTab() { return new ChromiumPage(this.context, await this.context.newPage()); }

  // Bytes a second that leave the browser, so that an upload can be watched.
  async slow(bytesPerSecond) {
    this.wire ??= await this.context.newCDPSession(this.page);
    await this.wire.send('Network.enable');
    await this.wire.send('Network.emulateNetworkConditions', {
      offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: bytesPerSecond ?? -1,
    });
  }

  close() { return this.context.close(); }
}

export class Chromium {
  static name = 'Chromium';
  static hasTabs = true;

  // `through` are words before the browser's command line.
  static async launch({ through = [] } = {}) {
    const browser = new Chromium();
    const program = process.env.CHROMIUM ?? '/usr/bin/chromium';
    const start = path.join(scratch(), 'browser');
    fs.writeFileSync(start, `#!/bin/sh\nexec ${[...through, program].join(' ')} "$@"\n`, { mode: 0o755 });
    browser.browser = await chromium.launch({ executablePath: start, args: flags });
    return browser;
  }

  // A fresh visitor; after the test it is closed, and whatever the browser blocked or threw fails the test.
  async visitor(t, { width = 390, height = 844, scale = 3, phone = true, ...more } = {}) {
    const context = await this.browser.newContext({
      viewport: { width, height }, deviceScaleFactor: scale, isMobile: phone, hasTouch: phone, ...more,
    });
    const page = new ChromiumPage(context, await context.newPage());
    t.after(async () => {
      await page.close();
      if (page.complaints.length) throw new Error(page.complaints.join('\n'));
    });
    return page;
  }

  close() { return this.browser.close(); }
}
