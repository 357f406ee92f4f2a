// Runs every test file. Those that wait longest begin first and run beside the rest, since waiting costs next to no
// work; `node --test` would run the files in the order of their names.

import fs from 'node:fs';
import { run } from 'node:test';
import { spec } from 'node:test/reporters';

const longest = ['throttle.test.mjs', 'refusals.test.mjs', 'unattended.test.mjs'];
const files = ['../tools/PageAudit/page.test.mjs', ...fs.readdirSync('.').filter((file) => file.endsWith('.test.mjs'))]
  .sort((a, b) => longest.includes(b) - longest.includes(a));

run({ files: files.map((file) => fs.realpathSync(file)), concurrency: 3 })
  .on('test:fail', () => { process.exitCode = 1; })
  .compose(new spec())
  .pipe(process.stdout);
