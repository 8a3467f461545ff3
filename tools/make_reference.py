#!/usr/bin/env python3
"""Checks data/language_reference.tsv and makes docs/language.md of it: run it there after a change, and commit both.

With --check it only looks whether the page is what the table gives, and exits with 1 if not. The build doesn't need it.
What a row promises of its example is held against the emulator by test_emulator."""
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parent.parent
table, page = root / "data" / "language_reference.tsv", root / "docs" / "language.md"
HEAD = "token name topic syntax English Dutch German French example gives keys state remark".split()
LANGUAGES = HEAD[4:8]
STATES = ("as on the calculator", "differs", "nothing to do")
INTRODUCTION = """# The language of the programs

Every token that a program can hold, by topic. `tools/make_reference.py` makes this page of `data/language_reference.tsv`,
which has the meanings in Dutch, German and French too.

- In the syntax, words in capitals stand for what a program writes there, and ↵ for a new line.
- The tests run each example with calculator modes on, and get what stands behind ⇢: the value of the last expression (Ans),
  the named variables, lists and matrices, a row of the text screen, dots of the graph screen, or an error. "keyed" tells
  the keys that the run was given.
- Keys are those of the CFX family, in a program: a function key with its label, as F1(COM). A label on its own is one
  whose function key isn't certain.
- State: as on the calculator, differs (and how), or nothing to do, where the emulator passes over the token. What isn't
  known of the calculators is said there too.
- In the words of item files a token is written as in the last column, several words meaning the same token.
"""


def fail(where, what):
    sys.exit(f"{table.relative_to(root)}: {where}: {what}")


def tokenRecords():
    """Of data/tokens.tsv: the records in their order, as bytes in hexadecimal, text, and word of item files."""
    records = []
    for line in (root / "data" / "tokens.tsv").read_text("utf-8").rstrip("\n").split("\n")[1:]:
        fields = line.split("\t")
        records.append((fields[1] + (fields[2] if fields[0] == "2" else ""), fields[3], fields[6]))
    return records


RECORDS = tokenRecords()
NAMES = {}
WORDS = {}
for token, text, word in RECORDS:
    NAMES.setdefault(token, text)
    WORDS.setdefault(token, []).extend([word] if word else [])


def tokensOf(words, where):
    """The tokens of a text in the words of item files."""
    tokens, place = [], 0
    while place < len(words):
        fits = [(len(word), token) for token, _, word in RECORDS if word and words.startswith(word, place)]
        if not fits:
            fail(where, f"not understood: {words[place:]}")
        length = max(fits)[0]
        tokens.append(next(token for size, token in fits if size == length))
        place += length
    return tokens


def readTable():
    lines = table.read_text("utf-8").rstrip("\n").split("\n")
    if lines[0].split("\t") != HEAD:
        fail("line 1", "columns must be " + " ".join(HEAD))
    rows, seen = [], set()
    for number, line in enumerate(lines[1:], 2):
        fields = line.split("\t")
        if len(fields) != len(HEAD):
            fail(f"line {number}", f"{len(fields)} columns instead of {len(HEAD)}")
        row = dict(zip(HEAD, fields))
        checkRow(row, f"line {number}", seen)
        seen.add(row["token"])
        rows.append(row)
    for token in NAMES:
        if token not in seen:
            fail("end", f"{token} {NAMES[token]} is missing")
    return rows


def checkRow(row, where, seen):
    token = row["token"]
    if token in seen:
        fail(where, f"{token} is there twice")
    if row["name"] != NAMES.get(token):
        fail(where, f"{token} is {NAMES.get(token)!r}, not {row['name']!r}")
    for column in ["topic", "syntax", *LANGUAGES, "keys"]:
        if not row[column].strip():
            fail(where, f"{column} is empty")
    for language in LANGUAGES:
        if not row[language].endswith("."):
            fail(where, f"{language} is no sentence")
    if row["state"] not in STATES or (row["state"] == "differs" and not row["remark"]):
        fail(where, "unknown state, or a difference that isn't told")
    if bool(row["example"]) != bool(row["gives"]):
        fail(where, "an example and what it gives go together")
    if row["example"] and token not in tokensOf(row["example"], where):
        fail(where, "the example is without its token")


def code(text):
    """As code of a table's cell."""
    fence = "``" if "`" in text else "`"
    padding = " " if "`" in text or text.startswith(" ") or text.endswith(" ") else ""
    return fence + padding + text.replace("|", "\\|") + padding + fence if text else ""


def pageText(rows):
    out, topic = [INTRODUCTION], None
    topics = list(dict.fromkeys(row["topic"] for row in rows))
    for topic in topics:
        out.append(f"\n## {topic}\n\n| Token | Syntax | Meaning | Example | Keys | State | Words |\n|---|---|---|---|---|---|---|\n")
        for row in rows:
            if row["topic"] != topic:
                continue
            example = "".join(NAMES[token] for token in tokensOf(row["example"], row["token"]))
            example = f"{code(example)} ⇢ {code(row['gives'])}" if example else ""
            state = row["state"] + (": " if row["state"] == "differs" else ". " if row["remark"] else "") + row["remark"]
            out.append(f"| {code(row['name'].strip() or row['token'])} | {code(row['syntax'])} | {row['English']} | {example} | "
                       f"{row['keys'].replace('|', chr(92) + '|')} | {state} | {' '.join(code(word.strip()) for word in WORDS[row['token']])} |\n")
    counts = [sum(row["state"] == state for row in rows) for state in STATES]
    out.append(f"\n{len(rows)} tokens, of {len(RECORDS)} records of the table of tokens: "
               + ", ".join(f"{count} {state}" for count, state in zip(counts, STATES)) + ".\n")
    return "".join(out)


def main():
    made = pageText(readTable())
    if sys.argv[1:] == ["--check"]:
        if not page.exists() or page.read_text("utf-8") != made:
            sys.exit("docs/language.md isn't what data/language_reference.tsv gives: run tools/make_reference.py")
    else:
        page.write_text(made, "utf-8")
        print(made.rstrip().rsplit("\n", 1)[-1])


main()
