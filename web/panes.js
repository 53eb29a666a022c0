// The areas that the program draws, by their numbers. What lies where is the page's layout; each
// canvas has the pixels of the screen.

const PANES = ['picture', 'monitor', 'film_bar', 'overlay', 'keyboard'];
const [PICTURE, MONITOR, FILM_BAR, OVERLAY, KEYBOARD] = PANES.keys();
const ACTS = { pointerdown: 0, pointermove: 1, pointerup: 2, pointercancel: 2 };
const DOUBLE_CLICK = 3;
const WHEEL = 4;
const BUTTONS = [1, 4, 2]; // left, middle, right
const NOTCH = 120;
const UNITS_OF_NOTCH = [100, 3, 1]; // of a wheel's distance in pixels, lines and pages
const GROUND = `rgb(0 0 0 / ${176 / 255})`; // of the overlay: the picture is seen through it
const FONT = 'ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace';
const FONT_SIZE = 13;
const SMALLEST_FONT = 9;
const MONITOR_COLUMNS = 54; // that its registers take
const LINES_OF_OVERLAY = 40; // that would fill the picture's area
const SLIDER = 16;
const MARGIN = 4;
const TAB = 8;

const hex = colour => '#' + colour.toString(16).padStart(6, '0');

/// A fixed-pitch font in cells of whole pixels of the page.
class CellFont {
  constructor(context, size) {
    context.font = `100px ${FONT}`;
    const widest = context.measureText('M');
    this.width = Math.max(Math.round(widest.width * size / 100), 1);
    this.size = this.width * 100 / widest.width; // as wide as the cell
    const above = (widest.fontBoundingBoxAscent || 90) * this.size / 100;
    const below = (widest.fontBoundingBoxDescent || 30) * this.size / 100;
    this.height = Math.ceil(above + below);
    this.baseline = Math.round((this.height - above - below) / 2 + above);
  }
}

class Pane {
  constructor(page, number) {
    this.page = page;
    this.number = number;
    this.canvas = document.getElementById(PANES[number]);
    this.context = this.canvas.getContext('2d', { alpha: number === OVERLAY });
    this.useFont(FONT_SIZE);
    this.rows = 1;
    this.wheel = 0;
    this.pressed = { time: 0 };
    this.observe();
    for (const kind of Object.keys(ACTS)) {
      this.canvas.addEventListener(kind, event => this.pointer(event));
    }
    this.canvas.addEventListener('wheel', event => this.turn(event), { passive: true });
    if (number === PICTURE) return;
    // The keys stay where they are.
    this.canvas.addEventListener('mousedown', event => event.preventDefault());
    this.canvas.addEventListener('contextmenu', event => event.preventDefault());
  }

  useFont(size) {
    if (size === this.fontSize) return;
    this.fontSize = size;
    this.font = new CellFont(this.context, size);
  }

  observe() {
    const observer = new ResizeObserver(([entry]) => {
      const exact = entry.devicePixelContentBoxSize?.[0];
      this.measure(true, exact && [exact.inlineSize, exact.blockSize]);
    });
    try {
      observer.observe(this.canvas, { box: 'device-pixel-content-box' });
    } catch {
      observer.observe(this.canvas); // a browser that does not tell the screen's pixels
    }
  }

  /// Gives the canvas the pixels that it has on the screen. Without `paint` the program draws by
  /// itself afterwards.
  measure(paint, exact) {
    const box = this.canvas.getBoundingClientRect();
    if (!box.width || !box.height) return;
    const ratio = devicePixelRatio;
    let pixels = [Math.round(box.right * ratio) - Math.round(box.left * ratio),
                  Math.round(box.bottom * ratio) - Math.round(box.top * ratio)];
    // Tools that show the page as on another device tell the pixels of this one.
    if (exact?.every((side, n) => Math.abs(side - pixels[n]) <= 1)) pixels = exact;
    const size = [Math.round(box.width), Math.round(box.height), ...pixels];
    if (this.size && size.every((side, n) => side === this.size[n])) return;
    this.size = size;
    this.ratio = ratio;
    [this.canvas.width, this.canvas.height] = pixels;
    this.page.program._tarvelin_pane_resized(this.number, ...size, paint ? 1 : 0);
    this.page.turns.wake();
  }

  place(event) {
    const box = this.canvas.getBoundingClientRect();
    return [Math.floor(event.clientX - box.left), Math.floor(event.clientY - box.top)];
  }

  tell(act, x, y, { button = 0, buttons = 0, touch = 0, finger = 0, wheel = 0 }) {
    this.page.program._tarvelin_pointer(act, this.number, x, y, button, buttons, touch, finger,
                                        wheel);
    this.page.turns.wake();
  }

  pointer(event) {
    let act = ACTS[event.type];
    let [x, y] = this.place(event);
    const touch = event.pointerType === 'touch' ? 1 : 0;
    if (event.type === 'pointerdown') {
      this.canvas.setPointerCapture(event.pointerId);
      if (this.isSecond(event, touch)) act = DOUBLE_CLICK;
      if (this.number !== KEYBOARD) this.page.keys.focus();
    }
    // The browser has taken the touch for a gesture of its own: no button acts.
    if (event.type === 'pointercancel') [x, y] = [-1, -1];
    this.tell(act, x, y, { button: BUTTONS[event.button] || 0, buttons: event.buttons & 7, touch,
                           finger: touch && event.pointerId });
  }

  isSecond(event, touch) {
    const first = this.pressed;
    const far = Math.hypot(event.clientX - first.x, event.clientY - first.y);
    const second = event.timeStamp - first.time < 500 && far < (touch ? 24 : 5) &&
      event.button === first.button && this.number !== KEYBOARD;
    this.pressed = { time: second ? 0 : event.timeStamp, x: event.clientX, y: event.clientY,
                     button: event.button };
    return second;
  }

  turn(event) {
    if (event.ctrlKey) return; // the browser zooms
    this.wheel -= event.deltaY * NOTCH / UNITS_OF_NOTCH[event.deltaMode];
    const notches = Math.trunc(this.wheel / NOTCH);
    this.wheel -= notches * NOTCH;
    if (notches) this.tell(WHEEL, ...this.place(event), { wheel: notches * NOTCH });
  }

  /// Black lets what is behind the overlay through.
  ground(colour) { return this.number === OVERLAY && colour === 0 ? GROUND : hex(colour); }

  fill(left, top, right, bottom, colour) {
    const edges = [left, top, right, bottom].map(place => Math.round(place * this.ratio));
    const area = [edges[0], edges[1], edges[2] - edges[0], edges[3] - edges[1]];
    if (this.number === OVERLAY) this.context.clearRect(...area);
    this.context.fillStyle = this.ground(colour);
    this.context.fillRect(...area);
  }

  text(x, y, text, colour, background) {
    const { context, ratio, font } = this;
    let column = 0;
    const letters = [];
    for (const letter of text) {
      if (letter === '\t') column += TAB - column % TAB;
      else letters.push([letter, column++]);
    }
    this.fill(x, y, x + column * font.width, y + font.height, background);
    context.font = `${font.size * ratio}px ${FONT}`;
    context.fillStyle = hex(colour);
    const baseline = Math.round((y + font.baseline) * ratio);
    const plain = Number.isInteger(font.width * ratio) && /^[ -~]*$/.test(text);
    if (plain) return context.fillText(text, Math.round(x * ratio), baseline);
    for (const [letter, place] of letters) {
      context.fillText(letter, Math.round((x + place * font.width) * ratio), baseline);
    }
  }
}

export class Panes {
  constructor(page) {
    this.page = page;
    this.room = document.getElementById('room');
    this.message = document.getElementById('message');
    this.buttonRoom = document.getElementById('keyboard_buttons');
    this.all = PANES.map((name, number) => new Pane(page, number));
    this.buttonRoom.addEventListener('click', event => this.click(event.target));
    this.buttonRoom.addEventListener('keydown', event => this.move(event));
  }

  /// Film bar and overlay are as high as their text.
  layOut(paint) {
    const room = this.room.clientHeight;
    const bar = this.all[FILM_BAR];
    const { height } = bar.font;
    const lines = Math.min(height + Math.max(height, SLIDER) + 3 * MARGIN, room);
    bar.canvas.style.height = lines + 'px';
    const overlay = this.all[OVERLAY];
    overlay.useFont(Math.max(Math.floor(room / LINES_OF_OVERLAY), FONT_SIZE));
    overlay.canvas.style.height = Math.min((overlay.rows + 1) * overlay.font.height, room) + 'px';
    for (let size = FONT_SIZE; size >= SMALLEST_FONT; --size) {
      this.all[MONITOR].useFont(size);
      if (this.all[MONITOR].font.width * MONITOR_COLUMNS <= this.room.clientWidth) break;
    }
    for (const pane of this.all) pane.measure(paint);
  }

  show(number, on) {
    if (number === PICTURE || number === KEYBOARD) return;
    this.all[number].canvas.style.visibility = on ? 'visible' : 'hidden';
    if (number === OVERLAY && !on) this.message.textContent = '';
    this.layOut(false);
  }

  /// Pixels of the canvas, from its own ones.
  put(number, left, top, width, height, bytes) {
    const pixels = new Uint8ClampedArray(bytes.buffer, bytes.byteOffset, bytes.length);
    this.all[number].context.putImageData(new ImageData(pixels, width, height), left, top);
  }

  /// All but an area, in the canvas's own pixels.
  blacken(number, left, top, right, bottom) {
    const { canvas, context } = this.all[number];
    context.fillStyle = '#000';
    context.fillRect(0, 0, canvas.width, top);
    context.fillRect(0, bottom, canvas.width, canvas.height - bottom);
    context.fillRect(0, top, left, bottom - top);
    context.fillRect(right, top, canvas.width - right, bottom - top);
  }

  fill(number, ...area) { this.all[number].fill(...area); }
  cellWidth(number) { return this.all[number].font.width; }
  cellHeight(number) { return this.all[number].font.height; }
  text(number, ...line) { this.all[number].text(...line); }

  setReading(number, name, text, value, lowest, highest) {
    const { canvas } = this.all[number];
    const values = { label: name, valuetext: text, valuenow: value, valuemin: lowest,
                     valuemax: highest };
    for (const [key, said] of Object.entries(values)) canvas.setAttribute('aria-' + key, said);
  }

  setMessage(number, text, rows) {
    this.all[number].rows = rows;
    this.layOut(false);
    if (this.message.textContent !== text) this.message.textContent = text;
  }

  // The keys of the keyboard, for those who do not see them: one of them is reached by Tab, the
  // others from there by the arrows.
  setButtons(number, buttons) {
    const room = this.buttonRoom;
    while (room.children.length > buttons.length) room.lastChild.remove();
    buttons.forEach(({ name, left, top, width, height, pressed }, n) => {
      let button = room.children[n];
      if (!button) {
        button = document.createElement('button');
        button.type = 'button';
        button.tabIndex = n ? -1 : 0;
        room.append(button);
      }
      if (button.name !== name) button.setAttribute('aria-label', button.name = name);
      button.setAttribute('aria-pressed', pressed);
      const place = `${left} ${top} ${width} ${height}`;
      if (button.value === place) return;
      button.value = place;
      Object.assign(button.style, { left: left + 'px', top: top + 'px', width: width + 'px',
                                    height: height + 'px' });
    });
  }

  click(button) {
    if (button === this.buttonRoom) return;
    const [left, top, width, height] = button.value.split(' ').map(Number);
    const middle = [left + (width >> 1), top + (height >> 1)];
    this.all[KEYBOARD].tell(ACTS.pointerdown, ...middle, { button: 1, buttons: 1 });
    this.all[KEYBOARD].tell(ACTS.pointerup, ...middle, { button: 1 });
  }

  move(event) {
    const step = { ArrowLeft: -1, ArrowUp: -1, ArrowRight: 1, ArrowDown: 1 }[event.key];
    const keys = [...this.buttonRoom.children];
    const next = keys[keys.indexOf(event.target) + step];
    if (!next) return;
    event.target.tabIndex = -1;
    next.tabIndex = 0;
    next.focus();
    event.preventDefault();
  }
}
