// The areas that the program draws, by their numbers.

const PANES = ['picture', 'monitor', 'film_bar', 'overlay', 'keyboard'];
const ACTS = { pointerdown: 0, pointermove: 1, pointerup: 2, pointercancel: 2, dblclick: 3 };

const hex = colour => '#' + colour.toString(16).padStart(6, '0');

class Pane {
  constructor(page, number) {
    this.page = page;
    this.number = number;
    this.canvas = document.getElementById(PANES[number]);
    this.context = this.canvas.getContext('2d', { alpha: number === 3 });
    this.ratio = 1;
    new ResizeObserver(() => this.measure()).observe(this.canvas);
    for (const kind of Object.keys(ACTS)) {
      this.canvas.addEventListener(kind, event => this.pointer(event));
    }
  }

  measure() {
    const { width, height } = this.canvas.getBoundingClientRect();
    if (!width || !height) return;
    this.ratio = devicePixelRatio;
    this.canvas.width = Math.round(width * this.ratio);
    this.canvas.height = Math.round(height * this.ratio);
    this.page.program._tarvelin_pane_resized(this.number, Math.round(width), Math.round(height));
    this.page.turns.wake();
  }

  pointer(event) {
    const touch = event.pointerType === 'touch' ? 1 : 0;
    const button = [1, 4, 2][event.button] || 0;
    this.page.program._tarvelin_pointer(ACTS[event.type], this.number, Math.floor(event.offsetX),
                                        Math.floor(event.offsetY), button, event.buttons & 7, touch,
                                        touch ? event.pointerId : 0, 0);
    this.page.turns.wake();
  }
}

export class Panes {
  constructor(page) { this.all = PANES.map((name, number) => new Pane(page, number)); }
  show(number, on) {
    if (number > 0 && number < 4) this.all[number].canvas.hidden = !on;
  }
  put(number, left, top, width, height, bytes) {
    const image = new ImageData(new Uint8ClampedArray(bytes), width, height);
    this.all[number].context.putImageData(image, left, top);
  }
  // All but an area, in the canvas's own pixels.
  blacken(number, left, top, right, bottom) {
    const { canvas, context } = this.all[number];
    context.fillStyle = '#000';
    context.fillRect(0, 0, canvas.width, top);
    context.fillRect(0, bottom, canvas.width, canvas.height - bottom);
    context.fillRect(0, top, left, bottom - top);
    context.fillRect(right, top, canvas.width - right, bottom - top);
  }
  fill(number, left, top, width, height, colour) {
    const { context, ratio } = this.all[number];
    context.fillStyle = hex(colour);
    context.fillRect(left * ratio, top * ratio, width * ratio, height * ratio);
  }
  cellWidth() { return 8; }
  cellHeight() { return 16; }
  text(number, x, y, text, colour, background) {
    const { context, ratio } = this.all[number];
    context.font = `${13 * ratio}px monospace`;
    context.textBaseline = 'top';
    [...text].forEach((letter, place) => {
      const left = (x + place * 8) * ratio;
      context.fillStyle = hex(background);
      context.fillRect(left, y * ratio, 8 * ratio, 16 * ratio);
      context.fillStyle = hex(colour);
      context.fillText(letter, left, (y + 2) * ratio);
    });
  }
  setReading() {}
  setButtons() {}
  setMessage() {}
}
