// Reads the Unicode Character Database out of the two pinned packages into plain arrays and maps, in the
// shape the library's tables have. Knows nothing of how they are stored.
import { createRequire } from 'node:module';
import { readdirSync } from 'node:fs';
import { dirname, join } from 'node:path';

const require = createRequire(import.meta.url);

export const lastCodePoint = 0x10ffff;

/** Category values: bits 7 to 13 the major class, bits 0 to 6 the subcategory. */
export const categoryValues = {
  Lowercase_Letter: 0x81, Uppercase_Letter: 0x82, Titlecase_Letter: 0x84, Modifier_Letter: 0x88, Other_Letter: 0x90,
  Nonspacing_Mark: 0x101, Spacing_Mark: 0x102, Enclosing_Mark: 0x104,
  Space_Separator: 0x201, Line_Separator: 0x202, Paragraph_Separator: 0x204,
  Math_Symbol: 0x401, Currency_Symbol: 0x402, Modifier_Symbol: 0x404, Other_Symbol: 0x408,
  Decimal_Number: 0x801, Letter_Number: 0x802, Other_Number: 0x804,
  Dash_Punctuation: 0x1001, Open_Punctuation: 0x1002, Close_Punctuation: 0x1004, Initial_Punctuation: 0x1008,
  Final_Punctuation: 0x1010, Connector_Punctuation: 0x1020, Other_Punctuation: 0x1040,
  Control: 0x2001, Format: 0x2002, Private_Use: 0x2004, Surrogate: 0x2008,
};

/** What the character data lists as a first and a last line only. [first, last, category] */
export const listedRanges = [
  [0x3400, 0x4db5, 0x90], [0x4e00, 0x9fc3, 0x90], [0xac00, 0xd7a3, 0x90],
  [0xd800, 0xdb7f, 0x2008], [0xdb80, 0xdbff, 0x2008], [0xdc00, 0xdfff, 0x2008], [0xe000, 0xf8ff, 0x2004],
  [0x20000, 0x2a6d6, 0x90], [0xf0000, 0xffffd, 0x2004], [0x100000, 0x10fffd, 0x2004],
];

/** The scripts in the order in which names are looked up, with the number of lines each has in the script data. */
export const scriptLineCounts = {
  Common: 530, Latin: 42, Greek: 51, Cyrillic: 18, Armenian: 6, Hebrew: 22, Arabic: 36, Syriac: 7, Thaana: 3,
  Devanagari: 17, Bengali: 25, Gurmukhi: 21, Gujarati: 21, Oriya: 25, Tamil: 24, Telugu: 18, Kannada: 20,
  Malayalam: 18, Sinhala: 13, Thai: 10, Lao: 22, Tibetan: 34, Myanmar: 33, Georgian: 4, Hangul: 12, Ethiopic: 31,
  Cherokee: 1, Canadian_Aboriginal: 3, Ogham: 4, Runic: 2, Khmer: 17, Mongolian: 13, Hiragana: 3, Katakana: 8,
  Bopomofo: 2, Han: 15, Yi: 4, Old_Italic: 2, Gothic: 4, Deseret: 1, Inherited: 22, Tagalog: 3, Hanunoo: 2,
  Buhid: 2, Tagbanwa: 3, Limbu: 12, Tai_Le: 2, Linear_B: 7, Ugaritic: 2, Shavian: 1, Osmanya: 2, Cypriot: 6,
  Braille: 1, Buginese: 4, Coptic: 6, New_Tai_Lue: 6, Glagolitic: 2, Tifinagh: 2, Syloti_Nagri: 11,
  Old_Persian: 4, Kharoshthi: 11, Balinese: 17, Cuneiform: 3, Phoenician: 3, Phags_Pa: 2, Nko: 7, Sundanese: 10,
  Lepcha: 8, Ol_Chiki: 4, Vai: 6, Saurashtra: 6, Kayah_Li: 4, Rejang: 4, Lycian: 1, Carian: 1, Lydian: 2, Cham: 13,
};

/**
 * All differences between the simple case mappings of Unicode 2.1.9, which the package has, and 2.0.14,
 * which the case functions follow. 0: no mapping.
 */
const corrections20 = {
  lower: { 0x018e: 0x0258, 0x019f: 0, 0x01a6: 0 },
  upper: {
    0x01dd: 0, 0x0258: 0x018e, 0x0275: 0, 0x0280: 0, 0x0345: 0, 0x03c2: 0, 0x03f2: 0, 0x1e9b: 0, 0x1fbe: 0,
  },
};

const package51 = dirname(require.resolve('@unicode/unicode-5.1.0/package.json'));
const load51 = async (path) => (await import(`@unicode/unicode-5.1.0/${path}.mjs`)).default;
const ranges51 = async (path) =>
  (await load51(`${path}/ranges`)).map(({ begin, end }) => [begin, end - 1]);

function inListedRange(codePoint) {
  return listedRanges.some(([first, last]) => first <= codePoint && codePoint <= last);
}

/** The category value of every code point, 0 when unassigned. */
export async function readCategories() {
  const categories = new Uint16Array(lastCodePoint + 1);
  for (const [name, value] of Object.entries(categoryValues))
    for (const [first, last] of await ranges51(`General_Category/${name}`))
      categories.fill(value, first, last + 1);
  return categories;
}

/** One record per assigned code point outside the listed ranges: {codePoint, category, upper, lower}. */
export async function readRecords() {
  const categories = await readCategories();
  const upper = await load51('Simple_Case_Mapping/Uppercase/code-points');
  const lower = await load51('Simple_Case_Mapping/Lowercase/code-points');
  const records = [];
  categories.forEach((category, codePoint) => {
    if (category === 0 || inListedRange(codePoint)) return;
    records.push({ codePoint, category, upper: upper.get(codePoint) ?? 0, lower: lower.get(codePoint) ?? 0 });
  });
  return records;
}

/** The lines of the script data: a range ends where the general category changes, cased letters being one. */
function splitByCategory([first, last], categories) {
  const cased = 0x87;
  const kind = (codePoint) => (categories[codePoint] & ~cased) === 0 ? cased : categories[codePoint];
  const lines = [];
  for (let start = first, next = first + 1; next <= last + 1; ++next) {
    if (next <= last && kind(next) === kind(start)) continue;
    lines.push([start, next - 1]);
    start = next;
  }
  return lines;
}

/** The scripts in look-up order: {name, lines: [[first, last], ...]}. */
export async function readScripts() {
  const categories = await readCategories();
  const scripts = [];
  for (const name of Object.keys(scriptLineCounts)) {
    const ranges = await ranges51(`Script/${name}`);
    scripts.push({ name, lines: ranges.flatMap((range) => splitByCategory(range, categories)) });
  }
  return scripts;
}

/** "In" and the block's name without blanks, hyphens and underscores, in the letter case of the block list. */
function blockName(directory) {
  return 'In' + directory
    .replace(/_And_/g, '_and_').replace(/_For_/g, '_for_').replace('Phags_Pa', 'Phags_pa').replace(/_/g, '');
}

/** The blocks in code point order: {name, first, last}. */
export async function readBlocks() {
  const blocks = [];
  for (const directory of readdirSync(join(package51, 'Block'))) {
    const ranges = await ranges51(`Block/${directory}`);
    if (ranges.length !== 1) throw new Error(`block ${directory} is not one range`);
    blocks.push({ name: blockName(directory), first: ranges[0][0], last: ranges[0][1] });
  }
  return blocks.sort((a, b) => a.first - b.first);
}

/** Unicode 2.0's simple case mappings of the 65,536 code units: {upper, lower}, 0 where there is none. */
export function readCaseMappings20() {
  const read = (direction, corrections) => {
    const mapping = new Uint16Array(0x10000);
    for (const [from, to] of require(`@unicode/unicode-2.1.9/Simple_Case_Mapping/${direction}/code-points.js`))
      mapping[from] = to;
    for (const [from, to] of Object.entries(corrections)) mapping[from] = to;
    return mapping;
  };
  return { upper: read('Uppercase', corrections20.upper), lower: read('Lowercase', corrections20.lower) };
}
