// Calls the shell's turns: at once, in some time, or when something has happened.

const ON_EVENT = -1;
const ENDED = -2;
const MOVED = 3; // a message, after which the machine's time begins anew
const STANDSTILL = 1000; // ms
const SLICE = 12; // ms of turns at a stretch; between two of them the page paints and takes input

export class Turns {
  constructor(page) {
    this.page = page;
    this.timer = 0;
    this.due = Infinity; // of the next turn
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
    const now = performance.now();
    const end = now + SLICE;
    // The page was frozen, or the computer slept: what was missed is not made up for.
    if (now > this.due + STANDSTILL) this.page.program._tarvelin_post(MOVED, 0);
    let wait = 0;
    this.due = Infinity;
    this.inside = true;
    try {
      do wait = this.page.program._tarvelin_turn();
      while (wait === 0 && performance.now() < end);
    } finally {
      this.inside = false;
    }
    if (wait === ENDED) return this.page.window.ended();
    if (wait === 0) return this.soon();
    if (wait === ON_EVENT) return;
    // Timers count whole milliseconds; too early would need another, short one.
    const ms = Math.ceil(wait / 1000);
    this.due = performance.now() + ms;
    this.timer = setTimeout(() => this.soon(), ms);
  }
}
