// The files of the page, and what outlives it.

export class Store {
  constructor(page) { this.page = page; }
  async open() {
    const { FS } = this.page.program;
    for (const folder of ['/store', '/store/data', '/store/config', '/program']) FS.mkdir(folder);
  }
  isOurs() { return true; }
}
