// The files of the page. Those below /store are kept in the browser's database: they are there before
// the program starts, and a change is kept within a second. One page at a time has them; another one,
// or one inside of a foreign page, works in memory only. Those below /program come with the page.

import programFiles from './program-files.js';

const NAME = 'tarvelin';
const USERS = '/store/files';
const DATA = '/store/data';
const LOOK = 250;        // ms between two looks for changes
const LARGE = 1 << 20;   // a file that is larger is kept
const REST = 2000;       //   when it has not grown for so many ms, as films do
const PATIENCE = 1500;   // ms that the page before this one has, to let go of the files
const READ_FAILED = 29;  // the C library's EIO here

const folderOf = path => path.slice(0, path.lastIndexOf('/'));
export const nameOf = path => path.slice(path.lastIndexOf('/') + 1);

/// A name that leads to no other folder.
export function cleanName(name) {
  const clean = name.replace(/[/\\\u0000-\u001F]/g, '_');
  return /^\.*$/.test(clean) ? 'file' : clean;
}

/// The promise of a request to the database.
function answerOf(request) {
  return new Promise((done, failed) => {
    request.onsuccess = () => done(request.result);
    request.onerror = () => failed(request.error);
  });
}

function openDatabase() {
  const request = indexedDB.open(NAME, 1);
  request.onupgradeneeded = () => request.result.createObjectStore('files');
  return answerOf(request);
}

/// True when this page has the files from now on. Where there are no locks, nobody can tell.
async function claim() {
  if (!navigator.locks) return true;
  const request = options => new Promise(done => {
    navigator.locks.request(NAME, options, lock => {
      done(lock !== null);
      return lock && new Promise(() => {}); // until the page is gone
    }).catch(() => done(false));
  });
  if (await request({ ifAvailable: true })) return true;
  const patience = new AbortController();
  setTimeout(() => patience.abort(), PATIENCE);
  return request({ signal: patience.signal });
}

/// For the program, which cannot wait: a file that it opens before it has come.
function readAtOnce(address) {
  const request = new XMLHttpRequest();
  request.open('GET', address, false);
  request.overrideMimeType('text/plain; charset=x-user-defined');
  request.send();
  if (request.status !== 200) throw new Error(request.statusText);
  return Uint8Array.from(request.responseText, letter => letter.charCodeAt(0));
}

export class Store {
  /// Starts to read what was kept; open() needs the program for the rest.
  constructor(page, embedded) {
    this.page = page;
    this.ours = true;
    this.known = new Map(); // by path: what the database has
    this.told = false;
    this.addresses = new Map();
    this.coming = new Map(); // by path: how to hand over what has come from the server
    this.kept = embedded ? Promise.resolve([]) : this.read();
  }

  async read() {
    try {
      this.ours = await claim();
      this.database = await openDatabase();
      const files = this.database.transaction('files').objectStore('files');
      const [paths, contents] = await Promise.all([answerOf(files.getAllKeys()), answerOf(files.getAll())]);
      return paths.map((path, place) => [path, contents[place]]);
    } catch (problem) {
      this.problem = problem;
      return [];
    }
  }

  async open() {
    const { FS } = this.page.program;
    for (const folder of [USERS, DATA, '/store/config', '/program']) FS.mkdirTree(folder);
    for (const [path, { bytes, time, brought }] of await this.kept) {
      // What the program keeps for itself belongs to the page that has the store.
      if (!this.ours && folderOf(path) !== USERS) continue;
      this.write(path, bytes, time);
      const { node } = FS.lookupPath(path);
      this.known.set(path, { node, time, at: 0, brought });
    }
    FS.chdir(USERS);
    for (const [name, size] of programFiles) this.expect(name, size);
    if (!this.database) return;
    setInterval(() => this.keep(), LOOK);
    const leave = () => {
      if (this.isClosed) return;
      this.page.program._tarvelin_session_ends();
      this.keep(true);
    };
    document.addEventListener('visibilitychange', () => document.hidden && leave());
    addEventListener('pagehide', leave);
  }

  isOurs() { return this.ours; }

  /// To be called before the program starts. A link takes the place of the machine that the user left
  /// himself, which stays among his files.
  startsWithLink(yes) {
    const { FS } = this.page.program;
    const mark = DATA + '/started-by-link';
    const state = DATA + '/states/resume.tvs';
    const before = FS.analyzePath(mark).exists;
    if (yes && !before && FS.analyzePath(state).exists) {
      this.write(USERS + '/Before the link.tvs', this.bytesOf(state), Date.now());
    }
    if (yes) FS.writeFile(mark, '');
    else if (before) FS.unlink(mark);
  }

  write(path, bytes, time) {
    const { FS } = this.page.program;
    FS.mkdirTree(folderOf(path));
    FS.writeFile(path, bytes);
    FS.utime(path, time, time);
  }

  // ---- what is kept ------------------------------------------------------------------------------

  * filesBelow(folder, path) {
    const { FS } = this.page.program;
    for (const [name, node] of Object.entries(folder.contents)) {
      if (FS.isDir(node.mode)) yield* this.filesBelow(node, path + '/' + name);
      else yield [path + '/' + name, node];
    }
  }

  /// Keeps what has changed, all at one stroke. `all`: with what is still growing.
  keep(all = false) {
    if (!this.database || !this.ours || (this.keeping && !all)) return;
    const at = Date.now();
    const changed = [];
    const gone = new Set(this.known.keys());
    for (const [path, node] of this.filesBelow(this.page.program.FS.lookupPath('/store').node, '/store')) {
      gone.delete(path);
      const known = this.known.get(path);
      // Something may have been written in the very millisecond in which it was kept, and behind that.
      if (known?.node === node && known.time === node.timestamp && known.time !== known.at) continue;
      const grows = node.usedBytes > LARGE && at - node.timestamp < REST;
      if (all || !grows) changed.push([path, node]);
    }
    if (!changed.length && !gone.size) return;
    try {
      const act = this.database.transaction('files', 'readwrite', { durability: 'strict' });
      const files = act.objectStore('files');
      for (const [path, node] of changed) {
        const bytes = node.contents ? node.contents.slice(0, node.usedBytes) : new Uint8Array();
        const brought = this.known.get(path)?.brought;
        files.put({ bytes, time: node.timestamp, brought }, path);
        this.known.set(path, { node, time: node.timestamp, at, brought });
      }
      for (const path of gone) {
        files.delete(path);
        this.known.delete(path);
      }
      this.keeping = true;
      act.oncomplete = () => { this.keeping = this.told = false; };
      act.onabort = () => {
        this.keeping = false;
        for (const [path] of changed) this.known.delete(path); // to be tried again
        for (const path of gone) this.known.set(path, {});
        this.failed(act.error);
      };
      act.commit?.(); // what a page that ends has asked for is done
    } catch (problem) {
      this.keeping = false;
      this.failed(problem);
    }
  }

  /// The program has ended, and changes nothing any more. True when its files are kept.
  close() {
    this.isClosed = true;
    this.keep(true);
    return this.ours && Boolean(this.database);
  }

  failed(problem) {
    if (this.told) return;
    this.told = true;
    const full = problem?.name === 'QuotaExceededError';
    const reason = full ? 'the browser has no more room for this page' : String(problem?.message || problem);
    this.page.tell('Your files cannot be kept', reason,
                   'They are lost when this page is closed, unless you download them.');
  }

  /// To be called when the program runs: tells why nothing is kept.
  tellProblem() {
    if (this.problem) this.failed(this.problem);
    if (this.ours) return;
    this.page.tell('Another page of Tarvelin has your files', 'Only one page at a time can keep them.',
                   'What you save here is lost when this page is closed, unless you download it.');
  }

  // ---- the user's files --------------------------------------------------------------------------

  /// Puts a file that the user brings beside the others. One that the program has written to, or that
  /// the user has brought under the same name with something else in it, stays as it is: the new one
  /// gets a number then. Returns its path.
  bring(name, bytes, time) {
    const { FS } = this.page.program;
    const clean = cleanName(name);
    const point = clean.lastIndexOf('.') > 0 ? clean.lastIndexOf('.') : clean.length;
    for (let number = 1; ; ++number) {
      const path = USERS + '/' + clean.slice(0, point) + (number > 1 ? ` (${number})` : '') + clean.slice(point);
      const { exists, object } = FS.analyzePath(path);
      if (exists && this.known.get(path)?.brought !== object.timestamp) {
        const same = object.usedBytes === bytes.length &&
                     bytes.every((byte, place) => byte === object.contents[place]);
        if (!same) continue;
      } else {
        this.write(path, bytes, time);
      }
      const { node } = FS.lookupPath(path);
      this.known.set(path, { brought: node.timestamp });
      this.lasts();
      return path;
    }
  }

  /// Asks the browser, once the user has files here, not to clear them away.
  async lasts() {
    if (!this.ours || !this.database || this.asked) return;
    this.asked = true;
    const storage = navigator.storage;
    if (storage?.persist && !await storage.persisted()) await storage.persist();
  }

  /// Those that have one of the patterns, such as "*.cas;*.cgt": { name, path, size, time }.
  list(patterns) {
    const { FS } = this.page.program;
    const endings = patterns.toLowerCase().split(';').map(pattern => pattern.trim().replace(/^\*(\.\*)?/, ''));
    return [...this.filesBelow(FS.lookupPath(USERS).node, USERS)]
      .map(([path, node]) => ({
        name: path.slice(USERS.length + 1), path, size: node.usedBytes, time: node.timestamp,
      }))
      .filter(({ name }) => endings.some(ending => name.toLowerCase().endsWith(ending)))
      .sort((one, other) => one.name.localeCompare(other.name));
  }

  bytesOf(path) { return this.page.program.FS.readFile(path); }

  remove(path) { this.page.program.FS.unlink(path); }

  /// An address of the file that the page can show, or of a page of the manual.
  urlOf(path) {
    const ours = /^(?:file:\/\/)?\/program\/(.*)$/.exec(path);
    if (ours) return new URL(ours[1], document.baseURI).href;
    const { node } = this.page.program.FS.lookupPath(path);
    const known = this.addresses.get(path);
    if (known?.node === node && known.time === node.timestamp) return known.address;
    if (known) URL.revokeObjectURL(known.address);
    const address = URL.createObjectURL(new Blob([this.bytesOf(path)]));
    this.addresses.set(path, { node, time: node.timestamp, address });
    return address;
  }

  // ---- what comes with the page ------------------------------------------------------------------

  /// A file below /program that is still at the server. It has its size already, and whoever reads it
  /// before fetchExamples() has it gets it from there at once.
  expect(name, size) {
    const { FS } = this.page.program;
    const path = '/program/' + name;
    FS.mkdirTree(folderOf(path));
    const node = FS.create(path, 0o444);
    const arrived = bytes => {
      this.coming.delete(path);
      Object.defineProperty(node, 'contents', { value: bytes, writable: true });
      node.usedBytes = bytes.length;
    };
    node.usedBytes = size;
    this.coming.set(path, arrived);
    Object.defineProperty(node, 'contents', {
      configurable: true,
      get: () => {
        try {
          arrived(readAtOnce(this.urlOf(path)));
        } catch {
          throw new FS.ErrnoError(READ_FAILED);
        }
        return node.contents;
      },
    });
  }

  async fetchExamples() {
    const examples = [...this.coming.keys()].filter(path => path.startsWith('/program/examples/'));
    await Promise.all(examples.map(async path => {
      const answer = await fetch(this.urlOf(path));
      if (answer.ok) this.coming.get(path)?.(new Uint8Array(await answer.arrayBuffer()));
    }));
  }
}
