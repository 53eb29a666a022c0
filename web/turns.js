// Calls the shell's turns: at once, in some time, or when something has happened.

const ON_EVENT = -1;
const ENDED = -2;
const SLICE = 12; // ms of turns at a stretch

export class Turns {
  constructor(page) {
    this.page = page;
    this.timer = 0;
    this.inside = false;
    this.channel = new MessageChannel();
    this.channel.port1.onmessage = () => this.run();
    document.addEventListener('visibilitychange', () => this.wake());
  }

  /// Something has happened.
  wake() {
    if (this.inside) return;
    clearTimeout(this.timer);
    this.timer = 0;
    this.channel.port2.postMessage(0);
  }

  run() {
    clearTimeout(this.timer);
    this.timer = 0;
    if (document.hidden) return;
    const end = performance.now() + SLICE;
    let wait = 0;
    this.inside = true;
    try {
      do wait = this.page.program._tarvelin_turn();
      while (wait === 0 && performance.now() < end);
    } finally {
      this.inside = false;
    }
    if (wait === ENDED) return this.page.window.ended();
    if (wait === 0) return this.channel.port2.postMessage(0);
    if (wait !== ON_EVENT) this.timer = setTimeout(() => this.run(), wait / 1000);
  }
}
