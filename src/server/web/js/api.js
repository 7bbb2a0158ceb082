// The service's two endpoints, with every failure turned into one French sentence.

export const texts = {
  unreachable: 'Service injoignable : verifie la connexion puis reessaie.',
  timeout: 'Le service ne repond pas (delai depasse) : reessaie dans un instant.',
  refused: 'Synchronisation impossible.',
  badAnswer: 'Reponse de synchronisation invalide.',
};

export class ServiceError extends Error {
  constructor(message, status = 0) {
    super(message);
    this.status = status;
  }
}

// Requests give up after this long; tests shorten it with ?delai-ms=N in the address.
export function requestTimeoutMs(search = location.search) {
  const asked = Number(new URLSearchParams(search).get('delai-ms'));
  return Number.isInteger(asked) && asked > 0 && asked <= 60000 ? asked : 60000;
}

const timeoutMs = requestTimeoutMs();

async function request(path, options) {
  const controller = new AbortController();
  const timer = setTimeout(() => controller.abort(), timeoutMs);
  let response;
  let body;
  try {
    response = await fetch(path, { ...options, signal: controller.signal, cache: 'no-store' });
    body = await response.text();
  } catch (error) {
    throw new ServiceError(controller.signal.aborted ? texts.timeout : texts.unreachable);
  } finally {
    clearTimeout(timer);
  }
  let json;
  try {
    json = JSON.parse(body);
  } catch {
    json = undefined;
  }
  if (!response.ok) {
    const message = json && typeof json.error === 'string' ? json.error : texts.refused;
    throw new ServiceError(message, response.status);
  }
  if (!json || typeof json !== 'object') throw new ServiceError(texts.badAnswer, response.status);
  return json;
}

const jsonHeaders = { 'Content-Type': 'application/json', Accept: 'application/json' };

export function render(state, applyPreset) {
  const body = { activePreset: state.activePreset, data: state.data };
  if (applyPreset) body.applyPreset = applyPreset;
  return request('/api/velino-render', { method: 'POST', headers: jsonHeaders, body: JSON.stringify(body) });
}

export function pull(code) {
  return request(`/api/velino-sync?code=${encodeURIComponent(code)}`, {
    method: 'GET', headers: { Accept: 'application/json' },
  });
}

export function push(code, state) {
  const payload = {
    schema: 'korvel-velino-sync',
    version: 1,
    activePreset: state.activePreset,
    data: state.data,
    customPresets: [],
    customPresetDraftName: '',
    updatedAt: new Date().toISOString().replace(/\.\d{3}Z$/, 'Z'),
    source: 'web',
  };
  return request('/api/velino-sync', {
    method: 'PUT', headers: jsonHeaders, body: JSON.stringify({ code, payload }),
  });
}

// "HH:mm" in the phone's time zone for an internet date-time with whole seconds; any other
// text as it is, as the desktop shows it.
export function timeLabel(text) {
  if (!/^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(Z|[+-]\d\d:\d\d)$/.test(text)) return text;
  const time = new Date(text);
  if (Number.isNaN(time.getTime())) return text;
  const two = (n) => String(n).padStart(2, '0');
  return `${two(time.getHours())}:${two(time.getMinutes())}`;
}
