// The phone page in Debian's chromium at 390 x 844 with touch, against velino-sync-server
// over HTTPS, with the desktop's own ComposerStore on the other end. Controls are found by
// role and accessible name; axe-core checks each state.
import { after, before, describe, test } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import path from 'node:path';
import { SyncServer, desktop, launchPhone, makeWorkspace } from './support.mjs';

const require = createRequire(import.meta.url);
const axeSource = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

const texts = {
  tooShort: "Le code prive doit contenir au moins 16 caracteres. Genere-le depuis l'interface iPhone.",
  nothingYet: "Rien n'a encore ete envoye avec ce code.",
  unreachable: 'Service injoignable : verifie la connexion puis reessaie.',
  timeout: 'Le service ne repond pas (delai depasse) : reessaie dans un instant.',
  tooLarge: 'Brouillon trop volumineux : 20000 octets au plus.',
  tooManyLookups: 'Trop de tentatives : reessaie dans une minute.',
};
const SENT = /^Brouillon envoye · \d\d:\d\d$/;
const FIELDS = 31;

let workspace;
let browser;
let context;

before(async () => {
  workspace = await makeWorkspace();
  ({ browser, context } = await launchPhone());
});

after(async () => {
  await browser?.close();
  workspace?.remove();
});

// A page of its own (its own localStorage per server port), failing on any script error
// or any policy violation of the page itself.
async function openPhone(server, query = '') {
  const page = await context.newPage();
  page.problems = [];
  page.on('pageerror', (error) => page.problems.push(error.message));
  page.on('console', (message) => {
    if (/Content Security Policy/.test(message.text()) && message.location().url?.startsWith(server.baseUrl)) {
      page.problems.push(message.text());
    }
  });
  const firstRender = page.waitForResponse((r) => r.url().endsWith('/api/velino-render'));
  await page.goto(`${server.baseUrl}/velino.html${query}`);
  await firstRender;
  await field(page, 'Nom du client').waitFor();
  return page;
}

const field = (page, label) => page.getByLabel(label, { exact: true });
const button = (page, name) => page.getByRole('button', { name, exact: true });
// A preset tile, named by its title and its summary.
const tile = (page, title) => page.getByRole('button', { name: new RegExp(`^${title} `) });
const codeShown = (page) => page.getByRole('status', { name: 'Code prive', exact: true });
const status = (page) => page.locator('#sync-status');
// The alert showing exactly this text.
const alertWith = (page, text) => page.getByRole('alert').filter({ hasText: new RegExp(`^\\s*${text.replace(/[.*+?^${}()|[\]\\]/g, '\\$&')}\\s*$`) });

async function expectText(locator, expected, what) {
  await locator.first().waitFor();
  const deadline = Date.now() + 10000;
  let text;
  while (Date.now() < deadline) {
    text = (await locator.first().textContent()).trim();
    if (expected instanceof RegExp ? expected.test(text) : text === expected) return text;
    await new Promise((resolve) => setTimeout(resolve, 50));
  }
  assert.fail(`${what}: expected ${expected}, saw "${text}"`);
}

async function assertAccessible(page, state) {
  if (!(await page.evaluate(() => Boolean(window.axe)))) await page.evaluate(axeSource);
  const result = await page.evaluate(() => window.axe.run(document, { iframes: false, resultTypes: ['violations'] }));
  const serious = result.violations.filter((v) => v.impact === 'serious' || v.impact === 'critical');
  assert.deepEqual(serious.map((v) => `${v.id}: ${v.nodes.map((n) => n.target).join(' ')}`), [], `axe, ${state}`);
  assert.deepEqual(page.problems, [], `script errors or policy violations, ${state}`);
}

async function useCode(page, code) {
  await button(page, "J'ai deja un code").tap();
  await field(page, 'Code prive a saisir').fill(code);
  await button(page, 'Utiliser ce code').tap();
  await expectText(codeShown(page), code, 'code shown');
}

// The 31 fields as the page shows them, by their names.
function shownRecord(page) {
  return page.evaluate(() => Object.fromEntries(
    [...document.querySelectorAll('[id^="field-"]')].map((input) => [input.name, input.value])));
}

// Waits for the render that follows an edit, then looks at the preview (the page lays the
// e-mail out only once its frame is on screen) and returns both.
async function settledRender(page, trigger) {
  const render = page.waitForResponse((r) => r.url().endsWith('/api/velino-render'));
  const preview = page.waitForResponse((r) => r.url().endsWith('/api/velino-preview'));
  await trigger();
  const renderResponse = await render;
  await page.locator('#preview-box').scrollIntoViewIfNeeded();
  const previewResponse = await preview;
  return { answer: await renderResponse.json(), previewHtml: await previewResponse.text() };
}

describe('phone page', () => {
  test('a first visit makes a code, keeps it on the phone and out of the address', async () => {
    const server = await new SyncServer(workspace, { name: 'first' }).start();
    try {
      const page = await openPhone(server);
      await assertAccessible(page, 'first visit');
      await button(page, 'Generer un code').tap();
      const code = await expectText(codeShown(page), /^[A-Z0-9]{4}(-[A-Z0-9]{4}){5}$/, 'generated code');
      assert.equal(code.length, 29);
      await assertAccessible(page, 'code shown');
      await page.reload();
      await expectText(codeShown(page), code, 'code after a reload');
      assert.ok(!page.url().includes(code.slice(0, 4)), page.url());

      const second = await openPhone(server);
      await button(second, 'Changer de code').tap();
      await button(second, 'Generer un code').tap();
      const other = await expectText(codeShown(second), /^.{29}$/, 'second code');
      assert.notEqual(other, code);

      // Typed codes are normalised as the desktop does; short ones refused with its text.
      await button(second, 'Changer de code').tap();
      for (const [typed, kept] of [['abc', 'ABC'], ['ab12-cd34 ef56/gh78é', 'AB12-CD34EF56GH78']]) {
        await button(second, "J'ai deja un code").tap();
        await field(second, 'Code prive a saisir').fill(typed);
        await button(second, 'Utiliser ce code').tap();
        assert.equal(await field(second, 'Code prive a saisir').inputValue(), kept);
        if (kept === 'ABC') await expectText(alertWith(second, texts.tooShort), texts.tooShort, 'short code');
      }
      await expectText(codeShown(second), 'AB12-CD34EF56GH78', 'typed code');

      // Reset: back to the default record, nothing kept on the phone.
      await field(second, 'Nom du client').fill('A effacer');
      await second.waitForFunction(() => localStorage.getItem('velino-draft-v1')?.includes('A effacer'));
      await button(second, 'Reinitialiser').tap();
      await expectText(second.getByText('Contenu reinitialise.'), 'Contenu reinitialise.', 'reset');
      assert.equal(await field(second, 'Nom du client').inputValue(), 'Mme Lambert');
      assert.equal(await second.evaluate(() => localStorage.getItem('velino-draft-v1')), null);
      await second.close();
      await page.close();
    } finally {
      await server.stop();
    }
  });

  test('the desktop pushes, the phone pulls, edits and pushes, the desktop gets it byte for byte', async () => {
    const server = await new SyncServer(workspace, { name: 'loop' }).start();
    const code = 'LOOP-2M9X-PL4D-8RWA-C3NZ-H6TB';
    try {
      await desktop('push', server, code, path.join(workspace.dir, 'desktop-a'));
      const page = await openPhone(server);
      await useCode(page, code);
      await field(page, 'Nom du client').fill('Quelqu un');
      await settledRender(page, () => button(page, "Recuperer depuis l'ordinateur").tap());
      await expectText(status(page), /^Brouillon recupere · \d\d:\d\d$/, 'pull status');
      assert.equal(await field(page, 'Nom du client').inputValue(), 'Mme Lambert');
      await assertAccessible(page, 'pulled');

      await settledRender(page, () => tile(page, 'Appareil pret').tap());
      assert.equal(await tile(page, 'Appareil pret').getAttribute('aria-pressed'), 'true');
      assert.equal(await field(page, 'Objet du mail').inputValue(), 'Votre appareil est pret');
      const steps = await page.evaluate(() => history.length);
      const edited = await settledRender(page, () => field(page, 'Nom du client').fill('Lea Martin'));
      assert.equal(await page.evaluate(() => history.length), steps, 'previews add no step to the back button');
      const frames = page.frameLocator('#preview-box iframe:not([hidden])');
      await expectText(frames.getByText('Votre appareil est pret', { exact: true }), 'Votre appareil est pret', 'preview shown');
      assert.equal(edited.answer.record.recipientName, 'Lea Martin');
      assert.equal(edited.answer.html, edited.previewHtml, 'preview frame shows the rendered e-mail');
      assert.match(edited.previewHtml, /Votre appareil est pret/);
      await assertAccessible(page, 'editing with preview');

      await button(page, "Envoyer vers l'ordinateur").tap();
      await expectText(status(page), SENT, 'push status');
      await assertAccessible(page, 'sent');
      const shown = await shownRecord(page);
      assert.equal(Object.keys(shown).length, FIELDS);

      // Sending from the phone: the subject and the text as rendered, and a mailto: link.
      await button(page, "Copier l'objet").tap();
      await expectText(page.getByText('Objet copie.'), 'Objet copie.', 'copy status');
      assert.equal(await page.evaluate(() => navigator.clipboard.readText()), edited.answer.subject);
      await button(page, 'Copier le texte').tap();
      await expectText(page.getByText('Texte copie.'), 'Texte copie.', 'copy status');
      assert.equal(await page.evaluate(() => navigator.clipboard.readText()), edited.answer.text);
      const mailto = new URL(await page.getByRole('link', { name: 'Ouvrir dans Mail', exact: true }).getAttribute('href'));
      assert.equal(mailto.protocol, 'mailto:');
      assert.equal(decodeURIComponent(mailto.pathname), shown.recipientEmail);
      assert.equal(decodeURIComponent(mailto.search.match(/subject=([^&]*)/)[1]), edited.answer.subject);
      assert.equal(decodeURIComponent(mailto.search.match(/body=([^&]*)/)[1]), edited.answer.text);

      const pulled = await desktop('pull', server, code, path.join(workspace.dir, 'desktop-b'));
      assert.equal(pulled.activePreset, 'pret');
      assert.deepEqual(pulled.record, shown);
      assert.ok(pulled.html === edited.previewHtml, 'desktop HTML equals the phone preview byte for byte');
      await page.close();
    } finally {
      await server.stop();
    }
  });

  test('refusals and failures are shown in French, the fields stay and a later push succeeds', async () => {
    const server = await new SyncServer(workspace, { name: 'failures', extra: ['--max-body', '20000'] }).start();
    try {
      const page = await openPhone(server, '?delai-ms=1500');
      await useCode(page, 'FAIL-0000-1111-2222-3333-4444');
      const push = () => button(page, "Envoyer vers l'ordinateur").tap();
      const pull = () => button(page, "Recuperer depuis l'ordinateur").tap();

      // Nothing stored yet: a friendly state, not an error.
      await pull();
      await expectText(status(page), texts.nothingYet, 'unknown code');
      assert.equal(await page.getByRole('alert').filter({ hasText: /./ }).count(), 0);

      const cases = [
        {
          what: 'too large',
          edit: () => field(page, 'Message principal').fill('x'.repeat(25000)),
          fail: push,
          expected: texts.tooLarge,
          repair: () => field(page, 'Message principal').fill('Texte court apres refus.'),
        },
        {
          what: 'too many lookups',
          edit: () => field(page, 'Nom du client').fill('Client 429'),
          // Ten unknown codes a minute per address, then 429.
          fail: async () => {
            await useCodeAgain(page, 'NONE-0000-1111-2222-3333-4444');
            for (let i = 0; i < 10; i++) {
              await pull();
              await expectText(status(page), /Rien|Trop/, 'lookup');
            }
            await pull();
          },
          expected: texts.tooManyLookups,
          repair: () => useCodeAgain(page, 'FAIL-0000-1111-2222-3333-4444'),
        },
        {
          what: 'server stopped',
          edit: () => field(page, 'Nom du client').fill('Client hors ligne'),
          fail: async () => { await server.stop(); await push(); },
          expected: texts.unreachable,
          repair: () => server.start(),
        },
        {
          what: 'slow server',
          edit: () => field(page, 'Nom du client').fill('Client patient'),
          fail: async () => { server.pause(); await push(); },
          expected: texts.timeout,
          repair: () => server.resume(),
        },
      ];
      for (const c of cases) {
        await c.edit();
        const typed = await shownRecord(page);
        await c.fail();
        await expectText(alertWith(page, c.expected), c.expected, c.what);
        assert.deepEqual(await shownRecord(page), typed, `fields kept, ${c.what}`);
        const saved = await page.evaluate(() => JSON.parse(localStorage.getItem('velino-draft-v1')).data);
        assert.deepEqual(saved, typed, `draft kept on the phone, ${c.what}`);
        await assertAccessible(page, c.what);
        await c.repair();
        await push();
        await expectText(status(page), SENT, `push after ${c.what}`);
        assert.equal(await alertWith(page, c.expected).count(), 0, `alert gone after ${c.what}`);
      }
      await page.close();
    } finally {
      server.resume?.();
      await server.stop();
    }
  });
});

async function useCodeAgain(page, code) {
  await button(page, 'Changer de code').tap();
  await useCode(page, code);
}
