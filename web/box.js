// A box in front of the page: modal, or beside the picture while that goes on. It has a title to move
// it by, contents that scroll and a row of buttons.

import { make, refocus, split, write } from './labels.js';

const NO_ANSWER = -1;
let last = 0;  // number of an element's id
let front = 10; // z-index of the foremost box beside the picture

export const newId = () => 'box-' + ++last;

const SHEET = matchMedia('(max-width: 599px)'); // where boxes have the whole width, and no place

export class Box {
  /// onEscape: Escape or the close button; onClose in place of it for the close button alone.
  constructor(title, { onEscape, onClose = onEscape, role = null }) {
    this.heading = make('h2', { id: newId() }, title);
    const closer = make('button', { class: 'box-close', 'aria-label': 'Close', tabindex: '-1' });
    this.header = make('header', {}, this.heading, closer);
    this.contents = make('div', { class: 'box-contents' });
    this.footer = make('footer', { hidden: true });
    this.element = make('dialog', { class: 'box', tabindex: '-1', 'aria-labelledby': this.heading.id, role },
                        this.header, this.contents, this.footer);
    this.onEscape = onEscape;
    this.isOpen = false;
    this.default = null; // the button that Enter presses
    this.keys = [];      // access keys: { key: a function that gives it, act }
    closer.addEventListener('click', () => onClose());
    this.element.addEventListener('keydown', event => this.key(event));
    this.element.addEventListener('cancel', event => {
      if (event.target !== this.element) return;
      event.preventDefault();
      this.onEscape();
    });
    this.element.addEventListener('close', () => {
      if (!this.isOpen || this.element.open) return; // not by the browser
      this.isOpen = false;
      this.onEscape();
    });
    this.header.addEventListener('pointerdown', event => this.grab(event));
    this.element.addEventListener('pointerdown', () => this.activate());
    this.element.addEventListener('focusin', event => { this.focused = event.target; });
    this.pageResized = () => this.stayWithin();
  }

  /// Buttons go to the end of the box.
  addButtons(...buttons) {
    this.footer.hidden = false;
    this.footer.append(...buttons);
  }

  open(modal, first) {
    this.before = document.activeElement;
    this.isOpen = true;
    this.element.classList.toggle('modal', modal);
    this.element.classList.remove('measured');
    if (!this.element.isConnected) document.body.append(this.element);
    if (modal) {
      this.element.showModal();
    } else {
      this.element.show();
      this.raise();
    }
    (first ?? this.default ?? this.element).focus();
    addEventListener('resize', this.pageResized);
  }

  /// In front, with the keyboard.
  activate() {
    this.raise();
    if (!this.element.contains(document.activeElement)) (this.focused ?? this.element).focus();
  }

  raise() { this.element.style.zIndex = front = Math.min(front + 1, 29); }

  close() {
    removeEventListener('resize', this.pageResized);
    const had = this.isOpen;
    this.isOpen = false;
    const hadFocus = this.element.contains(document.activeElement);
    if (this.element.open) this.element.close();
    this.element.remove();
    if (had && (hadFocus || document.activeElement === document.body)) refocus(this.before);
  }

  size() {
    if (!this.isOpen) {
      this.element.classList.add('measured');
      document.body.append(this.element);
    }
    const { width, height } = this.element.getBoundingClientRect();
    if (!this.isOpen) this.element.remove();
    return { width: Math.ceil(width), height: Math.ceil(height) };
  }

  /// Within the page, where boxes have a place at all.
  move(left, top) {
    const { style } = this.element;
    this.place = { left, top };
    style.inset = style.margin = '';
    if (SHEET.matches) return;
    const { width, height } = this.size();
    style.inset = 'auto';
    style.margin = '0';
    style.left = Math.max(0, Math.min(left, innerWidth - width)) + 'px';
    style.top = Math.max(0, Math.min(top, innerHeight - Math.min(height, 40))) + 'px';
  }

  /// Not higher than the page below its top; the contents scroll then.
  keepHeight() {
    const { top } = this.element.getBoundingClientRect();
    this.element.style.maxHeight = SHEET.matches ? '' : `calc(100vh - ${Math.round(top) + 8}px)`;
  }

  /// The page has got another size.
  stayWithin() {
    if (!this.place) return;
    this.move(this.place.left, this.place.top);
    this.keepHeight();
  }

  grab(event) {
    if (event.button || event.target.closest('button') || SHEET.matches) return;
    event.preventDefault();
    const { left, top } = this.element.getBoundingClientRect();
    const [x, y] = [event.clientX - left, event.clientY - top];
    const drag = moved => this.move(moved.clientX - x, moved.clientY - y);
    this.header.setPointerCapture(event.pointerId);
    this.header.addEventListener('pointermove', drag);
    this.header.addEventListener('lostpointercapture',
                                 () => this.header.removeEventListener('pointermove', drag), { once: true });
  }

  key(event) {
    if (event.defaultPrevented || event.ctrlKey || event.metaKey) return;
    if (event.key === 'Escape') {
      event.preventDefault();
      this.onEscape();
    } else if (event.altKey && event.key.length === 1) {
      this.accessKey(event);
    } else if (event.key === 'Enter' && event.repeat) {
      event.preventDefault(); // it may have opened this box
    } else if (event.key === 'Enter' && !event.target.closest('button, a')) {
      event.preventDefault();
      this.default?.click();
    }
  }

  accessKey(event) {
    const letter = event.key.toLowerCase();
    const found = this.keys.find(entry => entry.key() === letter);
    if (!found) return;
    event.preventDefault();
    found.act();
  }

  /// A button for this box; the text has its access key.
  button(text, act) {
    const element = make('button', { class: 'push' });
    write(element, text);
    element.addEventListener('click', act);
    this.keys.push({ key: () => split(text).key, act: () => element.click() });
    return element;
  }

  setDefault(button) {
    this.default = button;
    button.classList.add('default');
  }
}

const lines = text => text.replace(/\r\n?/g, '\n');

/// A box with words, an icon and buttons, one of which Enter presses.
export function wordsBox(title, text, icon, answers, done, usual = 0) {
  const words = make('p', { class: 'box-words', id: newId() }, lines(text));
  const box = new Box(title, { onEscape: () => done(NO_ANSWER), role: icon ? 'alertdialog' : null });
  box.element.setAttribute('aria-describedby', words.id);
  box.element.classList.add('words');
  const look = { class: 'icon icon-' + icon.toLowerCase(), role: 'img', 'aria-label': icon };
  if (icon) box.contents.append(make('span', look));
  box.contents.append(words);
  box.addButtons(...answers.map((answer, place) => box.button(answer, () => done(place))));
  box.setDefault(box.footer.children[usual]);
  return box;
}
