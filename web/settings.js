// Settings in the local storage, below a name of their own.

const NAME = 'tarvelin.';

export class Settings {
  /// What is set from now on is for this run of the page alone.
  keepNone() { this.ofThisRun = new Map(); }
  open() {
    if (this.ofThisRun) return true;
    try {
      localStorage.setItem(NAME, '');
      return true;
    } catch {
      return false; // storage is switched off
    }
  }
  get(name) {
    try {
      return this.ofThisRun?.get(name) ?? localStorage.getItem(NAME + name);
    } catch {
      return null;
    }
  }
  set(name, item) {
    try {
      if (this.ofThisRun) this.ofThisRun.set(name, item);
      else localStorage.setItem(NAME + name, item);
      return true;
    } catch {
      return false;
    }
  }
}
