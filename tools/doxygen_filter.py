#!/usr/bin/env python3
"""Prepares include/tavch.h for Doxygen, so that the header itself reads without markup: doxygen_filter.py FILE

Of the header:

- the comment at its top becomes that of the file;
- a section's title makes a group of the declarations under it, and the section's own comment the group's text;
- indented tables are kept as they stand;
- a comment that says "arguments and statuses of NAME", or "NAME for 16-bit units", takes over what NAME says.

Of a written page: headings get the labels that links to them need, which Doxygen wants to be unique in the whole site.
"""

import os
import re
import sys

# Doxygen makes apostrophes of quotation marks there, and leaves out backslashes; script/docs puts them back.
FOR_MAN_PAGES = bool(os.environ.get("TAVCH_MAN_PAGES"))

RULE = re.compile(r"/\* -+ \*/$")
TITLE = re.compile(r"/\* (\S.*?) +\*/$")
FAMILIES = {
    "Statuses": "statuses", "Version": "version", "Comparison": "comparison", "Search": "search", "Editing": "editing",
    "Trimming": "trimming", "Hashing": "hashing", "Latin case": "latin_case", "UTF-8 and UTF-16": "conversion",
    "Case of all letters": "unicode_case", "Regular expressions: the objects": "pattern_objects",
    "Regular expressions: compiling": "patterns", "Regular expressions: search": "pattern_search",
    "Regular expressions: replacement": "replacement", "Regular expressions: sets of patterns": "pattern_sets",
}


def paragraphs(lines):
    """Runs of lines that belong together, each with its kind: text, or a table that is indented."""
    run, kind = [], None
    for line in lines + [""]:
        # What is indented under a list's item belongs to it; anywhere else it is a table.
        if not line.strip():
            new = None
        elif line.startswith("  ") and kind != "list":
            new = "table"
        else:
            new = "list" if line.startswith(("- ", "  ")) else "text"
        if new != kind:
            if run:
                yield kind == "table", run
            run, kind = [], new
        if new:
            run.append(line)


def escaped(text):
    return re.sub(r"([\\<>#])", r"\\\1", text)


def plain_comment(lines, opening):
    """A comment without markup as one of Doxygen's."""
    bodies = [re.sub(r"^ \* ?", "", line) for line in lines]
    out = ["/** " + opening, " *"]
    for indented, run in paragraphs(bodies):
        if indented:
            # Nothing stands before the lines: Doxygen would keep it.
            out += [" * @verbatim"] + run + [" @endverbatim", " *"]
        else:
            out += [" * " + escaped(line) for line in run] + [" *"]
    return out + [" */"]


def documented(lines):
    """A comment of Doxygen's own kind: escapes its text, and takes over what it refers to."""
    out, code, example = [], False, False
    for number, line in enumerate(lines):
        code = (code or "@code" in line) and "@endcode" not in line
        # An example is indented, behind an empty line; it goes on to the next line that is not.
        indented = bool(re.match(r" \*     ", line)) and (example or lines[number - 1].strip() == "*") and not code
        if indented != example:
            out.append(" * @code" if indented else " * @endcode")
        example = indented
        if not (code or example):
            line = re.sub(r"\\", r"\\\\", line)
        elif FOR_MAN_PAGES:
            line = re.sub(r"\\", "BACKSLASH", line)
        out.append(line)
    text = " ".join(lines)
    model = re.search(r"(?:arguments and statuses of[ *]+|^\s*/\*\* *)(tavs\w+)", text)
    if model:
        last = re.sub(r"\s*\*/\s*$", "", out.pop())
        out += [last] if last.strip(" *") or len(lines) == 1 else []
        out += [" * @copydetails " + model.group(1), " */"]
    return out


def page(path):
    name, inside, out = os.path.basename(path)[:-3], False, []
    with open(path, encoding="utf-8") as file:
        for line in file.read().split("\n"):
            inside ^= line.startswith("```")
            if not inside:
                heading = re.match(r"##+ (.*)", line)
                if heading:
                    slug = re.sub(r"[^\w\- ]", "", heading.group(1).lower()).replace(" ", "-")
                    line += f" {{#{name}-{slug}}}"
                # The site holds no sources; the header is the page of its functions.
                line = re.sub(r"\]\((?:\.\./)?include/tavch\.h\)", "](tavch_8h.html)", line)
                line = re.sub(r"\[([^]]+)\]\((?!#|[\w/.-]+\.(?:md|html)\b)[^)]+\)", r"`\1`", line)
                line = re.sub(r"\]\(#", f"](#{name}-", line)
                line = re.sub(r"\]\((?:docs/)?([\w-]+)\.md#", r"](#\1-", line)
            out.append(line)
    print("\n".join(out))


def main():
    if sys.argv[1].endswith(".md"):
        page(sys.argv[1])
        return
    with open(sys.argv[1], encoding="ascii") as file:
        lines = file.read().split("\n")
    out, at, group, named = [], 0, None, False
    while at < len(lines):
        line = lines[at]
        if RULE.match(line) and at + 1 < len(lines) and TITLE.match(lines[at + 1]):
            title = TITLE.match(lines[at + 1]).group(1)
            out += ["/** @} */"] if group else []
            group = FAMILIES[title]
            at += 2
            while not lines[at].strip():
                at += 1
            text = []
            if lines[at].strip() == "/*":
                end = next(i for i in range(at, len(lines)) if "*/" in lines[i])
                text, at = lines[at + 1:end], end + 1
            out += plain_comment(text, f"@defgroup tavch_{group} {title}")
            out += [f"/** @addtogroup tavch_{group}", " * @{ */"]
            continue
        if line.startswith("#ifdef __cplusplus") and group and named:
            out += ["/** @} */"]
            group = None
        if line.strip() in ("/*",) or re.match(r"\s*/\*\*(?!\*)", line):
            end = at
            while "*/" not in lines[end]:
                end += 1
            comment = lines[at:end + 1]
            if line.strip() == "/*":
                out += comment if named else plain_comment(comment[1:-1], "@file tavch.h")
                named = True
            else:
                out += documented(comment)
            at = end + 1
            continue
        out.append(line)
        at += 1
    text = "\n".join(out)
    if FOR_MAN_PAGES:
        text = re.sub(r"/\*\*.*?\*/", lambda comment: comment.group(0).replace('"', "QUOTATIONMARK"), text, flags=re.S)
    print(text)


if __name__ == "__main__":
    main()
