#!/usr/bin/env python3
"""Holds the written pages to the library: follows every link inside the tree and runs every example.

    TAVCH_LIBRARY=... PYTHONPATH=python tools/check_docs.py --programs DIR [--cc CC] [--cxx CXX] [--site DIR] [FILE...]

What is run, by the language of the fenced block:

    c, cpp, python   a whole program; what it prints is the next block of the kind "text"
    matches          lines "/pattern/options  subject  => answer", see check_match
    replacements     lines "/pattern/options  template  subject  => answer"
    console          "$ command" and what it prints, for the programs in DIR; other commands are not run

With --site, every link of the site's pages is followed as well.

Texts stand in double quotes and know \\n, \\t, \\", \\\\ and \\xHH. An answer is the text found, then groups as N="text"
or N=unset, or "none", or "error NAME at OFFSET". With the option g every match is listed, separated by commas.
Behind "#" stands a remark.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile

import tavch

TEXT = r'"(?:[^"\\]|\\.)*"'
CASE = re.compile(r"/(?P<pattern>.*)/(?P<options>[a-z]*)\s\s+")


class Page:
    def __init__(self, path):
        self.path = path
        with open(path, encoding="utf-8") as file:
            self.lines = file.read().split("\n")

    def blocks(self):
        """Language, first line number and lines of every fenced block."""
        language = None
        for number, line in enumerate(self.lines, 1):
            fence = re.match(r"```(\S*)", line)
            if fence and language is None:
                language, start, held = fence.group(1), number + 1, []
            elif fence:
                yield language, start, held
                language = None
            elif language is not None:
                held.append(line)

    def prose(self):
        inside = False
        for number, line in enumerate(self.lines, 1):
            if line.startswith("```"):
                inside = not inside
            elif not inside:
                yield number, line

    def anchors(self):
        for _, line in self.prose():
            heading = re.match(r"#+ (.*)", line)
            if heading:
                yield re.sub(r"[^\w\- ]", "", heading.group(1).lower()).replace(" ", "-")


def unquoted(text):
    """The bytes of a text in double quotes."""
    names = {"n": "\n", "t": "\t", "r": "\r", '"': '"', "\\": "\\"}

    def one(escape):
        return chr(int(escape.group(1)[1:], 16)) if escape.group(1)[0] == "x" else names[escape.group(1)]

    # Bytes above 0x7F may be written as they are (UTF-8) or by their number.
    raw = text[1:-1].encode("utf-8").decode("latin-1")
    return re.sub(r'\\(x[0-9A-Fa-f]{2}|[nrt"\\])', one, raw).encode("latin-1")


def shown(data):
    return '"' + "".join(chr(b) if 32 <= b < 127 and chr(b) not in '"\\' else f"\\x{b:02X}" for b in data) + '"'


def match_text(match):
    parts = [shown(match[0])]
    for group in range(1, len(match)):
        parts.append(f"{group}=unset" if match[group] is None else f"{group}={shown(match[group])}")
    return " ".join(parts)


def normal(answer):
    """An answer in the form that match_text writes."""
    return re.sub(TEXT, lambda text: shown(unquoted(text.group(0))), answer.strip())


def without_remark(line):
    return re.sub(r"\s\s+#.*", "", line)


def compiled(pattern, options):
    """The pattern, or the error as an answer."""
    try:
        return tavch.Pattern(pattern.encode("utf-8"), options), None
    except tavch.Error as error:
        return None, f"error {error.name} at {error.offset}"


def check_match(line):
    """One line of a block "matches"; what is wrong with it, or nothing."""
    case = CASE.match(line)
    if not case:
        return "unreadable"
    rest = without_remark(line[case.end():])
    pattern, error = compiled(case["pattern"], case["options"])
    subject, _, expected = rest.rpartition("=> ")
    if error:
        answer = error
    else:
        found = re.match(TEXT, subject.strip())
        if not found:
            return "unreadable subject"
        data = unquoted(found.group(0))
        if "g" in case["options"]:
            answer = ", ".join(match_text(match) for match in pattern.find_all(data)) or "none"
        else:
            match = pattern.find(data)
            answer = match_text(match) if match else "none"
    return None if answer == normal(expected) else f"the answer is {answer}"


def check_replacement(line):
    case = CASE.match(line)
    if not case:
        return "unreadable"
    rest = without_remark(line[case.end():])
    texts = re.findall(TEXT, rest.rpartition("=> ")[0])
    pattern, error = compiled(case["pattern"], case["options"])
    if error or len(texts) != 2:
        return error or "unreadable"
    try:
        answer = shown(pattern.replace(unquoted(texts[1]), unquoted(texts[0]), 0 if "g" in case["options"] else 1))
    except tavch.Error as failure:
        answer = f"error {failure.name}"
    return None if answer == normal(rest.rpartition("=> ")[2]) else f"the answer is {answer}"


class Programs:
    def __init__(self, arguments, root, scratch):
        self.arguments, self.root, self.scratch = arguments, root, scratch
        self.library = os.environ["TAVCH_LIBRARY"]

    def printed(self, language, source):
        """What a program prints, in both streams; a failure to build or run is told the same way."""
        if language == "python":
            command = [sys.executable, "-B", "-c", source]
        else:
            name = os.path.join(self.scratch, "example." + language)
            with open(name, "w", encoding="utf-8") as file:
                file.write(source)
            compiler = [self.arguments.cc, "-std=c99"] if language == "c" else [self.arguments.cxx, "-std=c++17"]
            folder = os.path.dirname(self.library)
            built = subprocess.run(compiler + ["-Wall", "-Wextra", "-pedantic", "-Werror", "-pthread", "-I",
                                               os.path.join(self.root, "include"), name, "-o", name + ".out",
                                               self.library, "-Wl,-rpath," + folder], stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, check=False)
            if built.returncode:
                return built.stdout
            command = [name + ".out"]
        return self.run(command)

    def run(self, command, shell=False):
        environment = dict(os.environ, PATH=self.arguments.programs + ":" + os.environ["PATH"], LC_ALL="C.UTF-8")
        done = subprocess.run(command, shell=shell, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              cwd=self.root, env=environment, timeout=60, check=False)
        return done.stdout if done.returncode == 0 or shell else f"status {done.returncode}\n{done.stdout}"

    def console(self, lines):
        """Runs the commands of a block; gives what should stand there."""
        out = []
        for line in lines:
            command = re.match(r"\$ (.*)", line)
            if command:
                out.append(line)
                out += self.run(command.group(1), shell=True).split("\n")[:-1]
        return out


def check_links(page, pages, problem):
    for number, line in page.prose():
        for target in re.findall(r"\]\(([^)\s]+)\)", line):
            if re.match(r"[a-z]+:", target):
                continue
            path, _, anchor = target.partition("#")
            goal = os.path.normpath(os.path.join(os.path.dirname(page.path), path)) if path else page.path
            if not os.path.exists(goal):
                problem(page, number, f"{target} does not exist")
            elif anchor and anchor not in Page(goal).anchors():
                problem(page, number, f"{target}: there is no such heading")


def check_site(folder, problem):
    """Every link from a page of the site to a file or a place in one."""
    known = {}

    def places(path):
        if path not in known:
            with open(path, encoding="utf-8") as file:
                known[path] = set(re.findall(r'(?:id|name)="([^"]+)"', file.read()))
        return known[path]

    count = 0
    for name in sorted(os.listdir(folder)):
        if not name.endswith(".html"):
            continue
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            text = file.read()
        for target in re.findall(r'(?:href|src)="([^"]+)"', text):
            if re.match(r"[a-z]+:", target):
                continue
            count += 1
            path, _, anchor = target.partition("#")
            goal = os.path.join(folder, path.partition("?")[0]) if path else os.path.join(folder, name)
            if not os.path.exists(goal):
                problem(f"{name}: {target} does not exist")
            elif anchor and goal.endswith(".html") and anchor not in places(goal):
                problem(f"{name}: {target}: there is no such place")
    return count


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", required=True)
    parser.add_argument("--cc", default="cc")
    parser.add_argument("--cxx", default="c++")
    parser.add_argument("--site")
    parser.add_argument("files", nargs="*")
    arguments = parser.parse_args()
    arguments.programs = os.path.abspath(arguments.programs)
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    names = [os.path.abspath(name) for name in arguments.files]
    if not names:
        names = [os.path.join(root, name) for name in sorted(os.listdir(root)) if name.endswith(".md")]
        docs = os.path.join(root, "docs")
        names += [os.path.join(docs, name) for name in sorted(os.listdir(docs)) if name.endswith(".md")]
    problems, examples = [], 0

    def problem(page, number, what):
        problems.append(f"{os.path.relpath(page.path, root)}:{number}: {what}")

    pages = [Page(name) for name in names]
    with tempfile.TemporaryDirectory() as scratch:
        programs = Programs(arguments, root, scratch)
        for page in pages:
            check_links(page, pages, problem)
            printed = None
            for language, start, lines in page.blocks():
                if language == "text":
                    if printed is not None and printed.rstrip("\n") != "\n".join(lines).rstrip("\n"):
                        problem(page, start, f"the program prints\n{printed}")
                    printed = None
                    continue
                if printed is not None:
                    problem(page, start, "the program before this has no block with what it prints")
                    printed = None
                if language in ("c", "cpp", "python"):
                    printed = programs.printed(language, "\n".join(lines) + "\n")
                    examples += 1
                elif language in ("matches", "replacements"):
                    check = check_match if language == "matches" else check_replacement
                    for number, line in enumerate(lines, start):
                        if line.strip() and not line.startswith("#"):
                            wrong = check(line)
                            examples += 1
                            if wrong:
                                problem(page, number, wrong + "   " + line)
                elif language == "console":
                    ours = [name for name in os.listdir(arguments.programs)]
                    commands = [re.search(r"^\$ (?:.*\| )?(tav\w+)", line) for line in lines if line.startswith("$ ")]
                    if all(command and command.group(1) in ours for command in commands):
                        examples += len(commands)
                        should = programs.console(lines)
                        if should != lines:
                            problem(page, start, "the commands print\n" + "\n".join(should))
            if printed is not None:
                problem(page, len(page.lines), "the last program has no block with what it prints")
    if arguments.site:
        links = check_site(arguments.site, problems.append)
        print(f"{links} links in the site")
    for each in problems:
        print(each)
    print(f"{len(pages)} pages, {examples} examples, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
