// What the phone page's browser tests and screenshots share: a certificate made for the
// run, velino-sync-server started and stopped as a real process, Debian's chromium driven
// by Playwright with a phone's viewport, and the desktop's helper program.
import { spawn, execFile } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { promisify } from 'node:util';
import { chromium } from 'playwright-core';

const run = promisify(execFile);
const here = path.dirname(new URL(import.meta.url).pathname);
const buildDir = process.env.VELINO_BUILD_DIR || path.join(here, '../../build');

export const serverBinary = process.env.VELINO_SYNC_SERVER || path.join(buildDir, 'src/server/velino-sync-server');
export const helperBinary = process.env.VELINO_DESKTOP_SYNC_HELPER || path.join(buildDir, 'tests/velino_desktop_sync_helper');
export const chromiumBinary = process.env.VELINO_CHROMIUM || '/usr/bin/chromium';

export const PHONE = { width: 390, height: 844 };

// A temporary folder with the authority and the server's certificate for 127.0.0.1.
export async function makeWorkspace() {
  const dir = mkdtempSync(path.join(tmpdir(), 'velino-web-'));
  await run(helperBinary, ['certificates', dir], { env: { ...process.env, QT_QPA_PLATFORM: 'offscreen' } });
  return {
    dir,
    ca: path.join(dir, 'ca.crt'),
    cert: path.join(dir, 'server.crt'),
    key: path.join(dir, 'server.key'),
    remove() { rmSync(dir, { recursive: true, force: true }); },
  };
}

// velino-sync-server over HTTPS on 127.0.0.1; port 0 takes a free one.
export class SyncServer {
  constructor(workspace, { name = 'server', port = 0, extra = [] } = {}) {
    this.workspace = workspace;
    this.database = `sqlite:${path.join(workspace.dir, name, 'sync.db')}`;
    this.port = port;
    this.extra = extra;
    this.stderr = '';
  }

  async start() {
    const args = ['--listen', `127.0.0.1:${this.port}`, '--database', this.database,
      '--tls-cert', this.workspace.cert, '--tls-key', this.workspace.key, ...this.extra];
    this.process = spawn(serverBinary, args, { stdio: ['ignore', 'pipe', 'pipe'] });
    this.process.stderr.on('data', (chunk) => { this.stderr += chunk; });
    const exited = new Promise((resolve) => this.process.once('exit', resolve));
    this.exited = exited;
    this.baseUrl = await new Promise((resolve, reject) => {
      let out = '';
      const timer = setTimeout(() => reject(new Error(`no ready line: ${this.stderr}`)), 10000);
      this.process.stdout.on('data', (chunk) => {
        out += chunk;
        const match = out.match(/pret sur (https:\/\/127\.0\.0\.1:(\d+))/);
        if (match) {
          clearTimeout(timer);
          this.port = Number(match[2]);
          resolve(match[1]);
        }
      });
      exited.then((code) => reject(new Error(`exited ${code}: ${this.stderr}`)));
    });
    return this;
  }

  async stop() {
    if (!this.process || this.process.exitCode !== null) return;
    this.process.kill('SIGCONT');
    this.process.kill('SIGTERM');
    await this.exited;
  }

  pause() { this.process.kill('SIGSTOP'); }
  resume() { this.process.kill('SIGCONT'); }
}

// The desktop: push the default record, or pull and return what its store holds.
export async function desktop(operation, server, code, stateDir) {
  const { stdout } = await run(helperBinary,
    [operation, `${server.baseUrl}/api/velino-sync`, server.workspace.ca, code, stateDir],
    { env: { ...process.env, QT_QPA_PLATFORM: 'offscreen', TZ: process.env.TZ || 'Europe/Paris' }, maxBuffer: 1 << 24 });
  return operation === 'pull' ? JSON.parse(stdout) : null;
}

export async function launchPhone() {
  const browser = await chromium.launch({
    executablePath: chromiumBinary,
    headless: true,
    args: ['--no-sandbox', '--disable-background-networking', '--disable-component-update',
      '--disable-sync', '--no-first-run', '--disable-dev-shm-usage'],
  });
  const context = await browser.newContext({
    viewport: PHONE,
    deviceScaleFactor: 2,
    isMobile: true,
    hasTouch: true,
    locale: 'fr-FR',
    timezoneId: 'Europe/Paris',
    ignoreHTTPSErrors: true,
    permissions: ['clipboard-read', 'clipboard-write'],
  });
  return { browser, context };
}
