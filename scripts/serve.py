#!/usr/bin/env python3
"""Hands out a folder to browsers on this computer, and prints the address.

usage: scripts/serve.py FOLDER [PORT]

Of the ports from PORT on, 8080 without it, the first one that is free is taken. Ctrl-C ends."""

import functools
import http.server
import sys

MORE_PORTS = 50


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {
        **http.server.SimpleHTTPRequestHandler.extensions_map,
        ".js": "text/javascript",
        ".wasm": "application/wasm",
        ".webmanifest": "application/manifest+json",
    }

    def end_headers(self):
        # The browser asks whether a file has changed; a new build is seen at once.
        self.send_header("Cache-Control", "no-cache")
        super().end_headers()

    def log_message(self, format, *arguments):
        pass


def server(folder, first_port):
    handler = functools.partial(Handler, directory=folder)
    for port in range(first_port, first_port + MORE_PORTS):
        try:
            return http.server.ThreadingHTTPServer(("127.0.0.1", port), handler)
        except OSError as error:
            problem = error
    raise problem


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    try:
        with server(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 8080) as web:
            print(f"Tarvelin is at http://127.0.0.1:{web.server_port}/ - Ctrl-C ends", flush=True)
            web.serve_forever()
    except KeyboardInterrupt:
        pass


main()
