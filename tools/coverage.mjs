// Sums up LLVM's coverage exports per file of src/: node coverage.mjs LCOV JSON EXCEPTIONS [--missing]
//
// Lines come from the lcov export. Branches come from the JSON export, where the instantiations of a template
// are listed one by one: a branch counts as taken when any of them takes it. EXCEPTIONS lists what no test can
// reach, a line each: file, a piece of the source line, the reason, separated by tabs. Ends with status 1 below
// 100 % of the lines or 95 % of the branches, or when an exception no longer applies.
import { readFileSync } from "node:fs";
import { relative } from "node:path";

const [lcovFile, jsonFile, exceptionsFile, ...options] = process.argv.slice(2);
const showsMissing = options.includes("--missing");

const exceptions = readFileSync(exceptionsFile, "utf8")
  .split("\n")
  .filter((line) => line !== "" && !line.startsWith("#"))
  .map((line) => {
    const [file, piece, reason] = line.split("\t");
    return { file, piece, reason, used: false };
  });

const files = new Map();
function fileOf(path) {
  const name = relative(process.cwd(), path);
  if (!files.has(name)) {
    const source = readFileSync(name, "utf8").split("\n");
    const aside = new Set();
    for (const exception of exceptions.filter((one) => one.file === name)) {
      source.forEach((text, index) => {
        if (text.includes(exception.piece)) aside.add(index + 1), (exception.used = true);
      });
    }
    files.set(name, { aside, source, lines: new Map(), branches: new Map(), choices: new Set() });
  }
  return files.get(name);
}

// Choices that the compiler makes are in the JSON export alone, with no side taken: not branches.
let current;
for (const line of readFileSync(lcovFile, "utf8").split("\n")) {
  if (line.startsWith("SF:")) current = fileOf(line.slice(3));
  if (line.startsWith("BRDA:")) current.choices.add(Number(line.slice(5).split(",")[0]));
  if (line.startsWith("DA:")) {
    const [number, count] = line.slice(3).split(",").map(Number);
    if (!current.aside.has(number)) current.lines.set(number, (current.lines.get(number) ?? 0) + count);
  }
}
for (const file of JSON.parse(readFileSync(jsonFile, "utf8")).data[0].files) {
  const { aside, source, branches, choices } = fileOf(file.filename);
  for (const [line, column, endLine, endColumn, whenTrue, whenFalse] of file.branches) {
    const madeByTheCompiler = !choices.has(line) || source[line - 1].includes("if constexpr");
    if (aside.has(line) || madeByTheCompiler) continue;
    for (const [side, count] of [["true", whenTrue], ["false", whenFalse]]) {
      const key = `${line}:${column}-${endLine}:${endColumn} ${side}`;
      branches.set(key, (branches.get(key) ?? 0) + count);
    }
  }
}

const percent = (part, all) => (all === 0 ? 100 : (100 * part) / all).toFixed(2).padStart(7) + "%";
const row = (name, [lines, hit, branches, taken]) =>
  `${name.padEnd(40)} ${String(lines).padStart(6)} ${String(lines - hit).padStart(6)} ${percent(hit, lines)} ` +
  `${String(branches).padStart(6)} ${String(branches - taken).padStart(6)} ${percent(taken, branches)}`;

console.log(`${"file".padEnd(40)}  lines missed          branch missed`);
const total = [0, 0, 0, 0];
for (const [name, { lines, branches }] of [...files].sort()) {
  const countOf = (map) => [...map.values()].filter((count) => count > 0).length;
  const figures = [lines.size, countOf(lines), branches.size, countOf(branches)];
  figures.forEach((figure, index) => (total[index] += figure));
  console.log(row(name, figures));
  if (!showsMissing) continue;
  for (const [number, count] of lines) if (count === 0) console.log(`    line ${number}`);
  for (const [key, count] of branches) if (count === 0) console.log(`    branch ${key}`);
}
console.log(row("all", total));
const stale = exceptions.filter((one) => !one.used);
for (const one of stale) console.log(`an exception that applies nowhere: ${one.file}: ${one.piece}`);
process.exit(total[1] === total[0] && total[3] >= 0.95 * total[2] && stale.length === 0 ? 0 : 1);
