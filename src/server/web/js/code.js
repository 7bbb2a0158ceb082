// The private sync code: made here, kept on the phone, never put in an address.

export const CODE_ALPHABET = 'ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789';
export const MIN_CODE_LENGTH = 16;
export const MAX_CODE_LENGTH = 64;
export const CODE_TOO_SHORT =
  "Le code prive doit contenir au moins 16 caracteres. Genere-le depuis l'interface iPhone.";

// 24 characters of A-Z and 0-9 in groups of four joined by "-": 29 characters in all.
export function generateCode(random = (bytes) => crypto.getRandomValues(bytes)) {
  const chars = [];
  // Rejection sampling keeps every character equally likely (252 = 7 * 36).
  while (chars.length < 24) {
    for (const byte of random(new Uint8Array(32))) {
      if (byte < 252 && chars.length < 24) chars.push(CODE_ALPHABET[byte % 36]);
    }
  }
  const groups = [];
  for (let i = 0; i < 24; i += 4) groups.push(chars.slice(i, i + 4).join(''));
  return groups.join('-');
}

// As the desktop does: upper-case (full mappings), keep A-Z, 0-9 and "-", at most 64.
export function normalizeCode(raw) {
  return Array.from(raw.toUpperCase())
    .filter((c) => CODE_ALPHABET.includes(c) || c === '-')
    .join('')
    .slice(0, MAX_CODE_LENGTH);
}

export function isLongEnough(code) {
  return code.length >= MIN_CODE_LENGTH;
}
