// PNGs of the phone page's states at 390 x 844 (device pixel ratio 2), taken as the browser
// tests go through them. Usage: node screenshots.mjs DIR
import { spawnSync } from 'node:child_process';
import { statSync } from 'node:fs';
import path from 'node:path';

const out = path.resolve(process.argv[2] || 'screenshots-phone');
const tests = spawnSync(process.execPath, ['--test', path.join(import.meta.dirname, 'phone_page.test.mjs')],
  { stdio: 'inherit', env: { ...process.env, VELINO_SCREENSHOTS: out } });
if (tests.status !== 0) process.exit(tests.status ?? 1);
for (const name of ['first-visit', 'code-shown', 'pulled', 'form', 'preset-applied', 'editing-preview', 'checklist',
  'branding', 'sent', 'send-from-phone', 'error', 'text-200']) {
  const file = path.join(out, `${name}.png`);
  if (statSync(file).size < 2000) throw new Error(`${file} looks empty`);
  console.log(file);
}
