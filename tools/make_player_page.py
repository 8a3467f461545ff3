#!/usr/bin/env python3
"""make_player_page.py PLAYER.wasm TEXTS.inc OUT: puts the page of data/web together with the player, so that only the
title and the items are still to be filled in. The same sources give the same bytes."""
import base64
import csv
import hashlib
import json
import pathlib
import re
import sys
import zlib

root = pathlib.Path(__file__).resolve().parent.parent
# What a run can say in a box.
run_texts = ["haltedAtLine", "haltTitle", "matrixMemoryFull", "programsLeftOut", "pictureSheets", "tooManyMatrices",
             "literalTooLong", "warningTitle"]
codes = {"English": "en", "Dutch": "nl", "German": "de", "French": "fr"}
first_list = 164  # from this number on a number has a list of texts


def rows_of(path):
    with open(path, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))


def texts_of_page(numbers):
    data = root / "data"
    page = rows_of(data / "web" / "texts.tsv")
    languages = [column for column in page[0] if column != "name"]
    wordings = {row["name"]: [row[language] for language in languages]
                for table in ("texts.tsv", "own_texts.tsv") for row in rows_of(data / "language" / table)}
    for row in page:
        if not all(row[language] for language in languages):
            sys.exit(f"data/web/texts.tsv: {row['name']} lacks a language")
    run = {}
    for name in run_texts:
        number = numbers[name] // 100
        run[str(number if number < first_list else numbers[name])] = wordings[name]
    return {"languages": languages, "codes": [codes[language] for language in languages],
            "names": wordings["languageName"], "run": run,
            "page": {row["name"]: [row[language] for language in languages] for row in page}}


def sum_of(text):
    return base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


def main():
    wasm, names, out = sys.argv[1:]
    numbers = {name: int(number) for name, number in re.findall(r"(\w+) = (\d+)", pathlib.Path(names).read_text())}
    web = root / "data" / "web"
    page, style, script = ((web / f"player.{ending}").read_text() for ending in ("html", "css", "js"))
    # "<" would end the element early if a text held "</script".
    texts = json.dumps(texts_of_page(numbers), ensure_ascii=False, separators=(",", ":")).replace("<", "\\u003c")
    player = base64.b64encode(zlib.compress(pathlib.Path(wasm).read_bytes(), 9)).decode()
    for name, value in {"style-sum": sum_of(style), "script-sum": sum_of(script), "style": style, "texts": texts,
                        "player": player, "script": script}.items():
        mark = f"@@{name}@@"
        if page.count(mark) != 1 or "</script" in value:
            sys.exit(f"data/web/player.html: {mark}")
        page = page.replace(mark, value)
    if page.count("@@title@@") != 1 or page.count("@@items@@") != 1:
        sys.exit("data/web/player.html: title and items stand there once each")
    pathlib.Path(out).write_text(page, encoding="utf-8")
    print(f"{out}: {len(page.encode())} bytes, of these the player {len(player)}")


main()
