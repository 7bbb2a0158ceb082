// Screenshots of the phone page at 390 x 844 (device pixel ratio 2) in each state, against
// velino-sync-server with the desktop's store on the other end. Usage: node screenshots.mjs DIR
import { statSync } from 'node:fs';
import path from 'node:path';
import { SyncServer, desktop, launchPhone, makeWorkspace } from './support.mjs';

const out = path.resolve(process.argv[2] || 'screenshots-phone');
const code = 'K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB';
const workspace = await makeWorkspace();
const server = await new SyncServer(workspace).start();
const { browser, context } = await launchPhone();
const shots = [];

try {
  const page = await context.newPage();
  const button = (name) => page.getByRole('button', { name, exact: true });
  // The page lays the e-mail out once its frame is on screen.
  const settled = async (action) => {
    const render = page.waitForResponse((r) => r.url().endsWith('/api/velino-render'));
    await action();
    await render;
  };
  const previewShown = async () => {
    const preview = page.waitForResponse((r) => r.url().endsWith('/api/velino-preview'));
    await page.locator('#preview-box').scrollIntoViewIfNeeded();
    await preview;
    await page.waitForTimeout(300); // the frame paints the new document
  };
  const shot = async (name, scrollTo) => {
    if (scrollTo) await page.locator(scrollTo).evaluate((e) => e.scrollIntoView({ block: 'start' }));
    await page.waitForTimeout(150);
    const file = path.join(out, `${name}.png`);
    await page.screenshot({ path: file });
    shots.push(file);
  };

  await settled(() => page.goto(`${server.baseUrl}/velino.html`));
  await shot('first-visit');
  await button('Generer un code').tap();
  await shot('code-shown');

  // The desktop pushes under the code the phone shows.
  const shown = (await page.getByRole('status', { name: 'Code prive' }).textContent()).trim();
  await desktop('push', server, shown, path.join(workspace.dir, 'desktop'));
  await settled(() => button("Recuperer depuis l'ordinateur").tap());
  await page.getByText(/^Brouillon recupere/).waitFor();
  await shot('pulled', '#sync-heading');
  await shot('form', '#card-destinataire');

  await settled(() => page.getByRole('button', { name: /^Appareil pret / }).tap());
  await settled(() => page.getByLabel('Nom du client', { exact: true }).fill('Lea Martin'));
  await previewShown();
  await shot('preset-applied', '#presets-heading');
  await shot('editing-preview', '#preview-heading');
  await shot('checklist', '#checklist');
  await shot('branding', '#card-identite');

  await button("Envoyer vers l'ordinateur").tap();
  await page.getByText(/^Brouillon envoye/).waitFor();
  await shot('sent', '#sync-heading');
  await shot('send-from-phone', '#send-heading');

  await server.stop();
  await button("Envoyer vers l'ordinateur").tap();
  await page.getByText(/^Service injoignable/).waitFor();
  await shot('error', '#sync-heading');
  await server.start();

  // Readable at 200 % text size.
  await page.evaluate(() => { document.documentElement.style.fontSize = '200%'; });
  await shot('text-200', '#sync-heading');
} finally {
  await browser.close();
  await server.stop();
  workspace.remove();
}

for (const file of shots) {
  if (statSync(file).size < 2000) throw new Error(`${file} looks empty`);
  console.log(file);
}
