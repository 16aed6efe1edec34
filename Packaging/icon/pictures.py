"""Pictures as bytes: reading PNG files with 8 bits a channel, and writing and reading the `.icns` container of macOS. The
standard library only, so that the icon can be made and checked on any computer."""

import struct
import zlib

_PNG_BEGINNING = b"\x89PNG\r\n\x1a\n"
# What iconutil writes: the two smallest as packed planes (PNG there is not shown by every macOS), the others as PNG; and
# for each size of a screen with two pixels a point, the picture of twice the size.
PLANES_TYPES = {"ic04": 16, "ic05": 32}
PNG_TYPES = {"ic07": 128, "ic08": 256, "ic09": 512, "ic10": 1024, "ic11": 32, "ic12": 64, "ic13": 256, "ic14": 512}


def png_chunks(data):
    """(type, content) of each chunk; a damaged one is a ValueError."""
    if not data.startswith(_PNG_BEGINNING):
        raise ValueError("not a PNG file")
    place = len(_PNG_BEGINNING)
    while place < len(data):
        length, kind = struct.unpack_from(">I4s", data, place)
        content = data[place + 8 : place + 8 + length]
        (checksum,) = struct.unpack_from(">I", data, place + 8 + length)
        if zlib.crc32(kind + content) != checksum:
            raise ValueError(f"the chunk {kind} is damaged")
        yield kind.decode("ascii"), content
        place += 12 + length


def read_png(data):
    """(width, height, pixels): red, green, blue and opacity of each pixel, row by row, colours not premultiplied."""
    chunks = list(png_chunks(data))
    width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", chunks[0][1])
    if (depth, colour, interlaced) != (8, 6, 0):
        raise ValueError("only PNG files with 8 bits for each of red, green, blue and opacity are read")
    packed = zlib.decompress(b"".join(content for kind, content in chunks if kind == "IDAT"))
    length = 4 * width
    if len(packed) != height * (length + 1):
        raise ValueError("the PNG file does not hold as many pixels as it says")
    rows, above = [], bytearray(length)
    for start in range(0, len(packed), length + 1):
        above = _unfiltered(packed[start], bytearray(packed[start + 1 : start + 1 + length]), above)
        rows.append(above)
    return width, height, b"".join(rows)


def _unfiltered(filter_type, row, above):
    if filter_type == 2:
        return bytearray(value + up & 255 for value, up in zip(row, above))
    for i in range(len(row)) if filter_type else ():
        left, up, corner = (row[i - 4], above[i], above[i - 4]) if i >= 4 else (0, above[i], 0)
        row[i] = row[i] + (left, up, (left + up) // 2, _paeth(left, up, corner))[filter_type - 1] & 255
    return row


def _paeth(left, up, corner):
    guess = left + up - corner
    return min((left, up, corner), key=lambda neighbour: abs(guess - neighbour))


def premultiplied(pixels):
    """The same pixels with each colour multiplied by the opacity, as drawing wants them."""
    result = bytearray(pixels)
    for i in range(0, len(result), 4):
        opacity = result[i + 3]
        for channel in range(i, i + 3):
            result[channel] = (result[channel] * opacity + 127) // 255
    return bytes(result)


def icns(pngs):
    """The container of an icon whose PNG files are given by their width."""
    chunks = [(kind, _planes(read_png(pngs[size])[2])) for kind, size in PLANES_TYPES.items()]
    chunks += [(kind, pngs[size]) for kind, size in PNG_TYPES.items()]
    body = b"".join(kind.encode() + struct.pack(">I", 8 + len(content)) + content for kind, content in chunks)
    return b"icns" + struct.pack(">I", 8 + len(body)) + body


def icns_chunks(data):
    """{type: content}; a container whose lengths do not fit is a ValueError."""
    magic, length = struct.unpack_from(">4sI", data)
    if magic != b"icns" or length != len(data):
        raise ValueError("not an icns file, or one of another length than it says")
    chunks, place = {}, 8
    while place < len(data):
        kind, length = struct.unpack_from(">4sI", data, place)
        if length < 8 or place + length > len(data):
            raise ValueError(f"the chunk {kind} is longer than the file")
        chunks[kind.decode("ascii")] = data[place + 8 : place + length]
        place += length
    return chunks


def _planes(pixels):
    return b"ARGB" + b"".join(_packed(pixels[channel::4]) for channel in (3, 0, 1, 2))


def _packed(plane):
    """Runs of 3 to 130 equal bytes as two bytes, what is between them as up to 128 bytes after their count."""
    result, other, place = bytearray(), bytearray(), 0

    def put_other():
        for start in range(0, len(other), 128):
            part = other[start : start + 128]
            result.append(len(part) - 1)
            result.extend(part)
        other.clear()

    while place < len(plane):
        end = place
        while end < len(plane) and end - place < 130 and plane[end] == plane[place]:
            end += 1
        if end - place >= 3:
            put_other()
            result += bytes((end - place + 125, plane[place]))
        else:
            other += plane[place:end]
        place = end
    put_other()
    return bytes(result)


def read_planes(content, size):
    """The pixels of a chunk of packed planes, as read_png gives them."""
    if not content.startswith(b"ARGB"):
        raise ValueError("not packed planes")
    plain, place = bytearray(), 4
    while place < len(content):
        head = content[place]
        if head < 128:
            plain += content[place + 1 : place + 2 + head]
            place += 2 + head
        else:
            plain += bytes((content[place + 1],)) * (head - 125)
            place += 2
    if len(plain) != 4 * size * size:
        raise ValueError("the planes do not hold as many pixels as the chunk's type says")
    planes = [plain[start : start + size * size] for start in range(0, len(plain), size * size)]
    pixels = bytearray(len(plain))
    for channel, plane in zip((3, 0, 1, 2), planes):
        pixels[channel::4] = plane
    return bytes(pixels)
