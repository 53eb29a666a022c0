// The address of the page, which may say what is to be started and how.

import { cleanName, nameOf } from './store.js';

export class Links {
  constructor(page) {
    this.page = page;
    addEventListener('hashchange', () => page.text(location.hash, page.program._tarvelin_open_link));
  }
  query() { return location.search; }
  hasProgram() { return /^#(basic|replay)=/.test(location.hash); }
  /// Nothing when it is not for the program.
  fragment() { return this.hasProgram() ? location.hash : ''; }
  address() { return location.href.replace(/[?#].*/, ''); }
  isEmbedded() { return window.parent !== window; }
  touchScreen() { return matchMedia('(pointer: coarse)').matches; }

  /// Fetches the file that the address names; its path, or nothing. What a link brings is not among
  /// the user's own files.
  async fetchFile() {
    const name = new URLSearchParams(location.search).get('run');
    if (!name) return null;
    try {
      const address = new URL(name, document.baseURI);
      if (address.origin !== location.origin) throw new Error('it is on another server than this page');
      const answer = await fetch(address);
      if (!answer.ok) throw new Error(`the server answers ${answer.status} ${answer.statusText}`.trim());
      const bytes = new Uint8Array(await answer.arrayBuffer());
      return { name: cleanName(decodeURIComponent(nameOf(address.pathname))), bytes };
    } catch (problem) {
      this.problem = [name + ' cannot be opened', problem.message];
      return null;
    }
  }
}
