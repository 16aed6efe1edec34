#!/usr/bin/python3
"""The icon in all its forms: each decodes, has the size that its place wants, and shows the same picture."""

import os
import struct
import sys
import unittest

sys.dont_write_bytecode = True

from pictures import (  # noqa: E402
    PLANES_TYPES, PNG_TYPES, icns, icns_chunks, png_chunks, premultiplied, read_planes, read_png)  # fmt: skip

FOLDER = os.path.dirname(os.path.realpath(__file__))
# Reading pixels one by one takes long here; the two above are compared as files.
LARGEST_READ = 256


def file(name):
    with open(os.path.join(FOLDER, name), "rb") as content:
        return content.read()


def header(png):
    return struct.unpack_from(">II", next(png_chunks(png))[1])


def alpha(pixels, size, column, row):
    return pixels[4 * (row * size + column) + 3]


def shrunk(pixels, size):
    """The mean of each of 16 x 16 fields, premultiplied so that what is hidden does not count."""
    pixels, step = premultiplied(pixels), size // 16
    return [
        sum(pixels[4 * (y * size + x) + channel] for y in range(top, top + step) for x in range(left, left + step)) / step**2
        for top in range(0, size, step) for left in range(0, size, step) for channel in range(4)
    ]  # fmt: skip


class Icon(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.chunks = icns_chunks(file("tidewell.icns"))

    def pictures(self):
        """(name, size, pixels) of each picture of the container that is read as pixels."""
        for kind, size in PLANES_TYPES.items():
            yield kind, size, read_planes(self.chunks[kind], size)
        for kind, size in PNG_TYPES.items():
            if size <= LARGEST_READ:
                yield kind, size, read_png(self.chunks[kind])[2]

    def test_the_container_has_every_size_for_both_kinds_of_screen_and_nothing_else(self):
        self.assertEqual(set(self.chunks), {*PLANES_TYPES, *PNG_TYPES})
        for kind, size in PNG_TYPES.items():
            self.assertEqual(header(self.chunks[kind]), (size, size), kind)

    def test_the_container_holds_the_files_beside_it(self):
        for kind, size in PNG_TYPES.items():
            self.assertEqual(self.chunks[kind], file(f"tidewell-{size}.png"), kind)
        for kind, size in PLANES_TYPES.items():
            self.assertEqual(read_planes(self.chunks[kind], size), read_png(file(f"tidewell-{size}.png"))[2], kind)

    def test_its_corners_are_clear_and_its_middle_is_not(self):
        for kind, size, pixels in self.pictures():
            for column, row in ((0, 0), (size - 1, 0), (0, size - 1), (size - 1, size - 1)):
                self.assertEqual(alpha(pixels, size, column, row), 0, f"{kind} at {column}, {row}")
            self.assertEqual(alpha(pixels, size, size // 2, size // 2), 255, kind)

    def test_it_stands_on_the_grid_of_macos_icons(self):
        pixels = read_png(file("tidewell-256.png"))[2]
        shown = [column for column in range(256) if alpha(pixels, 256, column, 128) >= 128]
        self.assertEqual((shown[0], shown[-1]), (25, 230))  # 100 and 924 of 1024

    def test_every_size_shows_the_same_picture(self):
        whole = shrunk(read_png(file("tidewell-256.png"))[2], 256)
        for kind, size, pixels in self.pictures():
            differences = [abs(one - other) for one, other in zip(whole, shrunk(pixels, size))]
            self.assertLess(sum(differences) / len(differences), 4, kind)

    def test_the_window_gets_the_pixels_of_the_files(self):
        for size in (16, 32, 64):
            self.assertEqual(file(f"window-{size}.rgba"), premultiplied(read_png(file(f"tidewell-{size}.png"))[2]))

    def test_a_damaged_container_or_picture_is_refused(self):
        whole = file("tidewell.icns")
        with self.assertRaises(ValueError):
            icns_chunks(whole[:-1])
        with self.assertRaises(ValueError):
            icns_chunks(whole[:12] + b"\xff" + whole[13:])
        picture = bytearray(file("tidewell-32.png"))
        picture[60] ^= 1
        with self.assertRaises(ValueError):
            read_png(bytes(picture))
        with self.assertRaises(ValueError):
            read_planes(self.chunks["ic04"], 32)

    def test_packing_planes_keeps_runs_of_every_length(self):
        pixels = b"".join(bytes((n % 7, n // 200, n // 3 & 255, 255)) for n in range(32 * 32))
        png = _png(pixels, 32)
        pngs = {size: png for size in (*PLANES_TYPES.values(), *PNG_TYPES.values())}
        self.assertEqual(read_planes(icns_chunks(icns(pngs))["ic05"], 32), pixels)


def _png(pixels, size):
    import zlib

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    rows = b"".join(b"\0" + pixels[start : start + 4 * size] for start in range(0, len(pixels), 4 * size))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))  # fmt: skip


if __name__ == "__main__":
    program = unittest.main(verbosity=2, exit=False)
    failed = len(program.result.failures) + len(program.result.errors)
    print(f"{program.result.testsRun - failed} passed, {failed} failed")
    sys.exit(bool(failed))
