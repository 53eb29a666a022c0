// The page and its program are small enough for a slow network.
// usage: node size_test.mjs SITE

import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { brotliCompressSync } from 'node:zlib';

const MOST = 350_000;
const sizes = readdirSync(process.argv[2], { withFileTypes: true })
  .filter(entry => entry.isFile())
  .map(({ name }) => [name, brotliCompressSync(readFileSync(join(process.argv[2], name))).length]);
const all = sizes.reduce((sum, [, size]) => sum + size, 0);
console.log(sizes.map(size => size.join(' ')).join('\n') + `\n${all} of at most ${MOST} bytes`);
process.exit(all > MOST ? 1 : 0);
