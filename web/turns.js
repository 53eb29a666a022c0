// Calls the shell's turns: at once, in some time, or when something has happened.

const ON_EVENT = -1;
const ENDED = -2;
const SLICE = 12; // ms of turns at a stretch; between two of them the page paints and takes input

export class Turns {
  constructor(page) {
    this.page = page;
    this.timer = 0;
    this.asked = false;
    this.inside = false;
    this.channel = new MessageChannel();
    this.channel.port1.onmessage = () => this.run();
    document.addEventListener('visibilitychange', () => this.wake());
  }

  /// Something has happened.
  wake() {
    if (!this.inside) this.soon();
  }

  /// The turn comes as a message, also after a timer: a timer that is set within a timer's call waits
  /// 4 ms at least, and a message does not.
  soon() {
    clearTimeout(this.timer);
    this.timer = 0;
    if (this.asked || document.hidden) return;
    this.asked = true;
    this.channel.port2.postMessage(0);
  }

  run() {
    this.asked = false;
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
    if (wait === 0) return this.soon();
    // Timers count whole milliseconds; too early would need another, short one.
    if (wait !== ON_EVENT) this.timer = setTimeout(() => this.soon(), Math.ceil(wait / 1000));
  }
}
