#!/usr/bin/env python3
"""Makes the item files of samples/ from samples/source/: run it there after changing a source, and commit the files.

The build doesn't need it. A source is a program in exchange words, a line a line; a word that ends in a blank may lack it
at a line's end. Everything written is read back here and compared, so a file that can't be imported is never left."""
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parent.parent
samples, sources = root / "samples", root / "samples" / "source"

GAMES = "BREAKER CATCH CAVE GUESS LANDER MASTER MAZE MINES NIM PIG PONG RACER REACT SNAKE".split()
PLOTS = "DRAGON FLOWERS FPLOT LISSAJOU MANDEL RINGS ROSE SHOW SIERPIN SPIRO STRINGS TREE".split()
MATHS = "BASE BINOM COLLATZ CROSSING DICE EUCLID GAUSS MATMULT NEWTON PRIMES QUADRAT SIMPSON STATS".split()
MATRICES = {"A": [[2, 1, 0], [-1, 3, 4]], "B": [[1, 2], [0, 5], [-3, 0.5]],
            "S": [[2, 1, -1, 8], [-3, -1, 2, -11], [-2, 1, 2, -3]]}
LISTS = {1: [2, 3, 5, 7, 11, 13, 17, 19, 23, 29], 2: [1, 1, 2, 3, 5, 8, 13, 21, 34, 55],
         3: [0.25, -1.5, 1e10, 6.02e23, -1.6e-19]}


def tokenTable():
    records = []
    for line in (root / "data" / "tokens.tsv").read_text("utf-8").split("\n")[1:]:
        fields = line.split("\t")
        if len(fields) > 6 and fields[6]:
            data = bytes.fromhex(fields[1] + (fields[2] if fields[0] == "2" else ""))
            records.append((fields[6], data))
    return records


RECORDS = tokenTable()


def longestWord(text, place):
    best = ("", b"")
    for word, data in RECORDS:
        if len(word) > len(best[0]) and text.startswith(word, place):
            best = (word, data)
    return best


def encode(text, name):
    """Program text to token bytes; refuses unknown words, and blanks where the calculators allow none."""
    out = b""
    for number, line in enumerate(text.rstrip("\n").split("\n"), 1):
        padded, place, quoted = line + " ", 0, line.startswith("'")
        while place < len(line):
            word, data = longestWord(padded, place)
            if not word or (data == b" " and not quoted):
                sys.exit(f"{name}:{number}: not understood: {line[place:]}")
            out += data
            quoted ^= data == b'"'
            place += len(word)
        if quoted and not line.startswith("'"):
            sys.exit(f"{name}:{number}: a quote is not closed")
        out += b"\r"
    return out[:-1]


def words(data):
    """Token bytes to the words of a cat file: of equal tokens the first record's."""
    text, place = "", 0
    while place < len(data):
        length = 2 if data[place] in (0x7F, 0xF7) else 1
        token = data[place:place + length]
        text += "\r\n" if token == b"\r" else next(word for word, known in RECORDS if known == token)
        place += length
    return text


def checksummed(frame):
    return frame + bytes([(0x3A - sum(frame)) & 0xFF])


def padded(text, size=8):
    return text.encode("ascii")[:size].ljust(size, b"\xFF")


def textItem(name, mark):
    data = encode((sources / f"{name}.txt").read_text("ascii"), name)
    image = checksummed(b":" + data + b"\xFF")
    group = b"F\x99Mem".ljust(8, b"\xFF") if mark == "FM" else b"\xFF" * 8
    tail = b"\xFF" * 8 + (b"NL" if mark == "PG" else b"\xFF\xFF")
    head = b":TXT\0" + mark.encode() + b"\0\0" + len(image).to_bytes(2, "big") + padded(name) + group + tail
    return checksummed(head.ljust(49, b"\xFF")), [image], name


def valueFrame(row, column, value):
    digits, exponent = f"{abs(value):.14e}".split("e")
    digits, exponent = digits.replace(".", ""), int(exponent)
    mantissa = bytes([int(digits[0])]) + bytes.fromhex(digits[1:15])
    flags = (0x50 if value < 0 else 0) + (1 if exponent >= 0 else 0)
    packed = bytes([flags]) + bytes.fromhex(f"{exponent % 100:02d}")
    return checksummed(b":" + row.to_bytes(2, "big") + column.to_bytes(2, "big") + mantissa + packed)


def valueItem(name, mark, rows):
    size = len(rows).to_bytes(2, "big") + len(rows[0]).to_bytes(2, "big")
    head = b":VAL\0" + mark.encode() + size + padded(name) + b"\xFF" * 8 + b"R\x0A"
    frames = [valueFrame(r, c, v) for r, row in enumerate(rows, 1) for c, v in enumerate(row, 1)]
    return checksummed(head.ljust(49, b"\xFF")), frames, name


def pictureItem(slot):
    """A picture drawn as 64 lines of 128 characters: o orange, b blue, g green."""
    lines = (sources / f"picture{slot}.txt").read_text("ascii").split("\n")[:64]
    assert len(lines) == 64 and all(len(line) == 128 for line in lines)
    name = f"Picture{slot}"
    head = (b":IMG\0PC" + b"\0\x40\0\x80" + padded(name) + b"\xFF" * 8 + b"DRUWF" + b"\0\x03\0\x01")
    planes = []
    for colour, letter in enumerate("obg", 1):
        dots = bytes(sum(1 << b for b in range(8) if lines[63 - n % 64][127 - 8 * (n // 64) - b] == letter)
                     for n in range(1024))
        planes.append(checksummed(b":\0\x01\0" + bytes([colour]) + dots))
    return checksummed(head.ljust(49, b"\xFF")), planes, name


def catLines(item):
    head, frames, name = item
    mark = head[5:7].decode()
    lines = ["%Header Record", f"Format:{head[1:4].decode()}", "Communication SW:0", f"Data Type:{mark}"]
    numbers = {key: int.from_bytes(head[at:at + 2], "big") for key, at in
               (("rows", 7), ("columns", 9), ("colours", 32), ("sheets", 34))}
    options = ["Option1:", "Option2:", "Option3:", "Option4:", "%Data Record"]
    if mark in ("PG", "FM"):
        lines += [f"Capacity:{numbers['columns']}", f"File Name:{name}", "Group Name:", "Password:", "Option1:NL"]
        lines += options[1:] + words(frames[0][1:-2]).split("\r\n")
    elif mark == "PC":
        lines += [f"Height:{numbers['rows']}", f"Width:{numbers['columns']}", f"Data Name:{name}", "Group Name:",
                  "Start Position:DR", "Direction:U", "Byte Direction:W", "Bit Weight:F",
                  f"Colors:{numbers['colours']}", f"Sheets:{numbers['sheets']}"] + options
        for plane in frames:
            lines += [f"Sheet:{plane[2]}", f"Color:{plane[4]}"]
            lines += [plane[at:at + 16].hex().upper() for at in range(5, 1029, 16)]
    else:
        lines += [f"Rows:{numbers['rows']}", f"Columns:{numbers['columns']}", f"Variable Name:{name}", "Group Name:",
                  "Variable Type:R", "Variable Length:10"] + options + [valueLine(frame) for frame in frames]
    return lines + ["%End"]


def valueLine(frame):
    digits = str(frame[5]) + frame[6:13].hex()
    mantissa = (digits[0] + "." + digits[1:]).rstrip("0").rstrip(".")
    exponent = int(frame[14:15].hex()) - (0 if frame[13] & 15 else 100)
    power = f"\\EE{exponent:+d}" if exponent else ""
    sign = "-" if frame[13] >> 4 == 5 else ""
    return f"Value : {frame[2]} {frame[4]} {sign}{mantissa}{power}"


def catFile(items):
    return "".join(line + "\r\n" for item in items for line in catLines(item)).encode("ascii")


def casFile(items):
    closing = checksummed(b":END".ljust(49, b"\xFF"))
    return b"".join(head + b"".join(frames) for head, frames, _ in items) + closing


def fxiFile(items):
    """The container: a front of 866 bytes, then for each item its marks, head bytes 1 to 48 and bare data."""
    plain = bytes(866)
    for head, frames, name in items:
        label = name.encode("ascii")
        plain += b"\x02\0\x01\0" + bytes(6) + bytes([len(label)]) + label + b"\x83\x80" + bytes(47)
        plain += b"\x01\0\x01\0" + bytes(2) + head[1:49] + b"".join(frame[1:-1] for frame in frames) + bytes(8)
    return b"20" + bytes(byte ^ 0xE7 for byte in plain[2:])


def checkItems(items):
    for head, frames, name in items:
        assert len(head) == 50 and all(sum(frame) & 0xFF == 0x3A for frame in [head, *frames]), name
        if head[1:4] == b"TXT":
            text, place, back = words(frames[0][1:-2]), 0, b""
            while place < len(text):
                if text.startswith("\r\n", place):
                    back, place = back + b"\r", place + 2
                    continue
                word, data = longestWord(text, place)
                assert word, f"{name}: {text[place:place + 20]}"
                back, place = back + data, place + len(word)
            assert back == frames[0][1:-2], f"{name} reads back as other tokens"


def main():
    games = [textItem(name, "PG") for name in GAMES]
    plots = [textItem("f1", "FM")] + [textItem(name, "PG") for name in PLOTS]
    pictures = [pictureItem(1), pictureItem(2)]
    maths = [textItem(name, "PG") for name in MATHS]
    matrices = [valueItem(f"Mat {letter}", "MT", rows) for letter, rows in MATRICES.items()]
    lists = [valueItem(f"List {number}", "LT", [[v] for v in values]) for number, values in LISTS.items()]
    for made, writer, items in (("games.cat", catFile, games), ("plots.cas", casFile, plots + pictures),
                                ("maths.fxi", fxiFile, maths + matrices), ("pictures.cat", catFile, pictures),
                                ("values.cat", catFile, matrices + lists), ("values.cas", casFile, matrices + lists),
                                ("pictures.fxi", fxiFile, pictures)):
        checkItems(items)
        (samples / made).write_bytes(writer(items))
        print(f"{made}: {len(items)} items, {(samples / made).stat().st_size} bytes")


main()
