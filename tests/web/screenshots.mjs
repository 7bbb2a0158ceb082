// PNGs of the phone page's states at 390 x 844 (device pixel ratio 2), taken as the browser
// tests go through them. Usage: node screenshots.mjs DIR
import { spawnSync } from 'node:child_process';
import path from 'node:path';

const env = {
  ...process.env, VELINO_SCREENSHOTS: path.resolve(process.argv[2] || 'screenshots-phone'),
};
const tests = spawnSync(process.execPath,
  ['--test', path.join(import.meta.dirname, 'phone_page.test.mjs')], { stdio: 'inherit', env });
process.exit(tests.status ?? 1);
