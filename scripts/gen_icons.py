#!/usr/bin/env python3
"""Draws the library's own pictures into resources/ with the standard library alone.

A pixel takes a shape's colour when its centre lies inside the shape: hard edges, no
antialiasing, and only IEEE arithmetic (no sin/cos), so every run writes the same bytes.
"""
import math
import pathlib
import struct
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent / "resources"
INK, WHITE = (45, 45, 55), (255, 255, 255)


class Canvas:
    def __init__(self, size):
        self.size = size
        self.px = [[None] * size for _ in range(size)]  # None is transparent

    def fill(self, colour, inside):
        for y in range(self.size):
            for x in range(self.size):
                if inside(x + 0.5, y + 0.5):
                    self.px[y][x] = colour
        return self


# --- shapes: each returns a predicate on a point --------------------------------------------
def disc(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def box(x0, y0, x1, y1):
    return lambda x, y: x0 <= x < x1 and y0 <= y < y1


def rounded(x0, y0, x1, y1, r):
    def inside(x, y):
        dx, dy = max(x0 + r - x, 0, x - x1 + r), max(y0 + r - y, 0, y - y1 + r)
        return x0 <= x < x1 and y0 <= y < y1 and dx * dx + dy * dy <= r * r
    return inside


def segment(ax, ay, bx, by, width):
    def inside(x, y):
        ex, ey = bx - ax, by - ay
        t = min(1.0, max(0.0, ((x - ax) * ex + (y - ay) * ey) / (ex * ex + ey * ey)))
        return (x - ax - t * ex) ** 2 + (y - ay - t * ey) ** 2 <= width * width / 4
    return inside


def polygon(points):
    def inside(x, y):  # even-odd rule
        hit = False
        for (ax, ay), (bx, by) in zip(points, points[1:] + points[:1]):
            if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
                hit = not hit
        return hit
    return inside


def outline(canvas, colour, points, width=1.5):
    for a, b in zip(points, points[1:] + points[:1]):
        canvas.fill(colour, segment(*a, *b, width))
    return canvas


def both(a, b):
    return lambda x, y: a(x, y) and b(x, y)


# --- pictures ------------------------------------------------------------------------------
def clock():
    c = Canvas(32).fill(INK, disc(16, 16, 15)).fill(WHITE, disc(16, 16, 13))
    for dx, dy in ((0, -1), (1, 0), (0, 1), (-1, 0)):
        c.fill(INK, segment(16 + 10 * dx, 16 + 10 * dy, 16 + 12 * dx, 16 + 12 * dy, 2))
    c.fill(INK, segment(16, 16, 16, 6, 2)).fill(INK, segment(16, 16, 22, 16, 3))
    return c.fill((200, 40, 40), disc(16, 16, 2))


def padlock():
    steel, gold, dark_gold = (150, 155, 165), (235, 180, 50), (150, 100, 20)
    c = Canvas(32).fill(steel, both(disc(16, 13, 9), lambda x, y: y <= 13))
    c.fill(None, both(disc(16, 13, 6), lambda x, y: y <= 13))
    c.fill(steel, box(7, 13, 10, 16)).fill(steel, box(22, 13, 25, 16))
    c.fill(dark_gold, box(5, 15, 27, 30)).fill(gold, box(6, 16, 26, 29))
    return c.fill(INK, disc(16, 21, 2.5)).fill(INK, box(15, 22, 17, 27))


def funnel():
    shape = [(3, 4), (29, 4), (19, 16), (19, 26), (13, 29), (13, 16)]
    return outline(Canvas(32).fill((70, 130, 210), polygon(shape)), (20, 50, 110), shape)


def folder():
    back, front = [(2, 5), (12, 5), (14, 8), (30, 8), (30, 27), (2, 27)], [(2, 27), (5, 12), (31, 12), (28, 27)]
    c = outline(Canvas(32).fill((215, 150, 40), polygon(back)), (130, 85, 20), back)
    return outline(c.fill((250, 205, 90), polygon(front)), (130, 85, 20), front)


def magnifier():
    c = Canvas(32).fill(INK, disc(13, 13, 10)).fill((205, 228, 248), disc(13, 13, 7))
    return c.fill(INK, segment(20, 20, 28, 28, 4.5))


def strata(colours):
    """Folded rock layers in a rounded tile: the suite's application mark."""
    c = Canvas(64).fill(INK, rounded(2, 2, 62, 62, 10))
    tile = rounded(5, 5, 59, 59, 7)
    c.fill(colours[0], tile)
    for i, colour in enumerate(colours[1:], 1):  # each bed dips away from the crest at x = 32
        c.fill(colour, both(tile, lambda x, y, top=5 + 11 * i: y >= top + abs(x - 32) / 3))
    return c


SPIN_GREYS = [(40 + 25 * k,) * 3 for k in range(8)]


def spinner(frame):
    s, c = math.sqrt(0.5), Canvas(32)
    spokes = [(0, -1), (s, -s), (1, 0), (s, s), (0, 1), (-s, s), (-1, 0), (-s, -s)]
    for k, (dx, dy) in enumerate(spokes):  # the darkest spoke leads, clockwise
        c.fill(SPIN_GREYS[(frame - k) % 8], segment(16 + 6 * dx, 16 + 6 * dy, 16 + 13 * dx, 16 + 13 * dy, 3))
    return c


# --- file formats --------------------------------------------------------------------------
def png(canvas):
    def chunk(tag, data):
        return struct.pack(">I", len(data)) + tag + data + struct.pack(">I", zlib.crc32(tag + data))

    raw = b"".join(b"\0" + bytes(v for p in row for v in ((*p, 255) if p else (0, 0, 0, 0))) for row in canvas.px)
    header = struct.pack(">IIBBBBB", canvas.size, canvas.size, 8, 6, 0, 0, 0)  # 8-bit RGBA
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def lzw(pixels, min_bits):
    """GIF's LZW: codes widen from min_bits + 1 up to 12 bits, packed from the low bit up."""
    clear, out = 1 << min_bits, bytearray()
    acc = filled = 0
    table, next_code, width = {}, 0, 0

    def reset():
        nonlocal table, next_code, width
        table, next_code, width = {bytes([i]): i for i in range(clear)}, clear + 2, min_bits + 1

    def emit(code):
        nonlocal acc, filled, width
        acc, filled = acc | code << filled, filled + width
        while filled >= 8:
            out.append(acc & 0xFF)
            acc, filled = acc >> 8, filled - 8
        # The decoder adds its entry one code later; widen when that entry needs the extra bit.
        if next_code == 1 << width and width < 12:
            width += 1

    reset()
    emit(clear)
    word = b""
    for p in pixels:
        if word + bytes([p]) in table:
            word += bytes([p])
            continue
        emit(table[word])
        table[word + bytes([p])] = next_code
        next_code, word = next_code + 1, bytes([p])
        if next_code == 4095:  # table full: start afresh
            emit(clear)
            reset()
    emit(table[word])
    emit(clear + 1)
    if filled:
        out.append(acc & 0xFF)
    return bytes(out)


def gif(frames, palette, delay):
    """Looping animation over a 16-colour table whose entry 0 is transparent."""
    size, index = frames[0].size, {p: i for i, p in enumerate(palette)}
    table = b"".join(bytes(p) for p in palette + [(0, 0, 0)] * (16 - len(palette)))
    data = b"GIF89a" + struct.pack("<HHBBB", size, size, 0xF3, 0, 0) + table  # global 16-entry table
    data += b"\x21\xff\x0bNETSCAPE2.0\x03\x01\x00\x00\x00"  # loop for ever
    for frame in frames:
        codes = lzw([index[p] if p else 0 for row in frame.px for p in row], 4)
        data += b"\x21\xf9\x04" + struct.pack("<BHBB", 0x09, delay, 0, 0)  # clear to background, 0 transparent
        data += b"\x2c" + struct.pack("<HHHHB", 0, 0, size, size, 0) + b"\x04"  # 4-bit pixels
        data += b"".join(bytes([len(codes[i:i + 255])]) + codes[i:i + 255] for i in range(0, len(codes), 255))
        data += b"\x00"
    return data + b"\x3b"


# --- tool icons and cursors ----------------------------------------------------------------
BLUE, PALE = (50, 110, 190), (205, 228, 248)


def lens(c, sign):
    """Magnifier with a plus or a minus in the glass."""
    c.fill(INK, disc(13, 13, 10)).fill(PALE, disc(13, 13, 7)).fill(INK, segment(20, 20, 28, 28, 4.5))
    c.fill(BLUE, box(8, 12, 18, 14))
    if sign == "+":
        c.fill(BLUE, box(12, 8, 14, 18))
    return c


def cross_arrows(cx, cy, reach, shaft, head):
    """A four-way arrow around (cx, cy): the sign of moving the view."""
    pts = []
    for dx, dy in ((0, -1), (1, 0), (0, 1), (-1, 0)):
        px, py = -dy, dx  # perpendicular, turning clockwise
        base = reach - head
        pts += [(cx + dx * shaft + px * -shaft, cy + dy * shaft + py * -shaft),
                (cx + dx * base - px * shaft, cy + dy * base - py * shaft),
                (cx + dx * base - px * head, cy + dy * base - py * head),
                (cx + dx * reach, cy + dy * reach),
                (cx + dx * base + px * head, cy + dy * base + py * head),
                (cx + dx * base + px * shaft, cy + dy * base + py * shaft)]
    return pts


POINTER = [(1, 1), (1, 24), (7, 18), (12, 29), (16, 27), (11, 17), (19, 17)]


def ruler():
    c = Canvas(32)
    body = [(2, 22), (22, 2), (30, 10), (10, 30)]
    outline(c.fill((240, 205, 110), polygon(body)), (120, 85, 20), body, 1.2)
    for k in range(1, 6):  # ticks along the lower-left edge, every fourth one longer
        t = k / 6
        x, y = 2 + 20 * t, 22 - 20 * t
        length = 5 if k % 3 == 0 else 3
        c.fill(INK, segment(x, y, x + length * 0.7, y + length * 0.7, 1.2))
    return c


def pick():
    c = Canvas(32).fill(INK, disc(16, 16, 9)).fill(None, disc(16, 16, 7))
    for a, b in (((16, 2), (16, 11)), ((16, 21), (16, 30)), ((2, 16), (11, 16)), ((21, 16), (30, 16))):
        c.fill(INK, segment(*a, *b, 2))
    return c.fill((200, 40, 40), disc(16, 16, 2))


def haloed(shape_of, width=2.0):
    """A cursor: ink with a white rim so that it shows on dark and light maps alike."""
    c = Canvas(32)
    shape_of(c, WHITE, width)
    shape_of(c, INK, 0.0)
    return c


def cross_cursor(c, colour, grow):
    for a, b in (((15.5, 1), (15.5, 12)), ((15.5, 19), (15.5, 30)), ((1, 15.5), (12, 15.5)), ((19, 15.5), (30, 15.5))):
        c.fill(colour, segment(*a, *b, 1 + 2 * grow))
    c.fill(colour, disc(15.5, 15.5, 1 + grow))


def lens_cursor(sign):
    def draw(c, colour, grow):
        c.fill(colour, disc(12.5, 12.5, 9 + grow)).fill(colour, segment(19, 19, 29, 29, 4 + 2 * grow))
        if colour == INK:
            c.fill(WHITE, disc(12.5, 12.5, 7)).fill(INK, box(8, 12, 17, 13))
            if sign == "+":
                c.fill(INK, box(12, 8, 13, 17))
    return draw


def pan_cursor(c, colour, grow):
    pts = cross_arrows(15.5, 15.5, 13, 1.5, 5)
    c.fill(colour, polygon(pts))
    if grow:
        outline(c, colour, pts, 2 * grow)


def pointer_cursor(c, colour, grow):
    c.fill(colour, polygon(POINTER))
    if grow:
        outline(c, colour, POINTER, 2 * grow)


def pencil_cursor(c, colour, grow):
    # A pencil lying from the upper right to its tip at the lower left, pixel (2, 29).
    c.fill(colour, segment(24, 7, 8, 23, 7 + 2 * grow))
    c.fill(colour, polygon([(2.5, 29.5), (5, 20), (12, 27)]))
    if grow:
        c.fill(colour, disc(2.5, 29.5, grow + 0.5))


# Hot spots, in pixels from the top left, of each cursor; written beside the pictures.
CURSORS = {
    "cross.png": (cross_cursor, (15, 15)),
    "zoomin.png": (lens_cursor("+"), (12, 12)),
    "zoomout.png": (lens_cursor("-"), (12, 12)),
    "pan.png": (pan_cursor, (15, 15)),
    "pointer.png": (pointer_cursor, (1, 1)),
    "pencil.png": (pencil_cursor, (2, 29)),
}


def hotspots():
    lines = ["name,x,y"] + [f"{name},{x},{y}" for name, (_, (x, y)) in CURSORS.items()]
    return ("\n".join(lines) + "\n").encode()


APP_COLOURS = {
    "rktool": [(250, 235, 200), (200, 95, 45), (235, 175, 80), (145, 60, 35), (95, 80, 70)],
    "rkdemo": [(225, 240, 250), (60, 140, 110), (130, 190, 215), (40, 90, 150), (70, 75, 95)],
}

PICTURES = {
    "rkBaseQt/time.png": lambda: png(clock()),
    "rkBaseQt/lock2.png": lambda: png(padlock()),
    "rkBaseQt/filter.png": lambda: png(funnel()),
    "model/icon_folder.png": lambda: png(folder()),
    "qocoa/qsearchfield_nonmac.png": lambda: png(magnifier()),
    "qocoa/qprogressindicatorspinning_nonmac.gif":
        lambda: gif([spinner(f) for f in range(8)], [WHITE] + SPIN_GREYS, 10),
    **{f"tesk/{name}appicon.png": (lambda c=c: png(strata(c))) for name, c in APP_COLOURS.items()},
    "2DTesk/zoomin.png": lambda: png(lens(Canvas(32), "+")),
    "2DTesk/zoomout.png": lambda: png(lens(Canvas(32), "-")),
    "2DTesk/pan.png": lambda: png(outline(Canvas(32).fill(BLUE, polygon(cross_arrows(16, 16, 15, 2, 6))),
                                          (20, 50, 110), cross_arrows(16, 16, 15, 2, 6), 1.2)),
    "2DTesk/select.png": lambda: png(outline(Canvas(32).fill(WHITE, polygon(POINTER)), INK, POINTER, 1.5)),
    "2DTesk/measure.png": lambda: png(ruler()),
    "2DTesk/pick.png": lambda: png(pick()),
    **{f"cursor/{name}": (lambda d=draw: png(haloed(d))) for name, (draw, _) in CURSORS.items()},
    "cursor/hotspots.csv": hotspots,
}

if __name__ == "__main__":
    for name, make in PICTURES.items():
        path = ROOT / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(make())
        print(path.relative_to(ROOT.parent))
