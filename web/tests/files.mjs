// Files for the tests of the page.
import {Torvio} from '../package/index.js';
import {execFileSync} from 'node:child_process';
import {existsSync, mkdirSync, readdirSync, readFileSync, statSync, writeFileSync} from 'node:fs';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

export const top = join(dirname(fileURLToPath(import.meta.url)), '../..');
// A finished build of the project, for the samples of every kind.
const native = process.env.TORVIO_BUILD ?? join(top, 'build/release');
const made = process.env.TORVIO_TEST_FILES ?? join(top, 'build/web-tests');
export const wasm = process.env.TORVIO_WASM ?? join(top, 'build/web/unbundled/torvio.wasm');
export const torvio = await Torvio.load(readFileSync(wasm));

const filesIn = (folder) => readdirSync(folder).flatMap((name) => {
  const path = join(folder, name);
  return statSync(path).isDirectory() ? filesIn(path) : [path];
}).sort();

// The archive that docs/guide.md looks at.
export function guideFiles() {
  const folder = join(made, 'guide');
  if (!existsSync(folder)) {
    mkdirSync(made, {recursive: true});
    execFileSync('bash', [join(top, 'examples/guide_files.sh'), native, folder], {stdio: 'inherit'});
  }
  return filesIn(folder);
}

// A small file of every kind at every version.
export function kindFiles() {
  const folder = join(made, 'kinds');
  if (!existsSync(folder)) {
    mkdirSync(folder, {recursive: true});
    execFileSync(join(native, 'tests/torvio/torvio_kind_files'), [folder], {stdio: 'inherit'});
  }
  return filesIn(folder);
}

export const sample = (name) => readFileSync(guideFiles().find((path) => path.endsWith(`/${name}`)));

const document = (name) => JSON.parse(torvio.toJson(sample(name), {name}));

// A sheet of about so many bytes: the parts of the sample over and over, with three times the shapes, side by side on a
// larger plate.
export function sheetOf(size) {
  const text = document('nest_180.sheet');
  const {record} = text, parts = record.partList.parts;
  for (const part of parts) {
    part.shapes.shapes = [...part.shapes.shapes, ...part.shapes.shapes, ...part.shapes.shapes];
    for (const pattern of part.patterns) {
      pattern.items = [...pattern.items, ...pattern.items, ...pattern.items];
      pattern.gridCount1 = pattern.gridCount2 = 1;
    }
  }
  const one = torvio.fromJson(JSON.stringify(text)).length;
  const rest =
    torvio.fromJson(JSON.stringify({...text, record: {...record, partList: {...record.partList, parts: []}}})).length;
  const times = Math.max(1, Math.round((size - rest) / (one - rest))), across = Math.ceil(Math.sqrt(times));
  const copies = [];
  for (let i = 0; i < times; ++i) {
    const x = record.width * (i % across), y = record.height * Math.floor(i / across);
    for (const part of parts) {
      const patterns =
        part.patterns.map((pattern) => ({...pattern, originX: pattern.originX + x, originY: pattern.originY + y}));
      copies.push({...part, partName: `${part.partName}-${i}`, patterns});
    }
  }
  record.partList.parts = copies;
  record.width *= across;
  record.height *= across;
  return torvio.fromJson(JSON.stringify(text));
}

// The sample with other texts: every text of the record that may be as long becomes this one.
export function sheetWithTexts(replacement) {
  const text = document('nest_180.sheet');
  const {record} = text;
  record.sheetLabel = replacement;
  record.materialType = record.materialGroup = replacement;
  record.machine.machineText1 = record.machine.displayName = replacement;
  for (const part of record.partList.parts) part.partName = part.woNumber = replacement.slice(0, 20);
  for (const part of record.partList.parts)
    for (const shape of part.shapes.shapes) shape.note = replacement.slice(0, 20);
  return torvio.fromJson(JSON.stringify(text));
}

export const keep = (name, bytes) => {
  mkdirSync(made, {recursive: true});
  const path = join(made, name);
  writeFileSync(path, bytes);
  return path;
};
export const bigSheet = (megabytes) => {
  const path = join(made, `sheet${megabytes}.sheet`);
  return existsSync(path) ? path : keep(`sheet${megabytes}.sheet`, sheetOf(megabytes * 1e6));
};
