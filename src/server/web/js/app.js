// VELINO Mobile: the code, the form, the preview and the two sync buttons.
import * as api from './api.js';
import { CODE_TOO_SHORT, generateCode, isLongEnough, normalizeCode } from './code.js';
import { bindForm, bindPresetTiles } from './form.js';

const CODE_KEY = 'velino-code-v1';
const DRAFT_KEY = 'velino-draft-v1';
const RENDER_DELAY_MS = 180;
const texts = {
  pulling: 'Recuperation du dernier brouillon...',
  pushing: "Envoi du brouillon vers l'ordinateur...",
  nothingYet: "Rien n'a encore ete envoye avec ce code.",
  keptHere: "Rien n'est perdu : les champs restent sur ce telephone.",
  copyFailed: 'Copie impossible : selectionne le texte a la main.',
};

const $ = (id) => document.getElementById(id);
const state = { activePreset: 'devis', data: null };
let rendered = null;
let renderTimer = 0;
let renderRound = 0;

const storage = {
  get(key) {
    try { return localStorage.getItem(key); } catch { return null; }
  },
  set(key, value) {
    try { localStorage.setItem(key, value); } catch { /* private mode: kept on screen */ }
  },
  remove(key) {
    try { localStorage.removeItem(key); } catch { /* nothing kept */ }
  },
};

function saveDraft() {
  storage.set(DRAFT_KEY, JSON.stringify(state));
}

function savedDraft() {
  try {
    const draft = JSON.parse(storage.get(DRAFT_KEY));
    if (draft && typeof draft.activePreset === 'string' && draft.data && typeof draft.data === 'object') return draft;
  } catch { /* no draft */ }
  return null;
}

// ---- code

function currentCode() {
  return storage.get(CODE_KEY) || '';
}

function showCode() {
  const code = currentCode();
  $('code-empty').hidden = Boolean(code);
  $('code-shown').hidden = !code;
  $('code-value').textContent = code;
}

function useCode(code) {
  storage.set(CODE_KEY, code);
  $('code-error').textContent = '';
  showCode();
}

$('generate-code').addEventListener('click', () => {
  useCode(generateCode());
  $('copy-code').focus();
});
$('show-code-entry').addEventListener('click', () => {
  $('code-entry').hidden = false;
  $('code-input').focus();
});
$('code-entry').addEventListener('submit', (event) => {
  event.preventDefault();
  const code = normalizeCode($('code-input').value);
  $('code-input').value = code;
  if (!isLongEnough(code)) {
    $('code-error').textContent = CODE_TOO_SHORT;
    return;
  }
  useCode(code);
});
$('change-code').addEventListener('click', () => {
  storage.remove(CODE_KEY);
  $('code-input').value = '';
  $('code-entry').hidden = true;
  showCode();
  $('generate-code').focus();
});
$('copy-code').addEventListener('click', () => copy(currentCode(), 'Code copie.'));

// ---- form and preview

const form = bindForm(document, (name, value) => {
  if (!state.data) return;
  state.data[name] = value;
  saveDraft();
  scheduleRender();
});
const tiles = bindPresetTiles(document, choosePreset);

function scheduleRender() {
  clearTimeout(renderTimer);
  renderTimer = setTimeout(() => renderNow(), RENDER_DELAY_MS);
}

// The record the form edits, shown in the fields and the preset tiles.
function showRecord(activePreset, data) {
  state.activePreset = activePreset;
  state.data = data;
  form.show(state.data);
  tiles.show(state.activePreset);
}

function showPreviewError(message) {
  $('preview-error').textContent = message;
}

function showRendered(answer) {
  rendered = answer;
  showPreviewError('');
  $('format-status').textContent = answer.formatStatus;
  const list = $('checklist');
  list.replaceChildren(...answer.checklist.map((item) => {
    const li = document.createElement('li');
    li.className = item.ok ? 'ok' : 'todo';
    li.textContent = `${item.ok ? 'OK' : 'A revoir'} : ${item.text}`;
    return li;
  }));
  const encode = (text) => encodeURIComponent(text);
  $('open-mail').href = `mailto:${encode(state.data.recipientEmail).replace(/%40/g, '@')}` +
    `?subject=${encode(answer.subject)}&body=${encode(answer.text)}`;
  previewPending = true;
  showPreviewWhenSeen();
}

// The e-mail is laid out only when its frame is on screen (or nearly): the form above it is
// what a phone shows first. Each preview goes into a new frame, which replaces the shown one
// once loaded: posting into the same frame again would add a step to the back button.
let previewPending = false;
let previewSeen = false;
let previewCount = 0;
function showPreviewWhenSeen() {
  if (!previewPending || !previewSeen) return;
  previewPending = false;
  const box = $('preview-box');
  const frame = document.createElement('iframe');
  frame.name = `preview-${++previewCount}`;
  frame.title = 'Apercu du mail';
  frame.setAttribute('sandbox', '');
  if (box.firstElementChild) frame.hidden = true;
  box.append(frame);
  frame.addEventListener('load', () => {
    for (const old of [...box.children]) if (old !== frame) old.remove();
    frame.hidden = false;
  }, { once: true });
  const previewForm = $('preview-form');
  previewForm.target = frame.name;
  previewForm.elements.state.value = JSON.stringify({ activePreset: state.activePreset, data: state.data });
  previewForm.submit();
}
new IntersectionObserver((entries) => {
  previewSeen = entries.some((entry) => entry.isIntersecting);
  showPreviewWhenSeen();
}, { rootMargin: '400px 0px' }).observe($('preview-box'));

async function renderNow(applyPreset) {
  const round = ++renderRound;
  try {
    const answer = await api.render(state, applyPreset);
    if (round !== renderRound) return null;
    if (applyPreset) {
      showRecord(answer.activePreset, answer.record);
      saveDraft();
    }
    showRendered(answer);
    return answer;
  } catch (error) {
    if (round === renderRound) showPreviewError(`Apercu indisponible : ${error.message}`);
    return null;
  }
}

async function choosePreset(id) {
  clearTimeout(renderTimer);
  if (await renderNow(id)) {
    $('preset-status').textContent = `${tiles.titleOf(id)} charge.`;
  }
}

// ---- sync

function showError(message) {
  $('sync-error').textContent = message;
}

function setSyncing(syncing) {
  for (const id of ['pull', 'push']) $(id).disabled = syncing;
}

function syncCode() {
  const code = normalizeCode(currentCode());
  if (!isLongEnough(code)) {
    showError(CODE_TOO_SHORT);
    return null;
  }
  return code;
}

async function sync(statusText, work) {
  const code = syncCode();
  if (!code) return;
  showError('');
  setSyncing(true);
  $('sync-status').textContent = statusText;
  try {
    $('sync-status').textContent = await work(code);
  } catch (error) {
    if (error.status === 404 && error.message === 'Code inconnu') {
      $('sync-status').textContent = texts.nothingYet;
    } else {
      $('sync-status').textContent = texts.keptHere;
      showError(error.message);
    }
  } finally {
    setSyncing(false);
  }
}

$('pull').addEventListener('click', () => sync(texts.pulling, async (code) => {
  const answer = await api.pull(code);
  const snapshot = answer.snapshot;
  if (!snapshot || !snapshot.payload || typeof snapshot.updatedAt !== 'string') {
    throw new api.ServiceError(api.texts.badAnswer);
  }
  // The server checks the record and renders it before anything is replaced here.
  const pulled = { activePreset: snapshot.payload.activePreset, data: snapshot.payload.data };
  clearTimeout(renderTimer);
  renderRound++;
  const check = await api.render(pulled);
  showRecord(check.activePreset, check.record);
  saveDraft();
  showRendered(check);
  return `Brouillon recupere · ${api.timeLabel(snapshot.updatedAt)}`;
}));

$('push').addEventListener('click', () => sync(texts.pushing, async (code) => {
  const sent = JSON.stringify(state);
  const answer = await api.push(code, JSON.parse(sent));
  if (JSON.stringify(state) === sent) storage.remove(DRAFT_KEY);
  return `Brouillon envoye · ${api.timeLabel(String(answer.updatedAt))}`;
}));

// ---- sending from the phone

async function copy(text, done) {
  try {
    await navigator.clipboard.writeText(text);
    $('action-status').textContent = done;
  } catch {
    $('action-status').textContent = texts.copyFailed;
  }
}

$('copy-subject').addEventListener('click', () => rendered && copy(rendered.subject, 'Objet copie.'));
$('copy-text').addEventListener('click', () => rendered && copy(rendered.text, 'Texte copie.'));
$('reset').addEventListener('click', async () => {
  storage.remove(DRAFT_KEY);
  await start(null);
  $('action-status').textContent = 'Contenu reinitialise.';
});

// ---- start

async function start(draft) {
  showCode();
  clearTimeout(renderTimer);
  const round = ++renderRound;
  try {
    // Without a draft, the service answers with its default record.
    const answer = await api.render(draft ?? { activePreset: 'devis' });
    if (round !== renderRound) return;
    showRecord(answer.activePreset, answer.record);
    showRendered(answer);
  } catch (error) {
    if (draft) {
      // A draft the service cannot read is kept on screen as typed.
      showRecord(draft.activePreset, draft.data);
    }
    showPreviewError(`Apercu indisponible : ${error.message}`);
  }
}

start(savedDraft());
