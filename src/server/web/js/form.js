// The form written in velino.html: the desktop's cards, labels and preset tiles. This
// module binds it: every [data-field] input edits the field of its name.

const HEX = /^#[0-9a-fA-F]{6}$/;

// The page allows no inline style: swatches are painted through the style object.
function paintSwatch(swatch, value) {
  const valid = HEX.test(value.trim());
  swatch.classList.toggle('swatch-invalid', !valid);
  swatch.style.setProperty('background-color', valid ? value.trim() : 'transparent');
}

export function bindForm(root, onInput) {
  const inputs = new Map();
  for (const input of root.querySelectorAll('[data-field]')) {
    const swatch = input.parentElement.querySelector('.swatch');
    input.addEventListener('input', () => {
      if (swatch) paintSwatch(swatch, input.value);
      onInput(input.name, input.value);
    });
    inputs.set(input.name, { input, swatch });
  }
  return {
    show(data) {
      for (const [name, { input, swatch }] of inputs) {
        const value = typeof data[name] === 'string' ? data[name] : '';
        if (input.value !== value) input.value = value;
        if (swatch) paintSwatch(swatch, value);
      }
    },
  };
}

export function bindPresetTiles(root, onChoose) {
  const tiles = [...root.querySelectorAll('[data-preset]')];
  for (const tile of tiles) tile.addEventListener('click', () => onChoose(tile.dataset.preset));
  return {
    titleOf(id) {
      return tiles.find((tile) => tile.dataset.preset === id)?.querySelector('.tile-title').textContent;
    },
    show(activeId) {
      for (const tile of tiles) tile.setAttribute('aria-pressed', String(tile.dataset.preset === activeId));
    },
  };
}
