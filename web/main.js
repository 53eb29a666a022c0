// Starts the program in the page and connects the two.

import createTarvelin from './tarvelin.js';
import { Dialogs } from './dialogs.js';
import { Files } from './files.js';
import { Forms } from './forms.js';
import { Keys } from './keys.js';
import { Links } from './links.js';
import { Menu } from './menu.js';
import { Pads } from './pads.js';
import { Panes } from './panes.js';
import { Settings } from './settings.js';
import { Sound } from './sound.js';
import { Status } from './status.js';
import { Store } from './store.js';
import { Tube } from './tube.js';
import { Turns } from './turns.js';
import { PageWindow } from './window.js';

const page = {
  /// Calls a function of the program with bytes, and with a 0 behind them.
  bytes(bytes, call) {
    const { program } = page;
    const place = program._malloc(bytes.length + 1);
    program.HEAPU8.set(bytes, place);
    program.HEAPU8[place + bytes.length] = 0;
    call(place);
    program._free(place);
    page.turns.wake();
  },
  /// The same with a text, in UTF-8.
  text(text, call) { page.bytes(new TextEncoder().encode(text), call); },
  /// Tells the user in the program's own way.
  tell(text, reason, remedy) {
    page.text([text, reason, remedy].join('\0'), page.program._tarvelin_tell);
  },
};
globalThis.tarvelin = page;
const module = {
  page,
  noInitialRun: true,
  locateFile: name => new URL(name, import.meta.url).href,
};

async function start() {
  page.links = new Links(page);
  page.store = new Store(page, page.links.isEmbedded());
  const coming = page.links.fetchFile();
  page.program = await createTarvelin(module);
  page.turns = { wake() {} }; // none before the program's start
  page.settings = new Settings();
  page.sound = new Sound(page);
  page.panes = new Panes(page);
  page.tube = new Tube(page);
  page.pads = new Pads(page);
  page.window = new PageWindow(page);
  page.menu = new Menu(page);
  page.status = new Status(page);
  page.forms = new Forms(page);
  page.dialogs = new Dialogs(page);
  page.keys = new Keys(page);
  page.files = new Files(page);
  await page.store.open();
  const file = await coming;
  const path = file && '/program/run/' + file.name;
  if (file) page.store.write(path, file.bytes, Date.now());
  page.store.startsWithLink(Boolean(file) || page.links.hasProgram());
  page.window.measure();
  page.program.callMain(path ? ['--', path] : []);
  page.turns = new Turns(page);
  if (page.links.problem) page.tell(...page.links.problem, '');
  page.store.tellProblem();
  page.turns.wake();
  requestAnimationFrame(() => setTimeout(later));
}

/// What the first picture need not wait for, and what is tried again at the next visit.
async function later() {
  try {
    await page.store.fetchExamples();
    if (!page.links.isEmbedded()) await navigator.serviceWorker?.register('service-worker.js');
  } catch (problem) {
    console.log('Not all files for visits without a network: ' + problem.message);
  }
}

start().catch(problem => {
  document.getElementById('room').textContent = 'Tarvelin cannot start: ' + problem.message;
  throw problem;
});
