// The page as its users have it: in Chromium, from a plain server and a sub-folder.
// usage: node page_test.mjs SITE PROJECT EXAMPLES CHROMIUM; TEST_BINARY_DIR has playwright-core.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { deflateRawSync } from 'node:zlib';
import { Site } from './site.mjs';

const [site, project, examples, executablePath] = process.argv.slice(2);
const work = process.env.TEST_BINARY_DIR;
const { chromium } = createRequire(join(work, 'package.json'))('playwright-core');

// The whole screen of this size is the machine's picture, twice as large.
const TWICE = { width: 768, height: 576 };
const BARS = 60; // about, of menu and status bar

const profile = mkdtempSync(join(tmpdir(), 'page'));
const server = await new Site({ '/tarvelin/': site, '/project/': project, '/examples/': examples }).start();
const home = server.url('/tarvelin/');
const complaints = [];

const viewport = { width: 900, height: 700 };
const browser = {
  executablePath,
  args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
         '--disable-background-networking', '--disable-component-update'],
};
const open = () => chromium.launchPersistentContext(profile, { ...browser, viewport });

async function pageOf(context, address = home) {
  const page = await context.newPage();
  page.setDefaultTimeout(20000);
  page.on('pageerror', problem => complaints.push(problem.message));
  page.on('console', line => line.type() === 'error' && complaints.push(line.text()));
  page.on('request', ({ url }) => {
    if (/^https?:/.test(url) && !url.startsWith(server.url('/'))) complaints.push('asks ' + url);
  });
  await page.addInitScript(() => {
    const { prototype } = CanvasRenderingContext2D;
    const { putImageData } = prototype;
    prototype.putImageData = function (...given) {
      if (this.canvas.id === 'picture') performance.mark('picture');
      return putImageData.apply(this, given);
    };
  });
  await page.goto(address);
  return page;
}

const screen = page => page.locator('#readable').textContent();
async function shows(page, text, seconds = 20) {
  const end = Date.now() + seconds * 1000;
  while ((await screen(page)).search(text) < 0) {
    assert(Date.now() < end, `"${text}" does not appear on\n${await screen(page)}`);
    await page.waitForTimeout(100);
  }
}

async function choose(page, ...names) {
  for (const [place, name] of names.entries()) {
    const found = page.locator('#menu').locator('[role^=menuitem]:visible').filter({ hasText: name }).first();
    if (place && place < names.length - 1) await found.hover();
    await found.click();
  }
}

const turbo = page => choose(page, 'Machine', 'Time', 'Turbo');
const closeWelcome = page => page.locator('.box').getByRole('button', { name: 'Close' }).first().click();

/// The picture equals the stored one, each pixel of which has become a square of the page's.
async function equals(page, golden, seconds = 20) {
  const address = server.url(`/project/tests/machine/golden/${golden}.gif`);
  const room = await page.locator('#room').boundingBox();
  const { width, height } = page.viewportSize();
  await page.setViewportSize({ width: width + TWICE.width - room.width, height: height + TWICE.height - room.height });
  const differences = () => page.evaluate(async ([source, { width, height }]) => {
    const image = new Image();
    image.src = source;
    await image.decode();
    const canvas = new OffscreenCanvas(width, height).getContext('2d');
    canvas.imageSmoothingEnabled = false;
    canvas.drawImage(image, 0, 0, width, height);
    const wanted = new Uint32Array(canvas.getImageData(0, 0, width, height).data.buffer);
    const picture = document.getElementById('picture');
    const seen = new Uint32Array(picture.getContext('2d').getImageData(0, 0, width, height).data.buffer);
    return wanted.reduce((count, pixel, place) => count + (pixel !== seen[place]), 0);
  }, [address, TWICE]);
  for (const end = Date.now() + seconds * 1000; ;) {
    const count = await differences();
    if (!count) return;
    assert(Date.now() < end, `${count} pixels differ from ${golden}`);
    await page.waitForTimeout(200);
  }
}

/// Drops files onto the page, as from the desktop.
async function drop(page, ...paths) {
  const files = paths.map(path => [path.split('/').pop(), readFileSync(path).toString('base64')]);
  await page.evaluate(given => {
    const data = new DataTransfer();
    for (const [name, bytes] of given) {
      data.items.add(new File([Uint8Array.from(atob(bytes), letter => letter.charCodeAt(0))], name));
    }
    const room = document.getElementById('room');
    for (const kind of ['dragenter', 'dragover', 'drop']) {
      room.dispatchEvent(new DragEvent(kind, { dataTransfer: data, bubbles: true, cancelable: true }));
    }
  }, files);
}

/// On a keyboard of the United States.
const SHIFTED = { '*': 'Shift+Digit8', '"': 'Shift+Quote', '\n': 'Enter' };
const type = async (page, text) => {
  await page.locator('#picture').focus();
  for (const letter of text) await page.keyboard.press(SHIFTED[letter] ?? letter, { delay: 50 });
};

const link = (kind, bytes) => `${home}#${kind}=${deflateRawSync(bytes).toString('base64url')}`;

let context;
let page;
let visitors; // a browser whose pages keep nothing from each other
const visit = async (address, options = { viewport }) =>
  pageOf(await visitors.newContext(options), address);
const steps = {
  'the first picture comes within a second of the program': async () => {
    context = await open();
    page = await pageOf(context);
    await shows(page, 'READY');
    const [arrived, drawn] = await page.evaluate(() => [
      performance.getEntriesByType('resource').find(({ name }) => name.endsWith('.wasm')).responseEnd,
      performance.getEntriesByName('picture')[0].startTime]);
    console.log(`  ${Math.round(drawn - arrived)} ms`);
  },

  'a program is typed and runs': async () => {
    await closeWelcome(page);
    await type(page, '10 print 6*7\nrun\n');
    await shows(page, /10 PRINT 6.7/); // the place of the machine's bracket
    await choose(page, 'Options', 'Symbolic keymapping');
    await type(page, '10 print 6*7\nrun\n');
    await shows(page, ' 42');
  },

  'the menus are those of the desktop': async () => {
    const wanted = readFileSync(join(project, 'tests/host/menu.txt'), 'utf8').split('\n')
      .map(line => line.replace(/^ *\d+\*? /, '').split('|')[0].replace(/&/g, '').trim())
      .filter(label => label && !/^(-|Drive)/.test(label));
    const seen = await page.evaluate(() => {
      const all = entries => entries.flatMap(({ text, children }) => [text, ...all(children)]);
      return all(tarvelin.menu.menus).map(text => text.split('\t')[0].replace(/&/g, '').trim());
    });
    assert.deepEqual(wanted.filter(label => !seen.includes(label)), ['Debugger window']);
    for (const title of await page.locator('#menu > button').all()) {
      await title.click();
      assert(await page.getByRole('menu').count());
      await page.keyboard.press('Escape');
    }
  },

  'an example runs, to the pixel': async () => {
    await turbo(page);
    await choose(page, 'File', 'Examples', 'Night Raiders');
    await equals(page, 'raiders');
    await turbo(page);
  },

  'a cassette that is dropped': async () => {
    await drop(page, join(examples, 'colours.cas'));
    await shows(page, 'SIXTEEN COLOURS', 40);
  },

  'a state is kept and loaded': async () => {
    await choose(page, 'Machine', 'Restart');
    await shows(page, 'READY');
    await type(page, 'print 1234*5\n');
    await shows(page, ' 6170');
    await page.keyboard.press('Alt+s');
    await choose(page, 'Machine', 'Restart');
    await shows(page, 'MEM SIZE');
    await page.keyboard.press('Alt+l');
    await shows(page, ' 6170');
  },

  'back in time': async () => {
    await type(page, 'cls\n');
    await page.waitForTimeout(1500);
    await page.keyboard.press('Alt+r');
    const bar = page.getByRole('slider');
    for (let n = 0; n < 40 && !(await screen(page)).includes(' 6170'); ++n) {
      await page.keyboard.press('ArrowLeft');
      await page.waitForTimeout(60);
    }
    await shows(page, ' 6170');
    await page.keyboard.press('Escape');
  },

  'a disk is written, and found again after the page was killed': async () => {
    await drop(page, join(examples, 'bootdisk.dsk'));
    await page.getByRole('button', { name: 'Yes' }).click(); // the machine gets the disk ROM
    await shows(page, /HELLO[^]*READY/);
    await type(page, '10 print 6*7\nsave"kept"\n');
    await shows(page, /SAVE"KEPT" *\s+READY/);
    await page.waitForTimeout(1500); // of which the page has one second
    execFileSync('pkill', ['-KILL', '-f', profile]);
    await context.close().catch(() => {});
    context = await open();
    page = await pageOf(context);
    await shows(page, /SAVE"KEPT" *\s+READY/); // where it was left
    const [download] = await Promise.all([
      page.waitForEvent('download'), choose(page, 'File', 'Download', 'Drive :0')]);
    assert(readFileSync(await download.path()).includes('KEPT    '));
  },

  'a program in a link runs within two seconds': async () => {
    const from = Date.now();
    visitors = await chromium.launch(browser);
    const visitor = await visit(link('basic', '10 PRINT 6*1000+28:GOTO 10'));
    await shows(visitor, ' 6028');
    console.log(`  ${Date.now() - from} ms`);
    await visitor.context().close();
    const other = await visit(home + '?run=examples/raiders.bas');
    await turbo(other);
    await equals(other, 'raiders');
    await other.context().close();
  },

  'replays do the same as where they were recorded': async () => {
    for (const [name, frames] of Object.entries({ catch: 3303, sticks: 2203, typing: 2753 })) {
      const address = link('replay', readFileSync(join(project, `tests/machine/replays/${name}.tvr`)));
      const visitor = await visit(address);
      await shows(visitor, /\w/);
      await visitor.keyboard.down('F7'); // which does not end it, as a menu does
      await visitor.getByText(`The replay has ended at frame ${frames}: the machine is yours`).waitFor();
      await visitor.context().close();
    }
  },

  'offline': async () => {
    await page.evaluate(() => navigator.serviceWorker.ready);
    await server.stop();
    await page.reload();
    await choose(page, 'File', 'Examples', 'Night Raiders');
    await shows(page, 'SPACE STARTS');
    server.server.listen(server.port, '127.0.0.1');
  },

  'a minute of sound without a gap': async () => {
    await choose(page, 'File', 'Examples', 'Music');
    // A minute at a stretch; a busy computer gets another try.
    const gaps = () => page.evaluate(() => tarvelin.sound.underruns());
    let before = await gaps();
    for (let seconds = 0, tries = 0; seconds < 60; seconds += 20) {
      await page.waitForTimeout(20000);
      const now = await gaps();
      if (now === before) continue;
      assert(++tries < 5, `${now} gaps`);
      before = now;
      seconds = -20;
    }
    assert.equal(await page.evaluate(() => tarvelin.sound.context.state), 'running');
  },

  'a phone': async () => {
    await context.close();
    page = await visit(home, { viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true,
                               deviceScaleFactor: 3 });
    await shows(page, 'READY');
    await closeWelcome(page);
    for (const key of ['P', 'R', 'I', 'N', 'T', '7', 'RETURN']) {
      const button = page.locator('#keyboard_buttons').getByRole('button', { name: new RegExp('^' + key + '\\b') }).first();
      const { x, y, width, height } = await button.boundingBox();
      await page.touchscreen.tap(x + width / 2, y + height / 2);
      await page.waitForTimeout(120);
    }
    await shows(page, / 7 /);
    await page.getByRole('button', { name: 'Menu' }).tap();
    await page.locator('[role^=menuitem]').filter({ hasText: 'Machine' }).first().tap();
    await page.locator('[role^=menuitem]').filter({ hasText: 'Restart' }).first().tap();
    await shows(page, 'MEM SIZE');
  },
};

let failed = false;
for (const [name, step] of Object.entries(steps)) {
  const start = Date.now();
  try {
    await step();
    assert.deepEqual(complaints, []);
    console.log(`ok: ${name} (${((Date.now() - start) / 1000).toFixed(1)} s)`);
  } catch (problem) {
    failed = true;
    console.log(`FAILED: ${name}\n${problem.stack}\ncomplaints: ${complaints.join('\n')}`);
    for (const [n, one] of [...(context?.pages() ?? []), ...(visitors?.contexts() ?? []).flatMap(one => one.pages())].entries()) await one.screenshot({ path: join(work, `failed${n}.png`) }).catch(() => {});
    break;
  }
}
await context?.close().catch(() => {});
await visitors?.close();
await server.stop();
rmSync(profile, { recursive: true, force: true });
process.exit(failed ? 1 : 0);
