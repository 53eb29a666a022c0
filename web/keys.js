// The keyboard: keys by their places, and what they give.

const CODES = {
  Backspace: 0x08, Tab: 0x09, Enter: 0x0D, ShiftLeft: 0x10, ShiftRight: 0x10, ControlLeft: 0x11,
  ControlRight: 0x11, AltLeft: 0x12, Pause: 0x13, Escape: 0x1B, Space: 0x20, PageUp: 0x21,
  PageDown: 0x22, End: 0x23, Home: 0x24, ArrowLeft: 0x25, ArrowUp: 0x26, ArrowRight: 0x27,
  ArrowDown: 0x28, Insert: 0x2D, Delete: 0x2E, Semicolon: 0xBA, Equal: 0xBB, Comma: 0xBC,
  Minus: 0xBD, Period: 0xBE, Slash: 0xBF, Backquote: 0xC0, BracketLeft: 0xDB, Backslash: 0xDC,
  BracketRight: 0xDD, Quote: 0xDE, IntlBackslash: 0xE2,
};

function keyOf(code) {
  const letter = /^(?:Key|Digit)(.)$/.exec(code);
  if (letter) return letter[1].charCodeAt(0);
  const f = /^F(\d+)$/.exec(code);
  if (f) return 0x6F + Number(f[1]);
  const pad = /^Numpad(\d)$/.exec(code);
  if (pad) return 0x60 + Number(pad[1]);
  return CODES[code] || 0;
}

export class Keys {
  constructor(page) {
    this.page = page;
    addEventListener('keydown', event => this.tell(event, 1));
    addEventListener('keyup', event => this.tell(event, 0));
  }
  claim(chords) { this.claimed = chords; }
  tell(event, down) {
    const key = keyOf(event.code);
    if (!key) return;
    const modifiers = (event.shiftKey ? 1 : 0) | (event.ctrlKey ? 2 : 0) | (event.altKey ? 4 : 0);
    this.page.program._tarvelin_key(key, down, modifiers, event.repeat ? 1 : 0);
    event.preventDefault();
    this.page.turns.wake();
  }
}
