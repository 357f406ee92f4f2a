// A phone that is left alone with a long queue: the program ends and comes back twice, the connection breaks ten times,
// and every photo arrives once. TEVRIN_LONG_RUN is the number of photos; from about 100 on, the computer's own rate of
// 120 uploads a minute decides how long it takes.

import assert from 'node:assert/strict';
import path from 'node:path';
import { describe, test } from 'node:test';
import { setTimeout as pause } from 'node:timers/promises';
import { Chromium } from './lib/chromium.mjs';
import { makeMany } from './lib/files.mjs';
import { Program, digests, scratch } from './lib/program.mjs';
import { Proxy } from './lib/proxy.mjs';
import { WebKit } from './lib/webkit.mjs';

const photos = Number(process.env.TEVRIN_LONG_RUN ?? 60);
const size = 2e6;
const patience = 120_000 + photos * 1500;
const faults = ['break', 'break', 'break', 'SIGTERM', 'break', 'break', 'break', 'break', 'SIGKILL', 'break', 'break', 'break'];

// The same numbers from 0 to 1 in every run.
function sequence(seed) {
  let state = seed;
  return () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 32;
  };
}

class LongRun {
  constructor(t, page) {
    Object.assign(this, { t, page, home: scratch(), samples: 0, holds: new Set() });
  }

  async start() {
    this.program = await Program.start(this.t, { home: this.home });
    this.proxy = await Proxy.start(this.t, this.program);
    this.files = makeMany(scratch(), photos, size);
    await this.page.ready(this.proxy.url);
    await this.page.choose(this.files);
  }

  // One fault in each of as many equal parts of the way, at a moment that the sequence chooses.
  async breakThings() {
    const random = sequence(12);
    for (const [i, fault] of faults.entries()) {
      await this.proxy.passed((i + random()) / faults.length * 0.95 * photos * size);
      if (fault !== 'break') await this.restart(fault);
      else if (random() < 0.6) this.proxy.cut();
      else await this.proxy.loseNextAnswer();
    }
  }

  async restart(signal) {
    this.program.child.kill(signal);
    await this.program.exited;
    this.program = await Program.start(this.t, { home: this.home, port: this.program.port });
  }

  // What the page claims is looked at first, so a file that it calls saved must be there by then.
  async watch() {
    const end = Date.now() + patience;
    let known = 0;
    for (let over = false; !over; this.samples++) {
      await pause(50);
      const shown = await this.page.evaluate(() => ({
        saved: Array.from(document.querySelectorAll('.row[data-state=saved] .state'), (state) => state.textContent.split(' · ')[1]),
        failed: Array.from(document.querySelectorAll('.row[data-state=failed]'), (row) => row.innerText),
        hold: document.querySelector('#hold').hidden ? '' : document.querySelector('#hold').dataset.kind,
        done: !document.querySelector('#done').hidden,
      }));
      const there = new Set(this.program.saved().map((file) => path.basename(file)));
      assert.deepEqual(shown.saved.filter((name) => !there.has(name)), [], 'every photo shown as saved is there');
      assert.ok(shown.saved.length >= known, 'a saved photo stays saved');
      known = shown.saved.length;
      assert.deepEqual(shown.failed, []);
      assert.match(shown.hold, /^(|offline|pace)$/);
      if (shown.hold) this.holds.add(shown.hold);
      over = shown.done;
      assert.ok(Date.now() < end, `timed out waiting for ${photos} photos; the page shows: ${(await this.page.text()).slice(0, 600)}`);
    }
  }

  async verify() {
    const saved = await this.page.inState('saved');
    assert.equal(saved.length, photos);
    assert.equal(this.program.saved().length, photos);
    assert.deepEqual(digests(this.program.saved()), digests(this.files));
    assert.deepEqual(saved.map((row) => row.text.split(' · ')[1]).sort(), this.program.saved().map((file) => path.basename(file)).sort());
    assert.match(await this.page.text(), new RegExp(`${photos} saved`));
  }
}

describe('unattended', { concurrency: 2 }, () => {
  for (const Browser of [WebKit, Chromium]) {
    test(`${Browser.name}: ${photos} photos arrive once each through ten broken connections and two restarts`, async (t) => {
      const browser = await Browser.launch();
      t.after(() => browser.close());
      const run = new LongRun(t, await browser.visitor(t));
      await run.start();
      await Promise.all([run.watch(), run.breakThings()]);
      await run.verify();
      t.diagnostic(`${run.proxy.uploads} uploads, ${run.samples} samples, held: ${Array.from(run.holds).join(' ') || 'never'}`);
    });
  }
});
