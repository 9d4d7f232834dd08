// Plants small mistakes in a copy of the tree and counts those that the tests notice:
//   node mutate.mjs TREE [--count N] [--seed N] [FOLDER...]
import { spawnSync } from "node:child_process";
import { readFileSync, readdirSync, statSync, writeFileSync } from "node:fs";
import { availableParallelism } from "node:os";
import { join } from "node:path";

const [tree, ...rest] = process.argv.slice(2);
const value = (name, usual) => {
  const at = rest.indexOf(name);
  return at < 0 ? usual : Number(rest.splice(at, 2)[1]);
};
const count = value("--count", 60);
const seed = value("--seed", 1);
const folders = rest.length > 0 ? rest : ["strings", "unicode", "regex"];
const build = join(tree, "build");

// Each turns one piece of a line into another. Only what stands in code: comments and tables are left out.
const mistakes = [
  [/(?<![<>=!-])<(?![<=])(?= )/g, "<="], [/(?<= )<=/g, "<"], [/(?<= )>(?= [\w(])/g, ">="], [/(?<= )>=/g, ">"],
  [/==/g, "!="], [/!=/g, "=="], [/&&/g, "||"], [/\|\|/g, "&&"],
  [/ \+ 1\b/g, ""], [/ - 1\b/g, ""], [/ \+ (?=[a-z(])/g, " - "], [/ - (?=[a-z(])/g, " + "],
  [/\breturn true;/g, "return false;"], [/\breturn false;/g, "return true;"], [/\breturn -1;/g, "return 0;"],
  [/\bif \((?!const|auto)(?=[^;]*\)[^;]*;?$)/g, "if (!("], [/\+\+(?=\w+[;)])/g, "--"], [/\bbreak;/g, "continue;"],
];

function sources(folder) {
  return readdirSync(folder).flatMap((name) => {
    const path = join(folder, name);
    if (statSync(path).isDirectory()) return sources(path);
    return /\.(cpp|h)$/.test(name) && !/_tables\./.test(name) ? [path] : [];
  });
}

/// Closes what "if (!(" opened: the parenthesis that matches the condition's own.
function closed(line, at) {
  let depth = 0;
  for (let i = at; i < line.length; ++i) {
    if (line[i] === "(") depth++;
    if (line[i] === ")" && --depth === 0) return line.slice(0, i) + ")" + line.slice(i);
  }
  return null;
}

function candidates(path) {
  const found = [];
  readFileSync(path, "utf8").split("\n").forEach((line, index) => {
    const code = line.replace(/\/\/.*$/, "");
    if (/^\s*(\/\/|#|template|static_assert|using|enum|class|struct|\*)/.test(line) || /operator/.test(code)) return;
    for (const [pattern, replacement] of mistakes) {
      for (const match of code.matchAll(pattern)) {
        let changed = line.slice(0, match.index) + replacement + line.slice(match.index + match[0].length);
        if (replacement === "if (!(") changed = closed(changed, match.index + 3);
        if (changed !== null && changed !== line) found.push({ path, index, changed });
      }
    }
  });
  return found;
}

let state = BigInt(seed);
function random(bound) {
  state = (state * 6364136223846793005n + 1442695040888963407n) & 0xffffffffffffffffn;
  return Number((state >> 33n) % BigInt(bound));
}

const run = (command, args, seconds) =>
  spawnSync(command, args, { encoding: "utf8", timeout: 1000 * seconds, killSignal: "SIGKILL" });
const configured = run("cmake", ["-S", tree, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
  "-DTAVCH_BUILD_TESTS=ON", "-DTAVCH_BUILD_EXAMPLES=OFF", "-DCMAKE_CXX_FLAGS_RELEASE=-O1"], 300);
if (configured.status !== 0) throw new Error(configured.stdout + configured.stderr);
const jobs = String(availableParallelism());
// The programs that test a folder; those that look at built files or at machine stack are not about mistakes.
const programs = {
  strings: ["compare", "edit", "find", "substring", "hash", "latin_case", "trim", "zero_terminated", "times33",
    "guard_pages"],
  unicode: ["case", "case_tables", "conversion", "properties", "guard_pages"],
  regex: ["program", "pattern_quirks", "pattern_header", "pattern_errors", "pattern_lifecycle", "pattern_robustness",
    "reference_engine", "pattern_cases", "differential", "hand_made", "failed_states", "pcre2", "replace",
    "replace_random", "replace_template", "pattern_set", "guard_pages"],
};
const known = new Set(
  [...run("ctest", ["--test-dir", build, "-N"], 60).stdout.matchAll(/: (\S+)_test$/gm)].map((match) => match[1]));
const testsOf = (folder) => programs[folder].filter((name) => known.has(name)).map((name) => `${name}_test`);
const compile = (folder) =>
  run("cmake", ["--build", build, "-j", jobs, "--target", ...testsOf(folder)], 1800).status === 0;
const passes = (folder) =>
  run("ctest", ["--test-dir", build, "-R", `^(${testsOf(folder).join("|")})$`, "-j", jobs, "--timeout", "150",
    "--stop-on-failure"], 900).status === 0;

let invalid = 0;
const share = new Map();
const all = folders.map((folder) => [folder, sources(join(tree, "src", folder)).flatMap(candidates)]);
for (const [folder, list] of all) {
  console.log(`${folder}: ${list.length} possible mistakes`);
  if (!compile(folder) || !passes(folder)) throw new Error(`${folder}: the unchanged tree does not build or pass`);
  const tally = { tried: 0, noticed: 0 };
  share.set(folder, tally);
  while (tally.tried < Math.round(count / all.length) && list.length > 0) {
    const [{ path, index, changed }] = list.splice(random(list.length), 1);
    const original = readFileSync(path, "utf8");
    const lines = original.split("\n");
    const before = lines[index];
    lines[index] = changed;
    writeFileSync(path, lines.join("\n"));
    if (!compile(folder)) {
      invalid++; // not a program any more
    } else {
      tally.tried++;
      if (!passes(folder)) {
        tally.noticed++;
      } else {
        console.log(`survives: ${path}:${index + 1}\n    ${before.trim()}\n    ${changed.trim()}`);
      }
    }
    writeFileSync(path, original);
  }
}
for (const [folder, { tried, noticed }] of share)
  console.log(`${folder}: ${noticed} of ${tried} noticed, ${((100 * noticed) / Math.max(tried, 1)).toFixed(0)} %`);
console.log(`${invalid} did not compile; seed ${seed}`);
