import { WebKit } from './lib/webkit.mjs';
import { galleryScenarios } from './lib/galleryScenarios.mjs';
import { scenarios } from './lib/scenarios.mjs';
import { sendingScenarios } from './lib/sendingScenarios.mjs';

scenarios(WebKit);
sendingScenarios(WebKit);
galleryScenarios(WebKit);
