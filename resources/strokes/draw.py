#!/usr/bin/env python3
"""Draws the shipped stroke bundles into this folder. The same output every time."""
import math
import os
import random
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write(name, text):
    with open(os.path.join(HERE, name + ".stroke"), "w") as file:
        file.write(text)


def numbers(*values):
    return " ".join(f"{v:.3f}".rstrip("0").rstrip(".").replace("-0 ", "0 ") for v in values)


def write_png(name, width, height, gray):
    """`gray(x, y)` answers 0 for ink to 255 for paper."""
    rows = b"".join(b"\0" + bytes(gray(x, y) for x in range(width)) for y in range(height))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    with open(os.path.join(HERE, name), "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
                   + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def noise(seed, columns, rows):
    """Smooth noise in [0, 1] over the unit square, periodic along x."""
    generator = random.Random(seed)
    grid = [[generator.random() for _ in range(columns)] for _ in range(rows + 1)]

    def smooth(t):
        return t * t * (3 - 2 * t)

    def at(x, y):
        u, v = x * columns, y * rows
        i, j = int(u), min(int(v), rows - 1)
        s, t = smooth(u - i), smooth(v - j)
        a, b = grid[j][i % columns], grid[j][(i + 1) % columns]
        c, d = grid[j + 1][i % columns], grid[j + 1][(i + 1) % columns]
        return (a * (1 - s) + b * s) * (1 - t) + (c * (1 - s) + d * s) * t

    return at


def texture(name, seed, width, height, coarse, fine, strength, rough):
    """Ink that lets the paper through where the noise is low, with a rough edge."""
    first, second, edge = noise(seed, *coarse), noise(seed + 1, *fine), noise(seed + 2, coarse[0] * 2, 2)

    def gray(x, y):
        u, v = (x + 0.5) / width, (y + 0.5) / height
        grain = 0.55 * first(u, v) + 0.45 * second(u, v)
        away = abs(v - 0.5) * 2
        border = 1 - rough * edge(u, 0.2 if v < 0.5 else 0.8)
        ink = (grain - (1 - strength)) * 4 + 0.5
        if away > border:
            ink -= (away - border) * 6
        return max(0, min(255, round(255 * (1 - ink))))

    write_png(name, width, height, gray)


def chalk():
    for i in range(3):
        texture(f"chalk-{i + 1}.png", 10 * i + 1, 96, 24, (16, 5), (40, 11), 0.56, 0.35)
    write("chalk", "# Grains of chalk on a rough board.\nname chalk\nturned\n"
          + "".join(f"body 4\nink 0.95\nimage chalk-{i + 1}.png 1.1\n" for i in range(3)))


def crayon():
    for i in range(3):
        texture(f"crayon-{i + 1}.png", 10 * i + 101, 96, 28, (5, 9), (14, 14), 0.6, 0.22)
    write("crayon", "# Wax, streaked along the way of the hand.\nname crayon\nturned\n"
          + "".join(f"body 3.5\nink 0.9\nimage crayon-{i + 1}.png 1.15\n" for i in range(3)))


def ink_brush():
    generator = random.Random(7)
    head = "M 1.6 -0.42 C 0.9 -0.5 0.25 -0.3 0 0.05 C 0.2 0.35 0.9 0.5 1.6 0.44 Z"

    def edge(points):
        """Curves through points, level at each."""
        return "".join(f" C {numbers((2 * x0 + x1) / 3, y0, (x0 + 2 * x1) / 3, y1, x1, y1)}"
                       for (x0, y0), (x1, y1) in zip(points, points[1:]))

    inner = [x * 10 / 7 for x in range(1, 7)]
    top = edge([(10, 0.44)] + [(x, 0.44 + 0.06 * generator.random()) for x in reversed(inner)] + [(0, 0.44)])
    bottom = edge([(0, -0.42)] + [(x, -0.42 - 0.06 * generator.random()) for x in inner] + [(10, -0.42)])
    body = f"M 0 -0.42{bottom} L 10 0.44{top} Z"
    slits = []
    for y, start in ((0.22, 6.4), (-0.12, 7.2), (-0.3, 5.6), (0.05, 8.1)):
        slits.append(f"M {numbers(start, y)} C {numbers(start + 1, y + 0.03, 9.3, y + 0.04, 10, y + 0.045)} "
                     f"L {numbers(10, y - 0.045)} C {numbers(9.3, y - 0.04, start + 1, y - 0.03, start, y)} Z")
    # Slits run the other way round than the body: they are holes.
    body += " " + " ".join(slits)
    bristles = []
    edges = [-0.42, -0.345, -0.255, -0.165, -0.075, 0.005, 0.095, 0.175, 0.265, 0.44]
    for i in range(0, len(edges), 2):
        low, high = edges[i], edges[i + 1]
        tip, middle = 1.2 + 1.3 * generator.random(), (low + high) / 2 * 0.9
        bristles.append(f"M {numbers(0, low)} C {numbers(0.5, low, tip * 0.7, middle - 0.03, tip, middle)} "
                        f"C {numbers(tip * 0.7, middle + 0.03, 0.5, high, 0, high)} Z")
    write("ink brush", "# A loaded brush that runs dry.\nname ink brush\nstretched\n"
          f"head 1.6\npath {head}\nbody 10\npath {body}\ntail 2.5\npath {' '.join(bristles)}\n")


def rope():
    strand = ("M 0 -0.5 C 0.34 -0.5 0.26 0.5 0.62 0.5 C 0.86 0.5 1.04 0.5 1.08 0.44 "
              "C 0.8 0.36 0.78 -0.42 0.46 -0.5 Z")
    fibre = "M 0.3 -0.32 C 0.46 -0.16 0.52 0.18 0.72 0.34 L 0.76 0.31 C 0.6 0.12 0.54 -0.2 0.33 -0.34 Z"
    write("rope", "# Strands that wind around each other.\nname rope\nbody 0.54\n"
          f"ink\npath {strand}\ncolor 1 1 1 0.35\npath {fibre}\n")


def stitching():
    thread = ("M 0.3 -0.16 C 0.7 -0.2 1.3 -0.2 1.7 -0.16 C 1.9 -0.14 1.9 0.14 1.7 0.16 "
              "C 1.3 0.2 0.7 0.2 0.3 0.16 C 0.1 0.14 0.1 -0.14 0.3 -0.16 Z")
    hole = "M {0} 0.09 C {1} 0.09 {1} -0.09 {0} -0.09 C {2} -0.09 {2} 0.09 {0} 0.09 Z"
    holes = " ".join(hole.format(numbers(x), numbers(x - 0.12), numbers(x + 0.12)) for x in (0.16, 1.84))
    light = "M 0.45 0.06 C 0.8 0.1 1.2 0.1 1.55 0.06 L 1.55 0.02 C 1.2 0.05 0.8 0.05 0.45 0.02 Z"
    write("stitching", "# Thread that goes in and out of cloth.\nname stitching\nbody 2\n"
          f"color 0.2 0.2 0.2 0.55\npath {holes}\nink\npath {thread}\ncolor 1 1 1 0.45\npath {light}\n")


def film_strip():
    def box(x, y, width, height):
        return f"M {numbers(x, y)} L {numbers(x, y + height)} L {numbers(x + width, y + height)} L {numbers(x + width, y)} Z"

    strip = "M 0 -0.5 L 0.96 -0.5 L 0.96 0.5 L 0 0.5 Z"
    holes = [box(0.06, -0.28, 0.84, 0.56)]
    holes += [box(0.07 + 0.24 * i, y, 0.1, 0.09) for i in range(4) for y in (-0.44, 0.35)]
    frame = "M 0.06 -0.28 L 0.9 -0.28 L 0.9 0.28 L 0.06 0.28 Z"
    write("film strip", "# Frames between two rows of holes.\nname film strip\nbody 0.96\n"
          f"ink 0.35\npath {frame}\ncolor 0.12 0.12 0.14\npath {strip} {' '.join(holes)}\n")


for draw in (chalk, crayon, ink_brush, rope, stitching, film_strip):
    draw()
