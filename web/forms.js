// Forms: boxes with the controls that the program describes. The page shows them and tells what the
// user does; the program keeps values and texts of its own.

import { Box } from './box.js';
import { Builder } from './controls.js';

const CLOSED = 3;
const TICKED = 4;
const KEY = 5;
const NO_KEY = 0;

class PageForm {
  constructor(page, number, { title, controls, tick }) {
    this.page = page;
    this.number = number;
    this.title = title;
    this.name = 'form-' + number; // of its radio buttons
    this.controls = new Map();
    this.order = [];
    this.pictures = [];
    this.cancel = null;
    this.waits = null; // the end of waiting for a key
    this.place = null;
    const close = () => this.tell(CLOSED, 0);
    this.box = new Box(title, { onEscape: () => this.cancel ? this.cancel.act() : close(), onClose: close });
    const last = controls.at(-1);
    const hasButtons = last?.kind === 'buttons';
    const builder = new Builder(this);
    builder.all(hasButtons ? controls.slice(0, -1) : controls, this.box.contents, { label: null, name: '' });
    if (hasButtons) {
      this.box.addButtons();
      builder.all(last.children, this.box.footer, { label: null, name: '' });
    }
    if (this.pictures.length) this.rove(this.pictures[0]);
    if (tick) this.timer = setInterval(() => { if (this.box.isOpen) this.tell(TICKED, 0); }, tick);
  }

  tell(kind, control, value = 0, text = '', key = 0) {
    const { page, number } = this;
    page.text(text, place => page.program._tarvelin_form_event(number, kind, control, value, place, key));
    page.turns.wake();
  }

  open(modal) {
    if (this.box.isOpen) {
      this.box.raise();
      return this.first()?.focus();
    }
    this.box.open(modal, this.first());
    if (!modal) this.put();
    for (const control of this.order) control.opened?.();
  }

  /// A form beside the picture is at its right edge, or in the middle of it when it is wide, unless
  /// the program puts it somewhere else.
  put() {
    const client = document.getElementById('client').getBoundingClientRect();
    const { width } = this.box.size();
    const usual = width > client.width / 2 ? (client.width - width) / 2 : client.width - width - 8;
    const [left, top] = this.place ?? [usual, 8];
    this.box.move(client.left + left, client.top + top);
    this.box.keepHeight();
  }

  move(left, top) {
    this.place = left || top ? [left, top] : null;
    if (this.box.isOpen) this.put();
  }

  close() {
    this.endWait();
    this.box.close();
  }

  remove() {
    clearInterval(this.timer);
    this.close();
  }

  /// A table, or the first control; of radio buttons and pictures the chosen one.
  first() {
    const table = this.order.find(control => control.kind === 'table');
    const first = table ?? this.order.find(control => !control.input.disabled);
    const group = this.order.filter(control => control.kind === first?.kind);
    const chosen = group.find(control => control.input.checked ||
                                         control.input.getAttribute('aria-checked') === 'true');
    return (['radio', 'picture'].includes(first?.kind) && chosen ? chosen : first)?.input;
  }

  /// Tab comes back to this picture.
  rove(picture) {
    for (const other of this.pictures) other.element.tabIndex = other === picture ? 0 : -1;
  }

  /// The picture that an arrow key leads to.
  pictureBeside(picture, key) {
    const all = this.pictures.filter(other => !other.element.disabled);
    const step = { ArrowLeft: -1, ArrowRight: 1 }[key];
    if (step) return all.at((all.indexOf(picture) + step) % all.length);
    const down = { ArrowUp: -1, ArrowDown: 1 }[key];
    if (!down) return null;
    const { left, top } = picture.element.getBoundingClientRect();
    let best = null;
    let least = Infinity;
    for (const other of all) {
      const place = other.element.getBoundingClientRect();
      const away = (place.top - top) * down;
      const distance = away * 4 + Math.abs(place.left - left);
      if (away > 4 && distance < least) [best, least] = [other, distance];
    }
    return best ?? picture;
  }

  /// The next key is told and does nothing else.
  awaitKey() {
    this.endWait();
    const end = key => {
      this.endWait();
      this.tell(KEY, 0, 0, '', key);
    };
    const heard = event => {
      event.preventDefault();
      event.stopImmediatePropagation();
      if (!event.repeat) end(this.page.keys.hostKey(event));
    };
    const away = () => end(NO_KEY);
    addEventListener('keydown', heard, true);
    addEventListener('pointerdown', away, true);
    addEventListener('blur', away);
    this.waits = () => {
      removeEventListener('keydown', heard, true);
      removeEventListener('pointerdown', away, true);
      removeEventListener('blur', away);
    };
  }

  endWait() {
    this.waits?.();
    this.waits = null;
  }
}

/// Rows from the top, blue, green, red and a byte more for each pixel.
function canvasOf(width, height, bytes) {
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  const image = new ImageData(width, height);
  for (let n = 0; n < image.data.length; n += 4) {
    image.data[n] = bytes[n + 2];
    image.data[n + 1] = bytes[n + 1];
    image.data[n + 2] = bytes[n];
    image.data[n + 3] = 255;
  }
  canvas.getContext('2d').putImageData(image, 0, 0);
  return canvas;
}

export class Forms {
  constructor(page) {
    this.page = page;
    this.all = new Map();
  }
  create(number, description) { this.all.set(number, new PageForm(this.page, number, description)); }
  remove(number) {
    this.all.get(number)?.remove();
    this.all.delete(number);
  }
  control(number, id) { return this.all.get(number)?.controls.get(id); }
  setValue(number, id, value) { this.control(number, id)?.setValue(value); }
  setText(number, id, text) { this.control(number, id)?.setText(text); }
  setItems(number, id, items) { this.control(number, id)?.setItems(items); }
  setPicture(number, id, file) { this.control(number, id)?.setPicture(file); }
  setPixels(number, id, width, height, bytes) {
    this.control(number, id)?.setPicture(canvasOf(width, height, bytes));
  }
  enable(number, id, on) { this.control(number, id)?.enable(on); }
  awaitKey(number) { this.all.get(number)?.awaitKey(); }
  open(number, modal) { this.all.get(number)?.open(modal); }
  close(number) { this.all.get(number)?.close(); }
  move(number, left, top) { this.all.get(number)?.move(left, top); }
  width(number) { return this.all.get(number)?.box.size().width ?? 0; }
  height(number) { return this.all.get(number)?.box.size().height ?? 0; }
}
