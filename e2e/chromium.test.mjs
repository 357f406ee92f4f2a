import { Chromium } from './lib/chromium.mjs';
import { galleryScenarios } from './lib/galleryScenarios.mjs';
import { scenarios } from './lib/scenarios.mjs';
import { sendingScenarios } from './lib/sendingScenarios.mjs';

scenarios(Chromium);
sendingScenarios(Chromium);
galleryScenarios(Chromium);
