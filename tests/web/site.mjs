// A web server on loopback, which hands out some folders and nothing else.

import { createReadStream, existsSync, statSync } from 'node:fs';
import { createServer } from 'node:http';
import { extname, join, normalize } from 'node:path';

const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm',
                '.png': 'image/png', '.svg': 'image/svg+xml', '.webmanifest': 'application/manifest+json' };

export class Site {
  constructor(folders) {
    this.folders = folders; // by what their addresses begin with
    this.server = createServer((request, response) => this.answer(request, response));
  }

  start(port = 0) {
    return new Promise(done => this.server.listen(port, '127.0.0.1', () => {
      this.port = this.server.address().port;
      done(this);
    }));
  }

  stop() {
    this.server.closeAllConnections();
    return new Promise(done => this.server.close(done));
  }

  url(path) { return `http://127.0.0.1:${this.port}${path}`; }

  answer(request, response) {
    const { pathname } = new URL(request.url, 'http://host');
    if (pathname === '/favicon.ico') return response.writeHead(204).end(); // no page here has one
    const start = Object.keys(this.folders).find(name => pathname.startsWith(name));
    let file = start && join(this.folders[start], normalize('/' + pathname.slice(start.length)));
    if (file && existsSync(file) && statSync(file).isDirectory()) file = join(file, 'index.html');
    if (!file || !existsSync(file)) return response.writeHead(404).end();
    response.writeHead(200, { 'Content-Type': TYPES[extname(file)] || 'application/octet-stream' });
    createReadStream(file).pipe(response);
  }
}
