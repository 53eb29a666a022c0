#!/usr/bin/env python3
"""What the test of the window under Wine looks at: films, screens and the registry.

usage: look.py film FILE               its formats and chunks, in order, as text
       look.py picture SCREEN PICTURE  both PPM: is the picture on the screen, pixel for pixel?
       look.py settings TABLE COLUMN   compares what "reg export" has written, on the standard input
"""
import hashlib
import re
import struct
import sys


def chunks(data, begin, end):
    """(id, kind of list, begin of the contents, their end)"""
    while begin + 8 <= end:
        name, size = struct.unpack_from("<4sI", data, begin)
        is_list = name in (b"RIFF", b"LIST")
        yield name, data[begin + 8:begin + 12] if is_list else b"", begin + (12 if is_list else 8), begin + 8 + size
        begin += 8 + size + size % 2


def film(path):
    data = open(path, "rb").read()

    def look(begin, end):
        for name, kind, first, last in chunks(data, begin, end):
            if kind in (b"AVI ", b"hdrl", b"strl", b"movi", b"rec "):
                look(first, last)
            elif name == b"strh":
                scale, rate = struct.unpack_from("<2I", data, first + 20)
                print("stream", data[first:first + 4].decode(), rate / scale)
            elif name == b"strf":
                print("format", data[first:last].hex())
            # The library's first picture is at place 1, and an empty one before it.
            elif name[2:] in (b"db", b"dc", b"wb") and last > first:
                print(name[:2].decode(), "sound" if name[2:] == b"wb" else "picture",
                      last - first, hashlib.md5(data[first:last]).hexdigest())

    look(0, len(data))


def ppm(path):
    data = open(path, "rb").read()
    _, width, height, _ = data.split(maxsplit=4)[:4]
    width, height = int(width), int(height)
    pixels = data[-3 * width * height:]
    return [pixels[3 * width * row:3 * width * (row + 1)] for row in range(height)]


def picture(screen, wanted):
    screen, wanted = ppm(screen), ppm(wanted)
    middle = len(wanted) // 2
    for top, row in enumerate(screen[middle:len(screen) - len(wanted) + middle]):
        left = row.find(wanted[middle])
        if left >= 0 and all(line[left:].startswith(row) for line, row in zip(screen[top:], wanted)):
            return
    sys.exit("the picture is not on the screen")


def settings(table, column):
    found = dict(re.findall(r'^"(\w+)"=(.*?)\r?$', sys.stdin.read(), re.M))
    for line in open(table):
        name, kind, *values = line.split()
        if not kind.startswith("REG"):
            continue
        value = values[int(column)]
        expected = None if value == "-" else f"dword:{int(value):08x}" if kind == "REG_DWORD" else value
        if found.get(name) != expected:
            sys.exit(f"{name} is {found.get(name)}, not {expected}")


{"film": film, "picture": picture, "settings": settings}[sys.argv[1]](*sys.argv[2:])
