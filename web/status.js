// The status bar: parts with text, one of which the program draws.

export class Status {
  constructor(page) { this.page = page; this.element = document.getElementById('status'); }
  create(edges, drawn) { this.edges = edges; this.drawn = drawn; }
  destroy() {}
  height() { return 24; }
  setText() {}
  setTip() {}
  setButtons() {}
  showOver() {}
  fill() {}
  background() { return 0xC0C0C0; }
  shadow() { return 0x808080; }
  highlight() { return 0xFFFFFF; }
}
