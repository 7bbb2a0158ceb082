// Lighthouse (mobile preset: emulated phone, simulated slow 4G and CPU) on /velino.html
// served by velino-sync-server over HTTPS, in Debian's chromium. A measurement, not a test:
// it prints the four scores and the first visit's transfer size, and writes the full
// report next to them. Usage: node phone_page_lighthouse.mjs [REPORT_DIR]
import { execFile } from 'node:child_process';
import { mkdirSync, readFileSync } from 'node:fs';
import path from 'node:path';
import { promisify } from 'node:util';
import { SyncServer, chromiumBinary, makeWorkspace } from '../../tests/web/support.mjs';

const run = promisify(execFile);
const here = path.dirname(new URL(import.meta.url).pathname);
const reportDir = path.resolve(process.argv[2] || path.join(here, 'report'));
const lighthouse = path.join(here, 'node_modules/.bin/lighthouse');

mkdirSync(reportDir, { recursive: true });
const workspace = await makeWorkspace();
const server = await new SyncServer(workspace).start();
try {
  const reportBase = path.join(reportDir, 'velino-phone');
  await run(lighthouse, [
    `${server.baseUrl}/velino.html`,
    '--form-factor=mobile', // the default mobile preset, said out loud
    '--output=json', '--output=html', `--output-path=${reportBase}`,
    '--quiet',
    `--chrome-flags=--headless=new --no-sandbox --ignore-certificate-errors --disable-background-networking --disable-component-update --disable-sync --no-first-run`,
  ], { env: { ...process.env, CHROME_PATH: chromiumBinary }, maxBuffer: 1 << 26 });
  const report = JSON.parse(readFileSync(`${reportBase}.report.json`, 'utf8'));
  const score = (id) => Math.round(report.categories[id].score * 100);
  const bytes = report.audits['total-byte-weight'].numericValue;
  const requests = report.audits['network-requests'].details.items;
  console.log(`Lighthouse ${report.lighthouseVersion}, ${report.environment.hostUserAgent}`);
  console.log(`Performance ${score('performance')}, Accessibility ${score('accessibility')}, ` +
    `Best Practices ${score('best-practices')}, SEO ${score('seo')}`);
  console.log(`First visit: ${requests.length} requests, ${(bytes / 1024).toFixed(1)} KB transferred`);
  for (const item of requests) console.log(`  ${String(item.transferSize).padStart(7)} B  ${item.url.replace(server.baseUrl, '')}`);
  for (const id of ['first-contentful-paint', 'largest-contentful-paint', 'total-blocking-time', 'cumulative-layout-shift']) {
    console.log(`  ${report.audits[id].title}: ${report.audits[id].displayValue}`);
  }
  const failed = Object.values(report.audits).filter((a) => a.score !== null && a.score < 1 && a.scoreDisplayMode === 'binary');
  for (const audit of failed) console.log(`  not passed: ${audit.id} (${audit.title})`);
  console.log(`Report: ${reportBase}.report.html`);
} finally {
  await server.stop();
  workspace.remove();
}
