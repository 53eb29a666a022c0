"""A sound device for SDL's disk driver: takes 48000 samples a second from a pipe, by the clock.

usage: sound_device.py PIPE

At the end of the pipe it prints how many seconds it played, how often the program was late with
the next 10 ms, and the gaps: silences of half a millisecond and more. A program that has not
written in time leaves them; what it plays must have none of its own.
"""

import fcntl
import os
import re
import select
import sys
import time

RATE = 48000
BYTES = 2
BLOCK = RATE // 100 * BYTES
LATE = 0.05  # seconds
START_UP = 2 * RATE * BYTES  # until the program plays
GAP = re.compile(rb"\0{%d,}" % (RATE // 2000 * BYTES))

# The short queue of a device, which can only be made while the pipe is empty.
descriptor = os.open(sys.argv[1], os.O_RDONLY | os.O_NONBLOCK)
fcntl.fcntl(descriptor, fcntl.F_SETPIPE_SZ, 4096)
select.select([descriptor], [], [])
os.set_blocking(descriptor, True)

with open(descriptor, "rb", buffering=0) as pipe:
    played = bytearray()
    late = 0
    due = time.monotonic()
    while True:
        block = pipe.read(BLOCK)
        while block and len(block) < BLOCK:
            more = pipe.read(BLOCK - len(block))
            if not more:
                break
            block += more
        if not block:
            break
        played += block
        due += len(block) / (RATE * BYTES)
        now = time.monotonic()
        if now - due > LATE:
            late += len(played) > START_UP
            due = now
        time.sleep(max(0.0, due - now))

sound = bytes(played[START_UP:])
gaps = [(match.start() + START_UP, len(match.group())) for match in GAP.finditer(sound)]
print(f"seconds={len(played) / RATE / BYTES:.2f} late={late} gaps={len(gaps)}")
for position, length in gaps[:10]:
    print(f"  gap at {position / RATE / BYTES:.3f} s: {length / RATE / BYTES * 1000:.1f} ms")
