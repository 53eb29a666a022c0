// Settings in the local storage, below a name of their own.

const NAME = 'tarvelin.';

export class Settings {
  open() {
    try {
      localStorage.setItem(NAME, '');
      return true;
    } catch {
      return false; // storage is switched off
    }
  }
  get(name) { return localStorage.getItem(NAME + name); }
  set(name, item) {
    try {
      localStorage.setItem(NAME + name, item);
      return true;
    } catch {
      return false;
    }
  }
}
