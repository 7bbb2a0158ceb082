// The phone page in Debian's chromium against velino-sync-server, with the desktop's own
// ComposerStore on the other end; controls found by role and name, axe-core in each state.
import { after, test } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import {
  SyncServer, button, desktop, field, openPhone, settledRender, setUp,
} from './support.mjs';

const axeSource = readFileSync(new URL(import.meta.resolve('axe-core/axe.min.js')), 'utf8');
const SENT = /^Brouillon envoye · \d\d:\d\d$/;
const phone = await setUp();
after(() => phone.close());

const codeShown = (page) => page.getByRole('status', { name: 'Code prive', exact: true });
const status = (page) => page.locator('#sync-status');
const alertWith = (page, text) => page.getByRole('alert') // showing exactly this text
  .filter({ hasText: new RegExp(`^\\s*${text.replace(/[.*+?^${}()|[\]\\]/g, '\\$&')}\\s*$`) })
  .first();
const startServer = async (t, options) => {
  const s = await new SyncServer(phone.workspace, options).start();
  t.after(() => s.stop());
  return s;
};
// The 31 fields as the page shows them, by their names.
const shownRecord = (page) => page.evaluate(() => Object.fromEntries(
  [...document.querySelectorAll('[id^="field-"]')].map((input) => [input.name, input.value])));

async function expectText(locator, expected, what) {
  const matches = (text) => (expected instanceof RegExp ? expected.test(text) : text === expected);
  let text;
  for (const deadline = Date.now() + 10000; Date.now() < deadline; await sleep(50))
    if (matches((text = (await locator.first().textContent()).trim()))) return text;
  assert.fail(`${what}: expected ${expected}, saw "${text}"`);
}

// No serious axe-core violation nor script error in this state. With VELINO_SCREENSHOTS=DIR
// (screenshots.mjs), each "name#element" of `shots` is saved as DIR/name.png, #element on top.
async function checkState(page, state, ...shots) {
  const { violations } = await page.evaluate(
    `${axeSource}; axe.run(document, { iframes: false, resultTypes: ['violations'] })`);
  assert.deepEqual(violations.filter((v) => ['serious', 'critical'].includes(v.impact))
    .map((v) => `${v.id}: ${v.nodes.map((n) => n.target).join(' ')}`), [], `axe, ${state}`);
  assert.deepEqual(page.problems, [], `script errors or policy violations, ${state}`);
  const named = process.env.VELINO_SCREENSHOTS ? shots.filter(Boolean) : [];
  for (const [name, at] of named.map((s) => s.split('#'))) {
    if (at) await page.locator(`#${at}`).evaluate((e) => e.scrollIntoView({ block: 'start' }));
    await page.waitForTimeout(300); // the preview frame paints its new document
    await page.screenshot({ path: path.join(process.env.VELINO_SCREENSHOTS, `${name}.png`) });
  }
}

// Types `code` as the code to use; it is then shown as `shown`.
async function useCode(page, code, { change = false, shown = code } = {}) {
  if (change) await button(page, 'Changer de code').tap();
  await button(page, "J'ai deja un code").tap();
  await field(page, 'Code prive a saisir').fill(code);
  await button(page, 'Utiliser ce code').tap();
  if (shown) await expectText(codeShown(page), shown, 'code shown');
}

test('a first visit makes a code, keeps it on the phone and out of the address', async (t) => {
  const server = await startServer(t, { name: 'first' });
  const page = await openPhone(phone.context, server);
  await checkState(page, 'first visit', 'first-visit');
  await button(page, 'Generer un code').tap();
  const code = await expectText(codeShown(page), /^[A-Z0-9]{4}(-[A-Z0-9]{4}){5}$/,
    'generated code');
  await checkState(page, 'code shown', 'code-shown');
  await page.reload();
  await expectText(codeShown(page), code, 'code after a reload');
  assert.ok(!page.url().includes(code.slice(0, 4)), page.url());

  const second = await openPhone(phone.context, server);
  for (const name of ['Changer de code', 'Generer un code']) await button(second, name).tap();
  assert.notEqual(await expectText(codeShown(second), /^.{29}$/, 'second code'), code);

  // Typed codes are normalised as the desktop does; short ones refused with its text.
  await useCode(second, 'abc', { change: true, shown: null });
  assert.equal(await field(second, 'Code prive a saisir').inputValue(), 'ABC');
  await alertWith(second, "Le code prive doit contenir au moins 16 caracteres."
    + " Genere-le depuis l'interface iPhone.").waitFor();
  await useCode(second, 'ab12-cd34 ef56/gh78é', { shown: 'AB12-CD34EF56GH78' });

  // Reset: back to the default record, nothing kept on the phone.
  await field(second, 'Nom du client').fill('A effacer');
  await second.waitForFunction(
    () => localStorage.getItem('velino-draft-v1')?.includes('A effacer'));
  await button(second, 'Reinitialiser').tap();
  await second.getByText('Contenu reinitialise.', { exact: true }).first().waitFor();
  assert.equal(await field(second, 'Nom du client').inputValue(), 'Mme Lambert');
  assert.equal(await second.evaluate(() => localStorage.getItem('velino-draft-v1')), null);
});

test('the desktop pushes, the phone pulls, edits and pushes, the desktop gets it byte for byte',
  async (t) => {
  const server = await startServer(t, { name: 'loop' });
  const code = 'LOOP-2M9X-PL4D-8RWA-C3NZ-H6TB';
  await desktop('push', server, code, path.join(phone.workspace.dir, 'desktop-a'));
  const page = await openPhone(phone.context, server);
  await useCode(page, code);
  await field(page, 'Nom du client').fill('Quelqu un');
  await settledRender(page, () => button(page, "Recuperer depuis l'ordinateur").tap());
  await expectText(status(page), /^Brouillon recupere · \d\d:\d\d$/, 'pull status');
  assert.equal(await field(page, 'Nom du client').inputValue(), 'Mme Lambert');
  await checkState(page, 'pulled', 'pulled#sync-heading', 'form#card-destinataire');

  const readyTile = page.getByRole('button', { name: /^Appareil pret / }); // its title and summary
  await settledRender(page, () => readyTile.tap());
  assert.equal(await readyTile.getAttribute('aria-pressed'), 'true');
  const steps = await page.evaluate(() => history.length);
  const { answer, previewHtml } = await settledRender(page,
    () => field(page, 'Nom du client').fill('Lea Martin'));
  assert.equal(await page.evaluate(() => history.length), steps,
    'previews add no step to the back button');
  await page.frameLocator('#preview-box iframe:not([hidden])')
    .getByText('Votre appareil est pret', { exact: true }).first().waitFor();
  assert.equal(answer.html, previewHtml, 'preview frame shows the rendered e-mail');
  await checkState(page, 'editing with preview', 'preset-applied#presets-heading',
    'editing-preview#preview-heading', 'checklist#checklist', 'branding#card-identite');

  await button(page, "Envoyer vers l'ordinateur").tap();
  await expectText(status(page), SENT, 'push status');
  await checkState(page, 'sent', 'sent#sync-heading', 'send-from-phone#send-heading');
  const shown = await shownRecord(page);

  // Sending from the phone: the subject and the text as rendered, and a mailto: link.
  for (const [name, done, copied] of [
    ["Copier l'objet", 'Objet copie.', answer.subject],
    ['Copier le texte', 'Texte copie.', answer.text],
  ]) {
    await button(page, name).tap();
    await page.getByText(done, { exact: true }).first().waitFor();
    assert.equal(await page.evaluate(() => navigator.clipboard.readText()), copied, name);
  }
  const mailto = await page.getByRole('link', { name: 'Ouvrir dans Mail', exact: true })
    .getAttribute('href');
  assert.deepEqual(mailto.match(/^mailto:([^?]*)\?subject=([^&]*)&body=([^&]*)$/)
    .slice(1).map(decodeURIComponent), [shown.recipientEmail, answer.subject, answer.text]);

  const pulled = await desktop('pull', server, code, path.join(phone.workspace.dir, 'desktop-b'));
  assert.deepEqual([pulled.activePreset, pulled.record], ['pret', shown]);
  assert.ok(pulled.html === previewHtml, 'desktop HTML equals the phone preview byte for byte');
  await page.evaluate(() => { document.documentElement.style.fontSize = '200%'; });
  await checkState(page, 'text at 200 %', 'text-200#sync-heading');
});

test('refusals and failures are shown in French, the fields stay and a later push succeeds',
  async (t) => {
  const server = await startServer(t, { name: 'failures', extra: ['--max-body', '20000'] });
  const page = await openPhone(phone.context, server, '?delai-ms=1500');
  const push = () => button(page, "Envoyer vers l'ordinateur").tap();
  const fill = (label, text) => () => field(page, label).fill(text);
  await useCode(page, 'FAIL-0000-1111-2222-3333-4444');

  // Nothing stored yet: a friendly state, not an error.
  await button(page, "Recuperer depuis l'ordinateur").tap();
  await expectText(status(page), "Rien n'a encore ete envoye avec ce code.", 'unknown code');
  assert.equal(await page.getByRole('alert').filter({ hasText: /./ }).count(), 0);

  // One refusal by the service, one failure to reach it, one service that never answers:
  // what, edit, what happens to the service before the push, its alert, repair, screenshot.
  const cases = [
    ['too large', fill('Message principal', 'x'.repeat(25000)), () => {},
      'Brouillon trop volumineux : 20000 octets au plus.',
      fill('Message principal', 'Texte court apres refus.')],
    ['server stopped', fill('Nom du client', 'Client hors ligne'), () => server.stop(),
      'Service injoignable : verifie la connexion puis reessaie.', () => server.start(),
      'error#sync-heading'],
    ['slow server', fill('Nom du client', 'Client patient'),
      () => server.process.kill('SIGSTOP'),
      'Le service ne repond pas (delai depasse) : reessaie dans un instant.',
      () => server.process.kill('SIGCONT')],
  ];
  for (const [what, edit, failure, expected, repair, screenshot] of cases) {
    await edit();
    const typed = await shownRecord(page);
    await failure();
    await push();
    await alertWith(page, expected).waitFor();
    const saved = await page.evaluate(
      () => JSON.parse(localStorage.getItem('velino-draft-v1')).data);
    assert.deepEqual([await shownRecord(page), saved], [typed, typed],
      `fields and the phone's draft kept, ${what}`);
    await checkState(page, what, screenshot);
    await repair();
    await push();
    await expectText(status(page), SENT, `push after ${what}`);
    assert.equal(await alertWith(page, expected).count(), 0, `alert gone after ${what}`);
  }
});
