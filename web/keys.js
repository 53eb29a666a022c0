// The keyboard: keys by their places, which are Linux's scan codes, and what they give. The keys are
// the program's while the picture, or nothing, has the focus.

const RUNS = [
  [1, 'Escape Digit1 Digit2 Digit3 Digit4 Digit5 Digit6 Digit7 Digit8 Digit9 Digit0 Minus Equal ' +
      'Backspace Tab KeyQ KeyW KeyE KeyR KeyT KeyY KeyU KeyI KeyO KeyP BracketLeft BracketRight ' +
      'Enter ControlLeft KeyA KeyS KeyD KeyF KeyG KeyH KeyJ KeyK KeyL Semicolon Quote Backquote ' +
      'ShiftLeft Backslash KeyZ KeyX KeyC KeyV KeyB KeyN KeyM Comma Period Slash ShiftRight ' +
      'NumpadMultiply AltLeft Space CapsLock F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 NumLock ScrollLock ' +
      'Numpad7 Numpad8 Numpad9 NumpadSubtract Numpad4 Numpad5 Numpad6 NumpadAdd Numpad1 Numpad2 ' +
      'Numpad3 Numpad0 NumpadDecimal'],
  [86, 'IntlBackslash F11 F12 IntlRo'],
  [96, 'NumpadEnter ControlRight NumpadDivide PrintScreen AltRight'],
  [102, 'Home ArrowUp PageUp ArrowLeft ArrowRight End ArrowDown PageDown Insert Delete'],
  [119, 'Pause'],
  [124, 'IntlYen'],
  [127, 'ContextMenu'],
];
const PLACES = new Map(RUNS.flatMap(
  ([first, codes]) => codes.split(' ').map((code, n) => [code, first + n])));
const [SHIFT, CONTROL, ALT] = [1, 2, 4];
const [SHIFTED, ALT_GR] = [1, 2]; // levels of a layout
const ACCENTS = { '`': '`', '´': '\'', '^': '^', '~': '~', '¨': '"' };
const MAC = /Mac|iPhone|iPad/.test(navigator.platform);
// Keys that the browser keeps: reloading, zooming, pasting, and its own tools.
const BROWSERS_F = /^F1[02]$/;
const BROWSERS_CONTROL = /^(Key[NRTVW]|Equal|Minus|Digit0|Numpad.*|Tab|F\d+)$/;
const BACKSPACE = 8;
const ROOM_TO_DELETE = '    '; // in the field of a phone's keyboard, so that it tells a backspace

const altGr = event => event.getModifierState('AltGraph') ||
  (MAC && event.altKey && !event.ctrlKey && /^[ -~]$/.test(event.key));

/// AltGr may be any key.
const codeOf = event => (event.key === 'AltGraph' ? 'AltRight' : event.code);

export class Keys {
  constructor(page) {
    this.page = page;
    this.picture = document.getElementById('picture');
    this.typing = document.getElementById('typing');
    this.held = new Map(); // places by codes
    this.dead = null;
    addEventListener('keydown', event => this.down(event));
    addEventListener('keyup', event => this.up(event));
    addEventListener('focusin', event => this.focused(event.target));
    addEventListener('pointerdown', () => this.mark(null), true);
    this.typing.addEventListener('input', event => this.typed(event));
    this.typing.addEventListener('blur', () => this.typing.classList.remove('open'));
    document.getElementById('phone_keys').onclick = () => this.openPhoneKeys();
    this.askForLayout();
    navigator.keyboard?.addEventListener?.('layoutchange', () => this.askForLayout());
  }

  focus() { if (!this.areOurs()) this.picture.focus({ preventScroll: true }); }
  areOurs() {
    const focused = document.activeElement;
    return !focused || focused === document.body || focused === this.typing ||
      focused.tagName === 'CANVAS' || focused.parentElement?.id === 'keyboard_buttons';
  }

  /// The HostKey of a key that the program does not get; 0 for one without.
  hostKey(event) { return this.page.program._tarvelin_host_key(PLACES.get(event.code) ?? 0); }

  /// A frame around the picture would be in the way, but where Tab has led must be seen.
  mark(element) {
    document.querySelector('.by-tab')?.classList.remove('by-tab');
    element?.classList.add('by-tab');
  }

  focused(element) {
    if (!this.areOurs()) this.letGo();
    this.mark(this.latest === 'Tab' && element.tagName === 'CANVAS' ? element : null);
  }

  /// What the keys give alone, where the browser tells it.
  async askForLayout() {
    try {
      const map = await navigator.keyboard.getLayoutMap();
      for (const [code, letter] of map) this.learn(code, 0, letter, false);
    } catch {
      return; // it is learned while keys are typed
    }
  }

  learn(code, level, letter, dead) {
    const place = PLACES.get(code);
    if (!place || [...letter].length !== 1) return;
    this.page.program._tarvelin_learn(place, level, letter.codePointAt(0), dead ? 1 : 0);
  }

  learnFrom(event) {
    const level = (event.shiftKey ? SHIFTED : 0) | (altGr(event) ? ALT_GR : 0);
    let letter = event.key;
    if (letter === 'Dead') {
      this.dead = { code: event.code, level };
      return;
    }
    if ([...letter].length !== 1) return;
    if (this.dead) {
      // With a space it gives its accent.
      const accent = event.code === 'Space' && ACCENTS[letter];
      if (accent) this.learn(this.dead.code, this.dead.level, accent, true);
      this.dead = null;
      return;
    }
    if ((event.ctrlKey || event.altKey) && !altGr(event)) return;
    if (event.getModifierState('CapsLock')) {
      const other = letter.toLowerCase() === letter ? letter.toUpperCase() : letter.toLowerCase();
      if (other.length === letter.length) letter = other;
    }
    this.learn(event.code, level, letter, false);
  }

  down(event) {
    this.latest = event.key;
    this.mark(null);
    this.releaseLost(event);
    this.page.program._tarvelin_control(event.ctrlKey ? 1 : 0);
    if (event.defaultPrevented || event.isComposing || event.metaKey || !this.areOurs()) return;
    if (this.isOfButton(event)) return;
    const place = PLACES.get(codeOf(event));
    const third = altGr(event);
    const isBrowsers = !third && this.isBrowsers(event);
    if (!place || (isBrowsers && (event.ctrlKey || event.shiftKey))) return;
    this.learnFrom(event);
    const modifiers = (event.shiftKey ? SHIFT : 0) | (event.ctrlKey || third ? CONTROL : 0) |
      (event.altKey || third ? ALT : 0);
    if (!event.repeat) this.held.set(codeOf(event), place);
    const isAltGr = event.key === 'AltGraph' || (MAC && event.key === 'Alt');
    const claimed = this.page.program._tarvelin_key(place, 1, modifiers, event.repeat ? 1 : 0,
                                                    isAltGr ? 1 : 0);
    if (claimed || !isBrowsers) event.preventDefault();
    this.page.turns.wake();
  }

  up(event) {
    this.page.program._tarvelin_control(event.ctrlKey ? 1 : 0);
    // A Mac tells no key that goes up while Command is held.
    if (event.key === 'Meta') return this.letGo();
    if (this.held.has(codeOf(event))) this.release(codeOf(event));
    this.releaseLost(event);
  }

  release(code) {
    this.page.program._tarvelin_key(this.held.get(code), 0, 0, 0, 0);
    this.held.delete(code);
    this.page.turns.wake();
  }

  /// Not every system tells when one of two equal modifiers goes up.
  releaseLost(event) {
    const third = event.getModifierState('AltGraph');
    const isHeld = { Shift: event.shiftKey, Control: event.ctrlKey || third,
                     Alt: event.altKey || third };
    for (const code of [...this.held.keys()]) {
      const name = /^(Shift|Control|Alt)/.exec(code)?.[0];
      if (name && !isHeld[name] && code !== codeOf(event)) this.release(code);
    }
  }

  letGo() {
    this.held.clear();
    this.page.program._tarvelin_let_go();
    this.page.turns.wake();
  }

  /// A key of the keyboard on the screen has the focus.
  isOfButton(event) {
    return document.activeElement.parentElement?.id === 'keyboard_buttons' &&
      /^(Arrow.*|Enter|Space|Tab)$/.test(event.code);
  }

  isBrowsers(event) {
    if (event.altKey) return !/^Alt/.test(event.code);
    if (event.ctrlKey) return event.shiftKey || BROWSERS_CONTROL.test(event.code);
    return BROWSERS_F.test(event.code) || (event.code === 'Tab' && event.shiftKey); // a way out
  }

  // A phone's own keyboard has no keys: what it writes into the field is typed into the machine.
  openPhoneKeys() {
    this.typing.classList.add('open');
    this.typing.value = this.written = ROOM_TO_DELETE;
    this.typing.focus({ preventScroll: true });
  }

  typed(event) {
    const now = [...this.typing.value];
    const before = [...this.written];
    const same = before.findIndex((letter, n) => letter !== now[n]);
    const kept = same < 0 ? before.length : same;
    for (let n = kept; n < before.length; ++n) this.type(BACKSPACE);
    for (const letter of now.slice(kept)) this.type(letter.codePointAt(0));
    this.written = this.typing.value;
    if (!event.isComposing) this.typing.value = this.written = ROOM_TO_DELETE;
    this.page.turns.wake();
  }

  type(code) {
    const { program } = this.page;
    if (code === 10) {
      program._tarvelin_type(13);
      program._tarvelin_type(10);
    } else {
      program._tarvelin_type(code <= 0xFF ? code : '?'.charCodeAt(0));
    }
  }
}
