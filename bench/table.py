#!/usr/bin/env python3
"""Runs the benchmarks and the program itself, and writes what they need as one table.

The table goes to standard output, and as table.md and table.html into the output folder. Times are
processor time of this host, the median of several repetitions, so that other programs disturb them
little; of the program they are wall time, the shortest of several starts.
"""

import argparse
import datetime
import html
import json
import os
import pathlib
import platform
import shutil
import statistics
import subprocess
import tempfile
import time

REPETITIONS = 3
SHORTEST_RUN = 0.1  # seconds of each repetition
STARTS = 7
FRAME = 44335 / 2216750  # seconds of the machine
SECOND = 1.0

# What a row says, program, benchmark, emulated seconds of one round.
ROWS = [
    ("processor alone, flat memory", "z80", "processor_frames", FRAME),
    ("the distribution's general Z80 library, for comparison", "z80", "library_z80ex_frames", FRAME),
    ("frame without picture", "machine", "frame_of_example/colours", FRAME),
    ("… with breakpoints", "machine", "frame_with_breakpoints/colours", FRAME),
    ("frame without picture, graphics", "machine", "frame_of_example/bounce", FRAME),
    ("… with its history", "machine", "frame_with_history/paced", FRAME),
    ("… unpaced", "machine", "frame_with_history/unpaced", FRAME),
    ("frame with picture", "machine", "frame_of_example_with_picture/colours", FRAME),
    ("… giant canvas", "machine", "frame_of_example_with_picture/colours_giant", FRAME),
    ("… TV blur, text", "machine", "frame_of_example_with_picture/colours_blur", FRAME),
    ("… TV blur, graphics", "machine", "frame_of_example_with_picture/bounce_blur", FRAME),
    ("beam engine, text", "machine", "beam_frame_of_example/colours", FRAME),
    ("… with breakpoints", "machine", "frame_with_breakpoints/beam", FRAME),
    ("beam engine, graphics", "machine", "beam_frame_of_example/bounce", FRAME),
    ("line renderer alone, text", "machine", "render_full_frame/text", FRAME),
    ("line renderer alone, graphics", "machine", "render_full_frame/graphics", FRAME),
    ("TV blur alone, still picture", "machine", "composite_filter/still", FRAME),
    ("TV blur alone, every line moves", "machine", "composite_filter/moving", FRAME),
    ("scaling, single canvas", "machine", "scale_frame/single", FRAME),
    ("scaling, giant canvas", "machine", "scale_frame/giant", FRAME),
    ("presentation, single", "present", "present/single", FRAME),
    ("presentation, giant", "present", "present/giant", FRAME),
    ("presentation, giant with TV blur", "present", "present/giant_blur", FRAME),
    ("sound, all voices busy: a second", "sound", "one_second_through_the_core/busy", SECOND),
    ("sound, all voices busy, clean: a second", "sound", "one_second_through_the_core/clean_busy",
     SECOND),
    ("sound, silence: a second", "sound", "one_second_through_the_core/silent", SECOND),
    ("GIF screenshot", "machine", "gif_of_example", FRAME),
    ("state of the machine saved", "machine", "save_state", FRAME),
    ("state of the machine loaded", "machine", "load_state", FRAME),
]
AVI_PREFIX = "frame/"  # the codecs depend on the build
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def medians(program):
    """Seconds of processor time by benchmark."""
    with tempfile.NamedTemporaryFile(suffix=".json") as report:
        subprocess.run(
            [program, f"--benchmark_out={report.name}", "--benchmark_out_format=json",
             f"--benchmark_repetitions={REPETITIONS}", f"--benchmark_min_time={SHORTEST_RUN}"],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        runs = json.load(report)["benchmarks"]
    times = {}
    for run in runs:
        if run["run_type"] == "iteration":
            name = run["run_name"].split("/iterations:")[0]
            times.setdefault(name, []).append(run["cpu_time"] * UNITS[run["time_unit"]])
    return {name: statistics.median(values) for name, values in times.items()}


def duration(seconds):
    return f"{seconds * 1e6:.1f} µs" if seconds < 1e-3 else f"{seconds * 1e3:.2f} ms"


def benchmark_rows(folder):
    measured = {name: medians(folder / f"bench_{name}")
                for name in ("z80", "machine", "present", "sound", "avi")}
    rows = list(ROWS)
    for name in measured["avi"]:
        codec, width, bits = name.removeprefix(AVI_PREFIX).rsplit("/", 2)
        rows.append((f"AVI, {codec}, {width} pixels wide, {bits} bits", "avi", name, FRAME))
    table = []
    for text, program, benchmark, emulated in rows:
        seconds = measured[program][benchmark]
        table.append((text, duration(seconds), f"{emulated / seconds:,.0f}"))
    return table


def start(command, environment):
    """Wall seconds and peak memory in MiB of one start of the program up to its first frame."""
    begin = time.monotonic()
    process = subprocess.Popen(command, env=environment, cwd=environment["XDG_CONFIG_HOME"],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command} ended with {process.returncode}")
    return seconds, usage.ru_maxrss / 1024


def program_row(text, command, environment):
    starts = [start(command, environment) for _ in range(STARTS)]
    return (text, duration(min(seconds for seconds, _ in starts)),
            f"{statistics.median(memory for _, memory in starts):.1f} MiB")


def program_rows(program):
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, XDG_CONFIG_HOME=home, XDG_DATA_HOME=home,
                           QT_QPA_PLATFORM="xcb", SDL_AUDIODRIVER="dummy")
        environment.pop("WAYLAND_DISPLAY", None)
        until_first_frame = ["/w", "/t", "0"]
        yield program_row("tarvelin-headless", [f"{program}-headless", *until_first_frame],
                          environment)
        yield program_row("tarvelin --headless", [program, "--headless", *until_first_frame],
                          environment)
        if not shutil.which("Xvfb"):
            return
        read_end, write_end = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x1024x24", "-nolisten",
             "tcp", "-noreset"], pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        try:
            with os.fdopen(read_end) as number:
                environment["DISPLAY"] = ":" + number.readline().strip()
            yield program_row("desktop, on a virtual X server", [program, *until_first_frame],
                              environment)
        finally:
            server.terminate()
            server.wait()


def processor_model():
    try:
        for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or "unknown processor"


def as_text(tables):
    for headings, rows in tables:
        widths = [max(len(row[n]) for row in [headings, *rows]) for n in range(len(headings))]
        for row in [headings, *rows]:
            cells = [row[0].ljust(widths[0])]
            cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
            yield "  ".join(cells)
        yield ""


def as_markdown(tables):
    for headings, rows in tables:
        yield "| " + " | ".join(headings) + " |"
        yield "|---" + "|--:" * (len(headings) - 1) + "|"
        yield from ("| " + " | ".join(row) + " |" for row in rows)
        yield ""


def as_html(tables):
    for headings, rows in tables:
        yield "<table>"
        yield "<tr>" + "".join(f"<th>{html.escape(cell)}</th>" for cell in headings) + "</tr>"
        for row in rows:
            yield "<tr>" + "".join(f"<td>{html.escape(cell)}</td>" for cell in row) + "</tr>"
        yield "</table>"
        yield ""


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--programs", type=pathlib.Path, required=True, help="folder of bench_*")
    parser.add_argument("--tarvelin", required=True, help="the desktop program; the other one is beside it")
    parser.add_argument("--compiler", default="unknown")
    parser.add_argument("--flags", default="unknown")
    parser.add_argument("--output", type=pathlib.Path, required=True)
    arguments = parser.parse_args()

    host = [f"{processor_model()}, {os.cpu_count()} processors, {platform.system()} "
            f"{platform.machine()}",
            f"{arguments.compiler}, {arguments.flags.strip()}",
            f"measured on {datetime.date.today()}"]
    tables = [
        (("what", "takes", "emulated s per host s"), benchmark_rows(arguments.programs)),
        (("start to the first frame, and end", "takes", "peak memory"),
         list(program_rows(arguments.tarvelin))),
    ]
    for line in [*host, "", *as_text(tables)]:
        print(line)
    (arguments.output / "table.md").write_text(
        "\n".join([*(f"- {line}" for line in host), "", *as_markdown(tables)]))
    (arguments.output / "table.html").write_text(
        "\n".join(["<ul>", *(f"<li>{html.escape(line)}</li>" for line in host), "</ul>", "",
                   *as_html(tables)]))


if __name__ == "__main__":
    main()
