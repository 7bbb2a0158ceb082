// The desktop's cards, presets and field labels, and the form built from them.

export const presets = [
  { id: 'devis', title: 'Devis', summary: 'Annonce un prix et un recapitulatif clair.' },
  { id: 'pret', title: 'Appareil pret', summary: "Confirme qu'un appareil peut etre recupere." },
  { id: 'rdv', title: 'Rendez-vous', summary: 'Valide un creneau et rassure le client.' },
  { id: 'relance', title: 'Relance', summary: 'Reprend contact proprement sans lourdeur.' },
];

// kind: text (one line), long (several lines), email, url, color.
export const cards = [
  { title: 'Destinataire', subtitle: 'Objet et coordonnees du client.', fields: [
    ['recipientName', 'Nom du client'], ['recipientEmail', 'Email du client', 'email'],
    ['subject', 'Objet du mail'], ['preheader', 'Preheader']] },
  { title: 'Message', subtitle: 'Titre, introduction et contenu.', fields: [
    ['mailTitle', 'Titre principal'], ['mailIntro', "Phrase d'ouverture", 'long'],
    ['mailBody', 'Message principal', 'long'], ['highlight', 'Ligne de mise en avant']] },
  { title: 'Recapitulatif', subtitle: 'Les details visibles dans le mail.', fields: [
    ['detailLabel1', 'Libelle 1'], ['detailValue1', 'Valeur 1'],
    ['detailLabel2', 'Libelle 2'], ['detailValue2', 'Valeur 2'],
    ['detailLabel3', 'Libelle 3'], ['detailValue3', 'Valeur 3'],
    ['detailLabel4', 'Libelle 4'], ['detailValue4', 'Valeur 4']] },
  { title: 'Action', subtitle: 'Bouton et phrase de fin.', fields: [
    ['ctaLabel', 'Texte du bouton'], ['ctaURL', 'Lien du bouton', 'url'],
    ['closingNote', 'Phrase de fin', 'long']] },
  { title: 'Identite Korvel', subtitle: 'Logo, couleurs et signature.', fields: [
    ['logoURL', 'URL du logo email', 'url'], ['accentPrimary', 'Couleur principale', 'color'],
    ['accentSecondary', 'Couleur secondaire', 'color'], ['titleFont', 'Police titres'],
    ['bodyFont', 'Police texte'], ['businessName', "Nom de l'atelier"],
    ['businessTagline', 'Sous-titre / activite'], ['senderName', 'Nom expediteur'],
    ['senderRole', 'Role'], ['senderPhone', 'Telephone'], ['senderEmail', 'Email pro', 'email'],
    ['footerNote', 'Note de pied de mail', 'long']] },
];

function element(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name === 'text') node.textContent = value;
    else node.setAttribute(name, value);
  }
  node.append(...children);
  return node;
}

const HEX = /^#[0-9a-fA-F]{6}$/;

// One field: its label, its input, and for colours a swatch that follows the value.
function fieldRow(name, label, kind = 'text', onInput) {
  const id = `field-${name}`;
  const input = kind === 'long'
    ? element('textarea', { id, name, rows: '4' })
    : element('input', {
      id, name, type: kind === 'email' ? 'email' : kind === 'url' ? 'url' : 'text',
      autocomplete: 'off', autocapitalize: kind === 'text' ? 'sentences' : 'none',
      spellcheck: kind === 'text' ? 'true' : 'false',
    });
  const row = element('div', { class: `field field-${kind}` }, element('label', { for: id, text: label }));
  if (kind === 'color') {
    const swatch = element('span', { class: 'swatch', 'aria-hidden': 'true' });
    input.addEventListener('input', () => paintSwatch(swatch, input.value));
    row.append(element('div', { class: 'color-line' }, swatch, input));
    input.swatch = swatch;
  } else {
    row.append(input);
  }
  input.addEventListener('input', () => onInput(name, input.value));
  return { row, input };
}

// Swatch colours go through a class per colour rule: the page allows no inline style.
function paintSwatch(swatch, value) {
  const valid = HEX.test(value.trim());
  swatch.classList.toggle('swatch-invalid', !valid);
  if (valid) swatch.style.setProperty('background-color', value.trim());
}

export function buildForm(container, onInput) {
  const inputs = new Map();
  for (const card of cards) {
    const headingId = `card-${card.title.toLowerCase().replace(/[^a-z]+/g, '-')}`;
    const section = element('section', { class: 'card', 'aria-labelledby': headingId },
      element('h2', { id: headingId, text: card.title }),
      element('p', { class: 'subtitle', text: card.subtitle }));
    for (const [name, label, kind] of card.fields) {
      const { row, input } = fieldRow(name, label, kind, onInput);
      section.append(row);
      inputs.set(name, input);
    }
    container.append(section);
  }
  return {
    show(data) {
      for (const [name, input] of inputs) {
        const value = typeof data[name] === 'string' ? data[name] : '';
        if (input.value !== value) input.value = value;
        if (input.swatch) paintSwatch(input.swatch, input.value);
      }
    },
  };
}

export function buildPresetTiles(container, onChoose) {
  const buttons = new Map();
  for (const preset of presets) {
    // The tile's name is its title then its summary, as read on screen.
    const button = element('button', { type: 'button', class: 'tile', 'aria-pressed': 'false' },
      element('span', { class: 'tile-title', text: preset.title }),
      element('span', { class: 'tile-summary', text: preset.summary }));
    button.addEventListener('click', () => onChoose(preset.id));
    buttons.set(preset.id, button);
    container.append(button);
  }
  return {
    show(activeId) {
      for (const [id, button] of buttons) button.setAttribute('aria-pressed', String(id === activeId));
    },
  };
}
