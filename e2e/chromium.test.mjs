import { Chromium } from './lib/chromium.mjs';
import { scenarios } from './lib/scenarios.mjs';

scenarios(Chromium);
