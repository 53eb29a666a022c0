// Starts the program in the page and connects the two.

import createTarvelin from './tarvelin.js';
import { Dialogs } from './dialogs.js';
import { Keys } from './keys.js';
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

const page = {};
globalThis.tarvelin = page;
const module = {
  page,
  arguments: [],
  noInitialRun: true,
  locateFile: name => new URL(name, import.meta.url).href,
};

async function start() {
  page.program = await createTarvelin(module);
  page.turns = new Turns(page);
  page.settings = new Settings();
  page.sound = new Sound(page);
  page.store = new Store(page);
  page.panes = new Panes(page);
  page.tube = new Tube(page);
  page.pads = new Pads(page);
  page.window = new PageWindow(page);
  page.menu = new Menu(page);
  page.status = new Status(page);
  page.dialogs = new Dialogs(page);
  page.keys = new Keys(page);
  await page.store.open();
  page.window.measure();
  page.program.callMain(module.arguments);
  page.turns.wake();
}

start().catch(problem => {
  document.getElementById('room').textContent = 'Tarvelin cannot start: ' + problem.message;
  throw problem;
});
