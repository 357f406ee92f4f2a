// What a test does with the phone page and reads from it, the same for every browser. A browser supplies
// open, reload, evaluate, choose, click, screenshot and close.

import { until } from './program.mjs';

export class PhonePage {
  // Waits until a function evaluated in the page gives something true.
  waitFor(test, what, argument, patience = 30000) {
    return until(() => this.evaluate(test, argument), what, patience).catch(async (error) => {
      throw new Error(`${error.message}; the page shows: ${await this.text()}`);
    });
  }

  text() {
    return this.evaluate(() => document.body.innerText.replace(/\s+/g, ' '));
  }

  async ready(url) {
    await this.open(url);
    await this.waitFor(() => document.querySelector('#link').dataset.state === 'ok', 'the page to be connected');
  }

  link(state) {
    return this.waitFor((wanted) => document.querySelector('#link').dataset.state === wanted, `the connection to be "${state}"`, state);
  }

  hold(kind) {
    return this.waitFor((wanted) => {
      const hold = document.querySelector('#hold');
      return !hold.hidden && hold.dataset.kind === wanted && hold.innerText;
    }, `the queue to be held: ${kind}`, kind);
  }

  done(patience) {
    return this.waitFor(() => !document.querySelector('#done').hidden, 'the queue to be done', undefined, patience);
  }

  rows() {
    return this.evaluate(() => Array.from(document.querySelectorAll('.row'), (row) => ({
      name: row.querySelector('.name').textContent,
      state: row.dataset.state,
      text: row.querySelector('.state').textContent,
    })));
  }

  async inState(state) {
    return (await this.rows()).filter((row) => row.state === state);
  }

  count(state, number, patience) {
    return this.waitFor(({ state, number }) => document.querySelectorAll(`.row[data-state=${state}]`).length === number,
      `${number} rows to be ${state}`, { state, number }, patience);
  }

  // How many uploads the browser has sent to the computer, refused ones included.
  uploads() {
    return this.evaluate(() => performance.getEntriesByType('resource').filter((entry) => entry.name.includes('/upload?')).length);
  }
}
