"""Draws the pictures of control_pictures in several ways and compares each way with every other.

    compare.py FOLDER NATIVE WAY... [-- COMMAND...]

A way is the name of a window system that the program NATIVE must use (headless, x11), or "windows". For "windows" COMMAND
is run, which starts the program that was built for Windows. The pictures stay in FOLDER, below the way's name.

Ends with status 1 if two pictures differ in size, if more than 0.5 % of their pixels differ by more than 8 of 255, if a
picture is empty or missing, or if a multisampled picture equals the one without multisampling.
"""

import itertools
import os
import pathlib
import shutil
import subprocess
import sys

TOLERANCE = 8  # of 255, for each channel
MAX_DIFFERENT = 0.005  # of the pixels


class Mismatch(Exception):
    """A picture is unusable, or two pictures differ too much."""


def read(path):
    """The width, the height and the pixels, three bytes each, of a binary PPM file."""
    header, _, pixels = path.read_bytes().partition(b"\n255\n")
    if not header.startswith(b"P6\n"):
        raise Mismatch(f"{path}: is no picture")
    _, width, height = header.split()
    if len(pixels) != int(width) * int(height) * 3:
        raise Mismatch(f"{path}: is cut short")
    return int(width), int(height), pixels


def colors(pixels):
    return zip(pixels[0::3], pixels[1::3], pixels[2::3])


def share_of_differences(a, b):
    """The share of the pixels of two files that differ, and the largest difference of a channel."""
    (*size_a, pixels_a), (*size_b, pixels_b) = read(a), read(b)
    if size_a != size_b:
        raise Mismatch(f"{a} and {b}: {size_a} and {size_b} pixels")
    for path, pixels in (a, pixels_a), (b, pixels_b):
        if len(set(colors(pixels))) < 2:
            raise Mismatch(f"{path}: is empty")
    worst = [max(map(abs, (p - q for p, q in zip(one, other)))) for one, other in zip(colors(pixels_a), colors(pixels_b))]
    return sum(difference > TOLERANCE for difference in worst) / len(worst), max(worst)


def compare(a, b):
    """A line that describes how two files differ; raises Mismatch if they differ too much."""
    share, worst = share_of_differences(a, b)
    line = f"{a.name}, {a.parent.name} and {b.parent.name}: {share:.3%} of the pixels differ, the worst by {worst}"
    if share > MAX_DIFFERENT:
        raise Mismatch(line)
    return line


def compare_folders(folders, names):
    """Compares every picture of every two folders; returns the number of failed comparisons."""
    failures = 0
    for name in sorted(names):
        for a, b in itertools.combinations(folders, 2):
            try:
                print(compare(a / name, b / name))
            except (Mismatch, OSError, ValueError) as error:
                failures += 1
                print(f"FAILED: {error}")
    return failures


def check_sampling(folder):
    """Returns the number of multisampled pictures of a folder that equal the ones without multisampling."""
    failures = 0
    for path in sorted(folder.glob("*-multisampled.ppm")):
        plain = path.with_name(path.name.replace("-multisampled", "-plain"))
        if plain.is_file() and path.read_bytes() == plain.read_bytes():
            failures += 1
            print(f"FAILED: {path}: is not multisampled")
    return failures


def draw(folder, way, native, windows):
    """Empties the folder and draws the pictures of one way into it."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    suppressions = pathlib.Path(__file__).resolve().parent.parent / "leak_suppressions.txt"
    environment = {
        "LSAN_OPTIONS": f"suppressions={suppressions}:print_suppressions=0",
        **os.environ,
        "KARV_TEST_BACKEND": way,
    }
    command = windows if way == "windows" else [str(native)]
    subprocess.run([*command, str(folder)], env=environment, check=True)


def main(arguments):
    separator = arguments.index("--") if "--" in arguments else len(arguments)
    folder, native, *ways = arguments[:separator]
    if not os.access(native, os.X_OK):
        print(f"FAILED: {native}: is not built; the command is: tools/build linux-sanitize control_pictures")
        return 1
    folders = [pathlib.Path(folder) / way for way in ways]
    for way, place in zip(ways, folders):
        draw(place, way, native, arguments[separator + 1:])
    names = {path.name for place in folders for path in place.iterdir()}
    if not names:
        print("FAILED: there are no pictures")
        return 1
    failures = compare_folders(folders, names) + sum(map(check_sampling, folders))
    print(f"{len(names)} pictures by {len(ways)} ways, {failures} comparisons failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
