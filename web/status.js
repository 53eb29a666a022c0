// The status bar: parts with text, one of which the program draws, and buttons over them.

import { make } from './labels.js';

const DRAWN_HEIGHT = 24; // of what the program draws, at the bottom of the bar

/// The colour that the style has under this name, 00RRGGBB.
function styleColour(name) {
  const digits = getComputedStyle(document.documentElement).getPropertyValue(name).trim().slice(1);
  const six = digits.length === 3 ? digits.replace(/./g, '$&$&') : digits;
  return parseInt(six, 16) || 0;
}

export class Status {
  constructor(page) {
    this.page = page;
    this.element = document.getElementById('status');
    this.element.hidden = true;
    this.buttons = [];
    new ResizeObserver(() => this.drawAnew()).observe(this.element);
    addEventListener('resize', () => { if (devicePixelRatio !== this.ratio) this.drawAnew(); });
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.drawAnew());
  }

  create(edges, drawn) {
    this.edges = edges;
    this.drawn = drawn;
    this.parts = edges.map((edge, part) => {
      const element = make(part === drawn ? 'canvas' : 'span', { class: 'status-part' });
      const left = part ? edges[part - 1] : 0;
      element.style.left = left + 'px';
      element.style[edge < 0 ? 'right' : 'width'] = (edge < 0 ? 0 : edge - left) + 'px';
      return element;
    });
    this.parts[drawn].setAttribute('aria-hidden', 'true');
    this.parts.at(-1).setAttribute('role', 'status');
    this.over = make('span', { class: 'status-over', hidden: true });
    this.buttons = [];
    this.element.replaceChildren(...this.parts, this.over);
    this.element.hidden = false;
    this.drawAnew();
  }

  destroy() {
    this.element.replaceChildren();
    this.element.hidden = true;
    this.parts = null;
  }

  height() { return this.element.offsetHeight; }

  setText(part, text) {
    const element = this.parts?.[part];
    if (element && part !== this.drawn && element.textContent !== text) element.textContent = text;
  }

  setTip(part, text) { if (this.parts?.[part]) this.parts[part].title = text; }

  /// As many as before are moved.
  setButtons(described) {
    if (!this.parts) return;
    while (this.buttons.length > described.length) this.buttons.pop().remove();
    while (this.buttons.length < described.length) this.buttons.push(this.button(this.buttons.length));
    described.forEach(({ name, left, top, width, height }, number) => {
      const button = this.buttons[number];
      button.setAttribute('aria-label', name);
      const place = { left, top, width, height };
      for (const [side, points] of Object.entries(place)) button.style[side] = points + 'px';
    });
  }

  button(number) {
    const { program, turns } = this.page;
    const button = make('button', { class: 'status-button', 'aria-haspopup': 'menu' });
    const press = event => {
      event.preventDefault();
      program._tarvelin_status_button(number);
      turns.wake();
    };
    const tip = () => { button.title = program.UTF8ToString(program._tarvelin_status_tip(number)); };
    button.addEventListener('pointerdown', event => event.preventDefault()); // the focus stays
    button.addEventListener('click', press);
    button.addEventListener('contextmenu', press);
    button.addEventListener('pointerenter', tip);
    button.addEventListener('focus', tip);
    this.element.append(button);
    return button;
  }

  showOver(text) {
    if (!this.parts) return;
    this.over.textContent = text;
    this.over.hidden = !text;
  }

  // ---- the drawn part

  drawAnew() {
    if (!this.parts || !this.element.offsetHeight) return;
    const canvas = this.parts[this.drawn];
    this.ratio = devicePixelRatio;
    canvas.width = Math.round(canvas.offsetWidth * this.ratio);
    canvas.height = Math.round(this.element.offsetHeight * this.ratio);
    // Where the bar is higher, the drawing is in its middle all the same.
    canvas.style.top = (DRAWN_HEIGHT - this.element.offsetHeight) / 2 + 'px';
    this.page.program._tarvelin_draw_status();
  }

  fill(left, top, width, height, colour) {
    if (!this.parts) return;
    const canvas = this.parts[this.drawn];
    const context = canvas.getContext('2d');
    const { ratio } = this;
    const start = this.drawn ? this.edges[this.drawn - 1] : 0;
    const pixel = points => Math.round(points * ratio);
    context.fillStyle = '#' + colour.toString(16).padStart(6, '0');
    context.fillRect(pixel(left - start), pixel(top), pixel(left - start + width) - pixel(left - start),
                     pixel(top + height) - pixel(top));
  }

  background() { return styleColour('--ground'); }
  shadow() { return styleColour('--shadow'); }
  highlight() { return styleColour('--highlight'); }
}
