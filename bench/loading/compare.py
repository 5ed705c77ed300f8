#!/usr/bin/env python3
"""Times karv-view beside f3d, each as one process that opens a file and writes one picture.

    compare.py BUILD_FOLDER [--rounds N] [FILE ...]

The files that are named, or those that loading_files writes. The programs take turns; the table has the medians of the
rounds.
"""
import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

SIZE = (1024, 768)


def start_display():
    """Starts an X server, because f3d draws on one. Returns its process and the name of the display."""
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
        pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as pipe:
        number = pipe.readline().strip()
    if not number:
        sys.exit("compare.py: Xvfb does not start")
    return server, ":" + number


def run(command, display, picture):
    """Returns the seconds that the process took, and those of the processor, with the processes it waited for."""
    picture.unlink(missing_ok=True)
    environment = {**os.environ, "DISPLAY": display}
    begin = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0 or not picture.exists():
        return None
    return wall, usage.ru_utime + usage.ru_stime


def medians(turns):
    return [statistics.median(figures) for figures in zip(*turns)] if None not in turns else None


def compare(viewer, path, rounds, display, folder):
    picture = pathlib.Path(folder, "picture.png")
    width, height = SIZE
    commands = [[str(viewer), "--picture", str(picture), "--size", f"{width}x{height}", str(path)],
                ["f3d", "--dry-run", f"--resolution={width},{height}", f"--output={picture}", str(path)]]
    turns = [[], []]
    for _ in range(rounds):
        for command, figures in zip(commands, turns):
            figures.append(run(command, display, picture))
    return [medians(figures) for figures in turns]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("files", nargs="*", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=3)
    options = parser.parse_intermixed_args()
    missing = [program for program in ("f3d", "Xvfb") if shutil.which(program) is None]
    if missing:
        sys.exit(f"compare.py: nothing to compare with: {' and '.join(missing)} is not installed")
    generated = options.build / "loading"
    if not options.files and subprocess.run([options.build / "loading_files", generated]).returncode != 0:
        sys.exit(1)
    server, display = start_display()
    print(f"{'file':<24}{'karv-view':>10}{'f3d':>9}{'ratio':>8}   {'processor':>10}{'f3d':>9}{'ratio':>8}")
    try:
        with tempfile.TemporaryDirectory() as folder:
            for path in options.files or sorted(generated.iterdir()):
                ours, theirs = compare(options.build / "karv-view", path, options.rounds, display, folder)
                if ours is None or theirs is None:
                    print(f"{path.name:<24}{'karv-view' if ours is None else 'f3d'} draws no picture of it")
                    continue
                print(f"{path.name:<24}{ours[0]:>8.2f} s{theirs[0]:>7.2f} s{ours[0] / theirs[0]:>8.2f}   "
                      f"{ours[1]:>8.2f} s{theirs[1]:>7.2f} s{ours[1] / theirs[1]:>8.2f}", flush=True)
    finally:
        server.terminate()
        server.wait()


if __name__ == "__main__":
    main()
