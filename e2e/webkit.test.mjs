import { scenarios } from './lib/scenarios.mjs';
import { WebKit } from './lib/webkit.mjs';

scenarios(WebKit);
