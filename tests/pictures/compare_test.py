"""Tests of the comparison of pictures, with generated pictures that differ by known amounts."""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import compare  # noqa: E402  (the path comes first)

SIDE = 20  # 400 pixels: 0.5 % of them are two


class Comparison(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folders = [pathlib.Path(folder.name) / name for name in ("one", "other")]
        for place in self.folders:
            place.mkdir()
        # Two colours, because a picture of one colour counts as empty. The first byte is white space, which the reader
        # must not skip.
        self.pixels = bytearray(b"\n\x20\x30" + b"\x64\x64\x64" * (SIDE * SIDE - 1))

    def write(self, index, pixels, width=SIDE, height=SIDE):
        (self.folders[index] / "a.ppm").write_bytes(b"P6\n%d %d\n255\n" % (width, height) + bytes(pixels))

    def changed(self, count, by):
        pixels = bytearray(self.pixels)
        for i in range(1, count + 1):
            pixels[3 * i + 1] += by
        return pixels

    def failures(self):
        return compare.compare_folders(self.folders, {"a.ppm"})

    def failures_with(self, other):
        self.write(0, self.pixels)
        self.write(1, other)
        return self.failures()

    def test_equal_pictures_pass(self):
        self.assertEqual(self.failures_with(self.pixels), 0)

    def test_any_number_of_small_differences_passes(self):
        self.assertEqual(self.failures_with(self.changed(SIDE * SIDE - 1, by=8)), 0)

    def test_larger_differences_in_half_a_per_cent_pass(self):
        self.assertEqual(self.failures_with(self.changed(2, by=9)), 0)

    def test_larger_differences_in_one_pixel_more_fail(self):
        self.assertEqual(self.failures_with(self.changed(3, by=9)), 1)

    def test_darker_pixels_count_like_brighter_ones(self):
        self.assertEqual(self.failures_with(self.changed(3, by=-9)), 1)

    def test_other_sizes_fail(self):
        self.write(0, self.pixels)
        self.write(1, self.pixels, width=2 * SIDE, height=SIDE // 2)
        self.assertEqual(self.failures(), 1)

    def test_cut_pictures_fail(self):
        self.assertEqual(self.failures_with(self.pixels[:-1]), 1)

    def test_empty_pictures_fail_even_when_equal(self):
        self.pixels = bytearray(b"\x10\x20\x30" * (SIDE * SIDE))
        self.assertEqual(self.failures_with(self.pixels), 1)

    def test_missing_pictures_fail(self):
        self.write(0, self.pixels)
        self.assertEqual(self.failures(), 1)

    def test_multisampled_pictures_that_are_not_fail(self):
        for name, pixels in ("x-multisampled", self.pixels), ("x-plain", self.pixels), ("y-plain", self.pixels):
            (self.folders[0] / (name + ".ppm")).write_bytes(b"P6\n%d %d\n255\n" % (SIDE, SIDE) + bytes(pixels))
        (self.folders[0] / "y-multisampled.ppm").write_bytes(b"P6\n")
        self.assertEqual(compare.check_sampling(self.folders[0]), 1)

    def test_a_program_that_is_not_built_fails(self):
        self.assertEqual(compare.main([str(self.folders[0]), str(self.folders[0] / "none"), "headless", "x11"]), 1)


if __name__ == "__main__":
    unittest.main()
