// Files to and from the user, and the clipboard.

import { nameOf } from './store.js';

export class Files {
  constructor(page) {
    this.page = page;
    addEventListener('dragover', event => event.preventDefault());
    addEventListener('drop', event => {
      event.preventDefault();
      this.drop(event.dataTransfer);
    });
    addEventListener('paste', event => {
      if (event.target.closest?.('input, textarea, dialog')) return;
      event.preventDefault();
      this.pasted(event.clipboardData.getData('text'));
    });
  }

  // ---- from the user -----------------------------------------------------------------------------

  async drop(data) {
    const isFolder = item => item.webkitGetAsEntry?.()?.isDirectory;
    const items = [...data.items].filter(item => item.kind === 'file');
    const folders = items.filter(isFolder).length;
    const files = items.filter(item => !isFolder(item)).map(item => item.getAsFile());
    if (folders) {
      this.page.tell('A folder cannot be opened', '', 'Drop the files in it, or a zip file of them.');
    }
    const paths = await this.bring(files);
    if (paths.length) this.page.text(paths.join('\n') + '\n', this.page.program._tarvelin_drop);
  }

  /// Puts them into the page's file system; returns their paths.
  async bring(files) {
    const paths = [];
    for (const file of files) {
      try {
        const bytes = new Uint8Array(await file.arrayBuffer());
        paths.push(this.page.store.bring(file.name, bytes, file.lastModified));
      } catch (problem) {
        this.page.tell(file.name + ' cannot be read', problem.message, '');
      }
    }
    return paths;
  }

  /// Asks for files of the device, which a browser allows behind a click or a key only. The promise
  /// has their paths.
  pick(patterns = '') {
    const input = document.createElement('input');
    input.type = 'file';
    input.multiple = true;
    // Telephones do not know these types, and would grey all files.
    const coarse = matchMedia('(pointer: coarse)').matches;
    if (!coarse && !/\*(\.\*)?(;|$)/.test(patterns)) input.accept = patterns.replace(/\*/g, '').replace(/;/g, ',');
    return new Promise(done => {
      input.onchange = () => done(this.bring([...input.files]));
      input.oncancel = () => done([]);
      input.click();
    });
  }

  // ---- to the user -------------------------------------------------------------------------------

  offer(name, bytes) {
    const link = document.createElement('a');
    link.download = name;
    link.href = URL.createObjectURL(new Blob([bytes.slice()], { type: 'application/octet-stream' }));
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60000); // browsers may ask before they save it
    return true;
  }

  download(path) { return this.offer(nameOf(path), this.page.store.bytesOf(path)); }

  // ---- the clipboard: the machine's bytes are Latin-1 with CR LF at the ends of lines ------------

  copy(bytes) {
    const text = Array.from(bytes, byte => String.fromCharCode(byte)).join('').replace(/\r\n/g, '\n');
    if (!navigator.clipboard) return this.copyByCommand(text);
    navigator.clipboard.writeText(text).catch(problem => {
      if (!this.copyByCommand(text)) this.page.tell('The clipboard cannot be used', problem.message, '');
    });
    return true;
  }

  /// For pages that browsers do not take for safe, such as those by http from another computer.
  copyByCommand(text) {
    const place = document.body.appendChild(document.createElement('textarea'));
    place.value = text;
    place.select();
    const done = document.execCommand('copy');
    place.remove();
    return done;
  }

  async paste() {
    try {
      this.pasted(await navigator.clipboard.readText());
    } catch {
      this.page.tell('The clipboard cannot be read', 'the browser does not allow it',
                     'Allow it beside the address of the page, or paste by the browser\'s own menu.');
    }
  }

  pasted(text) {
    const lines = text.replace(/\r\n?|\n/g, '\r\n');
    const bytes = Uint8Array.from(lines, letter => letter.charCodeAt(0) > 255 ? 63 : letter.charCodeAt(0));
    this.page.bytes(bytes, this.page.program._tarvelin_clipboard);
  }
}
