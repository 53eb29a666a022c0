// The main window: the page below the menu.

export class PageWindow {
  constructor(page) {
    this.page = page;
    this.client = document.getElementById('client');
    this.keyboardRoom = document.getElementById('keyboard_room');
    new ResizeObserver(() => { this.measure(); this.page.turns.wake(); }).observe(this.client);
  }
  measure() {
    const { width, height } = this.client.getBoundingClientRect();
    this.page.program._tarvelin_resized(Math.round(width), Math.round(height), devicePixelRatio);
  }
  show() {}
  ended() {}
  setTitle(title) { document.title = title; }
  setFullScreen() {}
  showCursor(on) { document.getElementById('room').style.cursor = on ? '' : 'none'; }
  placeKeyboard(place, left, top, width, height) {
    this.keyboardRoom.hidden = place === 0;
    this.keyboardRoom.style.height = height + 'px';
  }
  setReadable() {}
}
