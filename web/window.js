// The main window: the page below the menu, the whole screen, and the keyboard's place.

import { wordsBox } from './box.js';

const FOCUS = 5; // kinds of messages
const ACTIVATE = 7;
const FULL_SCREEN = 40007;
const [HIDDEN, DOCKED, FLOATING] = [0, 1, 2];
const LEAST_WIDTH = 260; // of the floating keyboard
const READ_AGAIN = 1000; // ms

const within = (value, low, high) => Math.max(Math.min(value, high), low);

export class PageWindow {
  constructor(page) {
    this.page = page;
    this.client = document.getElementById('client');
    this.room = document.getElementById('room');
    this.keyboard = document.getElementById('keyboard_room');
    this.readable = document.getElementById('readable');
    this.place = HIDDEN;
    this.full = this.left = false;
    this.blurred = document.hidden;
    new ResizeObserver(() => this.measure()).observe(this.client);
    this.watchRatio();
    addEventListener('resize', () => this.floatWithin());
    addEventListener('blur', () => this.activate(true));
    addEventListener('focus', () => this.activate(false));
    document.addEventListener('visibilitychange', () => this.activate(this.blurred));
    document.addEventListener('fullscreenchange', () => this.screenChanged());
    document.getElementById('keyboard_close').onclick = () => this.command(this.closed);
    document.getElementById('leave_full').onclick = () => this.command(FULL_SCREEN);
    this.drag(document.getElementById('keyboard_bar'), (box, x, y) => this.float(
      { ...box, left: box.left + x, top: box.top + y }));
    this.drag(document.getElementById('keyboard_grip'), (box, x) => this.float(
      { ...box, width: box.width + x }));
  }

  post(kind, value) {
    this.page.program._tarvelin_post(kind, value);
    this.page.turns.wake();
  }
  command(id) {
    this.page.program._tarvelin_command(id);
    this.page.turns.wake();
  }

  /// A page on another screen, or zoomed, has other pixels.
  watchRatio() {
    matchMedia(`(resolution: ${devicePixelRatio}dppx)`).addEventListener('change', () => {
      this.measure();
      this.watchRatio();
    }, { once: true });
  }

  measure(paint = true) {
    const { width, height } = this.client.getBoundingClientRect();
    const size = [Math.round(width), Math.round(height), devicePixelRatio];
    if (!this.size || size.some((side, n) => side !== this.size[n])) {
      this.size = size;
      this.page.program._tarvelin_resized(...size);
      this.page.turns.wake();
    }
    this.page.panes.layOut(paint);
  }

  activate(blurred) {
    this.blurred = blurred;
    const active = !blurred && !document.hidden;
    if (!active) this.page.keys.letGo();
    if (active === (this.active ?? true)) return;
    this.active = active;
    this.post(ACTIVATE, active ? 1 : 0);
    if (active) this.post(FOCUS, 0);
  }

  show() { this.page.keys.focus(); }
  /// The program has ended in order.
  ended() {
    if (this.page.store.isClosed) return;
    const text = this.page.store.close() ? 'Your files and the machine as you left it are kept.' : '';
    wordsBox('Tarvelin has ended', text, '', ['&Start again'], () => location.reload()).open(true);
  }
  setTitle(title) { document.title = title; }
  showCursor(on) { this.room.style.cursor = on ? '' : 'none'; }

  /// Where the browser does not give the whole screen, the page fills all that there is.
  setFullScreen(on) {
    this.full = on;
    this.left = false;
    document.body.classList.toggle('full', on);
    const page = document.documentElement;
    if (on) page.requestFullscreen?.({ navigationUI: 'hide' }).catch(() => {});
    else if (document.fullscreenElement) document.exitFullscreen().catch(() => {});
    this.measure(false);
    this.page.keys.focus();
  }

  /// The user may leave without the program, by Escape or a gesture.
  screenChanged() {
    if (document.fullscreenElement) {
      if (!this.full) document.exitFullscreen().catch(() => {});
    } else if (this.full && !this.left) {
      this.left = true;
      this.command(FULL_SCREEN);
    }
  }

  placeKeyboard(place, left, top, width, height, closed) {
    const stays = place === this.place;
    this.place = place;
    this.closed = closed;
    const { classList, style } = this.keyboard;
    this.keyboard.hidden = place === HIDDEN;
    classList.toggle('floating', place === FLOATING);
    classList.toggle('docked', place === DOCKED);
    if (place === DOCKED) {
      style.cssText = '';
      style.height = height + 'px';
    } else if (place === FLOATING && !stays) {
      this.shape = height / width;
      const chosen = left || top;
      this.float({ left: chosen ? left : (innerWidth - width) / 2,
                   top: chosen ? top : innerHeight * 0.95 - height, width });
    }
    this.measure(false);
  }

  /// Puts the pane of the floating keyboard there, as far as the page has room.
  float({ left, top, width }) {
    const bar = document.getElementById('keyboard_bar').offsetHeight;
    const wide = Math.round(within(width, Math.min(LEAST_WIDTH, innerWidth), innerWidth));
    const high = Math.round(wide * this.shape);
    const x = Math.round(within(left, 0, innerWidth - wide));
    const y = Math.round(within(top, bar, Math.max(innerHeight - high, bar)));
    Object.assign(this.keyboard.style, { left: x + 'px', top: y - bar + 'px', width: wide + 'px',
                                         height: high + bar + 'px' });
    this.box = { left: x, top: y, width: wide };
    this.page.program._tarvelin_keyboard_placed(x, y, x + wide, y + high);
  }
  floatWithin() { if (this.place === FLOATING) this.float(this.box); }

  drag(handle, act) {
    let start = null;
    handle.addEventListener('pointerdown', event => {
      if (event.target.closest('button')) return;
      event.preventDefault();
      handle.setPointerCapture(event.pointerId);
      start = { x: event.clientX, y: event.clientY, box: this.box };
    });
    handle.addEventListener('pointermove', event => {
      if (start) act(start.box, event.clientX - start.x, event.clientY - start.y);
    });
    handle.addEventListener('lostpointercapture', () => { start = null; });
  }

  /// The screen's text for screen readers, brought up to date from time to time.
  setReadable(name) {
    document.getElementById('picture').setAttribute('aria-label', name);
    this.readable.setAttribute('aria-label', name + ' text');
    clearInterval(this.reading);
    this.reading = setInterval(() => this.read(), READ_AGAIN);
  }
  read() {
    if (document.hidden) return;
    const { program } = this.page;
    const text = program.UTF8ToString(program._tarvelin_readable_text());
    if (text !== this.readable.textContent) this.readable.textContent = text;
  }
}
