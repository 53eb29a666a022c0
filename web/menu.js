// The menu, from the program's entries.

export class Menu {
  constructor(page) { this.page = page; this.element = document.getElementById('menu'); }
  set(entries) { this.entries = entries; }
  check() {}
  setText() {}
  setState() {}
  popup() {}
}
