// The phone page's surroundings: certificates made for the run, velino-sync-server as a real
// process, Debian's chromium as a phone, the desktop's helper program, the page's controls.
import { spawn, execFile } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { createInterface } from 'node:readline';
import { promisify } from 'node:util';
import { chromium } from 'playwright-core';

const run = promisify(execFile);
const buildDir = process.env.VELINO_BUILD_DIR || path.join(import.meta.dirname, '../../build');
const serverBinary = process.env.VELINO_SYNC_SERVER
  || path.join(buildDir, 'src/server/velino-sync-server');
const helperBinary = process.env.VELINO_DESKTOP_SYNC_HELPER
  || path.join(buildDir, 'tests/velino_desktop_sync_helper');

// A folder with a new authority and the server's certificate for 127.0.0.1, and the phone.
export async function setUp() {
  const dir = mkdtempSync(path.join(tmpdir(), 'velino-web-'));
  const req = 'req -x509 -config /dev/null -days 2 -newkey ec'
    + ' -pkeyopt ec_paramgen_curve:prime256v1 -nodes -addext';
  for (const step of [
    `basicConstraints=critical,CA:TRUE -subj /CN=VelinoWebCA-${Date.now()}`
      + ' -keyout ca.key -out ca.crt',
    'subjectAltName=IP:127.0.0.1 -subj /CN=127.0.0.1 -CA ca.crt -CAkey ca.key'
      + ' -keyout server.key -out server.crt',
  ])
    await run('openssl', `${req} ${step}`.split(' '), { cwd: dir });
  const browser = await chromium.launch({
    executablePath: process.env.VELINO_CHROMIUM || '/usr/bin/chromium',
  });
  const context = await browser.newContext({
    viewport: { width: 390, height: 844 }, deviceScaleFactor: 2, isMobile: true, hasTouch: true,
    locale: 'fr-FR', timezoneId: 'Europe/Paris', ignoreHTTPSErrors: true,
    permissions: ['clipboard-read', 'clipboard-write'],
  });
  const close = async () => {
    await browser.close();
    rmSync(dir, { recursive: true, force: true });
  };
  return { workspace: { dir, ca: path.join(dir, 'ca.crt') }, context, close };
}

// velino-sync-server over HTTPS on a free port of 127.0.0.1, the same one once restarted.
export class SyncServer {
  constructor(workspace, { name = 'server', extra = [] } = {}) {
    this.args = ['--database', `sqlite:${path.join(workspace.dir, name, 'sync.db')}`,
      '--tls-cert', path.join(workspace.dir, 'server.crt'),
      '--tls-key', path.join(workspace.dir, 'server.key'), ...extra];
    Object.assign(this, { workspace, port: 0 });
  }

  // Resolves once the server says where it listens; its errors go to the test's output.
  async start() {
    this.process = spawn(serverBinary, ['--listen', `127.0.0.1:${this.port}`, ...this.args],
      { stdio: ['ignore', 'pipe', 'inherit'] });
    this.exited = new Promise((resolve) => this.process.once('exit', resolve));
    for await (const line of createInterface({ input: this.process.stdout })) {
      const ready = line.match(/pret sur (https:\/\/127\.0\.0\.1:(\d+))/);
      if (!ready) continue;
      this.process.stdout.resume(); // keeps reading what it prints
      return Object.assign(this, { baseUrl: ready[1], port: Number(ready[2]) });
    }
    throw new Error(`velino-sync-server ended before it was ready (${await this.exited})`);
  }

  async stop() {
    if (this.process?.exitCode !== null) return;
    this.process.kill('SIGCONT'); // if paused
    this.process.kill('SIGTERM');
    await this.exited;
  }
}

// The desktop's store: push the default record, or pull and return what it then holds.
export async function desktop(operation, server, code, stateDir) {
  const { stdout } = await run(helperBinary,
    [operation, `${server.baseUrl}/api/velino-sync`, server.workspace.ca, code, stateDir],
    { env: { ...process.env, QT_QPA_PLATFORM: 'offscreen', TZ: process.env.TZ || 'Europe/Paris' },
      maxBuffer: 1 << 24 });
  return operation === 'pull' ? JSON.parse(stdout) : null;
}

export const field = (page, label) => page.getByLabel(label, { exact: true });
export const button = (page, name) => page.getByRole('button', { name, exact: true });
const response = (page, api) => page.waitForResponse((r) => r.url().endsWith(`/api/${api}`));

// A page of its own, once rendered; page.problems collects script errors and content policy
// violations.
export async function openPhone(context, server, query = '') {
  const page = Object.assign(await context.newPage(), { problems: [] });
  page.on('pageerror', (error) => page.problems.push(error.message));
  page.on('console', (message) => /Content Security Policy/.test(message.text())
    && message.location().url?.startsWith(server.baseUrl) && page.problems.push(message.text()));
  await Promise.all([
    response(page, 'velino-render'),
    page.goto(`${server.baseUrl}/velino.html${query}`),
  ]);
  return page;
}

// Waits for the render that follows `trigger`, then for the preview (laid out once its frame
// is on screen), and returns both.
export async function settledRender(page, trigger) {
  const [render, preview] = [response(page, 'velino-render'), response(page, 'velino-preview')];
  await trigger();
  const answer = await (await render).json();
  await page.locator('#preview-box').scrollIntoViewIfNeeded();
  return { answer, previewHtml: await (await preview).text() };
}
