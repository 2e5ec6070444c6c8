// Compares the npm package with libtorvio of this host, function by function, on the files of folders and on damaged
// copies of them:
//   TORVIO_LIBRARY=libtorvio.so node compare.mjs PACKAGE SECONDS FOLDER ...
// PACKAGE is the folder of index.js and torvio.wasm; SECONDS is how long damaged copies are compared, with SEED of the
// environment as the start of the sequence. Needs the npm packages of bindings/node.
import {createRequire} from 'node:module';
import fs from 'node:fs';
import path from 'node:path';
import {pathToFileURL} from 'node:url';

const [packageFolder, seconds, ...folders] = process.argv.slice(2);
const {Torvio, TorvioError} = await import(pathToFileURL(path.resolve(packageFolder, 'index.js')).href);
const {torvio: native, TorvioError: NativeError} = createRequire(import.meta.url)('../../bindings/node/index.js');
const wasm = await Torvio.load();

const statusDamaged = 1, statusNoMemory = 5, statusInternalError = 6;
const textOf = (json) => JSON.stringify(typeof json === 'string' ? JSON.parse(json) : json);
const counts = {files: 0, damaged: 0, calls: 0, results: 0, errors: 0, lastDigit: 0, noMemory: 0, different: 0};

// What a call came to, in a form that both sides share.
function outcome(call, ErrorClass, prefix) {
  try {
    return call();
  } catch (error) {
    if (!(error instanceof ErrorClass)) throw error;
    // The binding of this host throws what was read of a damaged file.
    if (error.status === statusDamaged && error.result) return error.result;
    const message = error.message.startsWith(prefix) ? error.message.slice(prefix.length) : error.message;
    return {status: error.status, message, field: error.field, offset: error.offset,
            report: error.report === null ? null : textOf(error.report)};
  }
}

function isSame(a, b) {
  if (a instanceof Uint8Array && b instanceof Uint8Array) return Buffer.compare(a, b) === 0;
  if (typeof a !== 'object' || typeof b !== 'object' || a === null || b === null) return a === b;
  const names = Object.keys(a);
  return names.length === Object.keys(b).length && names.every((name) => name in b && isSame(a[name], b[name]));
}

// Angles are those of the C library's atan2, whose last digit is not the same in all of them.
function isSameButForLastDigit(a, b) {
  if (typeof a === 'number' && typeof b === 'number') return Math.abs(a - b) <= 4e-16 * Math.abs(b);
  if (typeof a !== 'object' || typeof b !== 'object' || a === null || b === null) return a === b;
  const names = Object.keys(a);
  return String(names) === String(Object.keys(b)) && names.every((name) => isSameButForLastDigit(a[name], b[name]));
}

function compare(what, ofWasm, ofNative, prefix = '') {
  ++counts.calls;
  const a = outcome(ofWasm, TorvioError, ''), b = outcome(ofNative, NativeError, prefix);
  if (a?.status === statusNoMemory && b?.status !== statusNoMemory) {
    // 2 GiB are less than what this host has.
    ++counts.noMemory;
    return undefined;
  }
  if (a?.status === undefined) ++counts.results; else ++counts.errors;
  if (isSame(a, b) && a?.status !== statusInternalError) return a;
  if (what().endsWith(': info') && typeof a === 'string' && typeof b === 'string' &&
      isSameButForLastDigit(JSON.parse(a), JSON.parse(b))) {
    ++counts.lastDigit;
    return a;
  }
  ++counts.different;
  // From shortly before the first difference.
  const readable = (made) => {
    if (made instanceof Uint8Array) return Buffer.from(made).toString('latin1');
    return typeof made === 'string' ? made : JSON.stringify(made);
  };
  const one = readable(a), other = readable(b);
  let at = 0;
  while (at < one.length && one[at] === other[at]) ++at;
  const brief = (text) => JSON.stringify(text.slice(Math.max(0, at - 200), at + 100));
  console.log(`${what()}, at ${at}\n  WebAssembly: ${brief(one)}\n  native:      ${brief(other)}`);
  return a;
}

let before = null;

function compareFile(label, data, options, versions) {
  const input = {data, ...options};
  const prefix = options.name ? `${options.name}: ` : '';
  const one = (name, ofWasm, ofNative) =>
    compare(() => `${label} ${JSON.stringify(options)}: ${name}`, ofWasm, ofNative, prefix);
  one('check', () => textOf(wasm.check(data, options)), () => textOf(native.check(input)));
  one('info', () => textOf(wasm.info(data, options)), () => textOf(outcome(() => native.info(input), NativeError, '')));
  const json = one('json', () => wasm.toJson(data, options), () => native.json(input));
  one('pretty json', () => wasm.toJson(data, {...options, pretty: true}), () => native.json(input, {pretty: true}));
  one('map', () => wasm.map(data, options), () => native.map(input));
  one('map of some', () => wasm.map(data, {...options, find: '**.*Count', range: '0..2000'}),
      () => native.map(input, {find: '**.*Count', range: '0..2000'}));
  one('map as a page', () => wasm.mapPage(data, options), () => native.mapPage(input));
  one('draw', () => wasm.draw(data, options), () => native.draw(input));
  for (const version of versions) {
    for (const allowLoss of [false, true]) {
      one(`convert to ${version}`, () => {
        const {bytes, report} = wasm.convert(data, version, {...options, allowLoss});
        return {bytes, report: textOf(report)};
      }, () => {
        const made = native.convert(input, version, {allowLoss});
        return {bytes: made.data, report: textOf(made.report)};
      });
    }
  }
  one('recover', () => {
    const {bytes, report} = wasm.recover(data, options);
    return {bytes, report: textOf(report)};
  }, () => {
    const made = native.recover(input);
    return {bytes: made.data, report: textOf(made.report)};
  });
  if (typeof json === 'string') {
    one('from json', () => wasm.fromJson(json), () => native.fromJson({data: Buffer.from(json)}));
  }
  if (before !== null) {
    one('diff', () => wasm.diff(before.data, data, {kindA: before.kind, kindB: options.kind}).lines,
        () => native.diff({data: before.data, kind: before.kind}, {data, kind: options.kind}).lines);
  }
  before = {data, kind: options.kind};
}

// ---- The library itself ----

compare(() => 'supported', () => textOf(wasm.supported()), () => textOf(native.supported()));
for (const {name} of wasm.supported().kinds) {
  compare(() => `schema ${name}`, () => wasm.schema(name), () => native.schema(name));
  for (const language of ['markdown', 'json', 'kaitai']) {
    compare(() => `format ${name}`, () => wasm.format(name, language), () => native.format(name, language));
  }
}

// ---- Files ----

const kinds = wasm.supported().kinds.map(({name}) => name);
// The kind that a file or its folder is named after.
function kindOf(file) {
  const names = [path.basename(file), path.basename(path.dirname(file)).replaceAll('_', '-')];
  return kinds.find((kind) => names.some((name) => name === kind || name.startsWith(`${kind}_`)));
}
const files = folders.flatMap((folder) => fs.readdirSync(folder, {recursive: true})
  .map((name) => path.join(folder, name)).filter((file) => fs.statSync(file).isFile()).sort());
if (files.length === 0) throw new Error('no files');
for (const file of files) {
  ++counts.files;
  const data = fs.readFileSync(file), kind = kindOf(file);
  compareFile(file, data, {name: `${path.basename(file)}.sht`}, [180]);
  if (kind !== undefined) compareFile(file, data, {kind, encoding: 'cp437'}, [180, 62]);
}
const undamaged = {...counts};
console.log(`files: ${JSON.stringify(undamaged)}`);

// ---- Damaged copies ----

let state = (Number(process.env.SEED ?? 1) * 2654435761) >>> 0 || 1;
function random(below) {
  state ^= state << 13;
  state ^= state >>> 17;
  state ^= state << 5;
  return (state >>> 0) % below;
}

function damaged(data) {
  const copy = Uint8Array.from(data);
  const hits = 1 + random(4);
  let size = copy.length;
  for (let i = 0; i < hits && size > 0; ++i) {
    const at = random(size);
    switch (random(5)) {
      case 0: copy[at] ^= 1 << random(8); break;
      case 1: copy[at] = [0, 1, 0x7F, 0x80, 0xFF][random(5)]; break;
      case 2: copy.fill(random(256), at, at + 1 + random(8)); break;
      case 3: copy.copyWithin(at, random(size), size); break;
      default: size = at + 1;
    }
  }
  return copy.subarray(0, size);
}

const contents = files.map((file) => ({file, data: fs.readFileSync(file), kind: kindOf(file)}));
for (const end = Date.now() + 1000 * Number(seconds); Date.now() < end;) {
  const {file, data, kind} = contents[random(contents.length)];
  const copy = damaged(data);
  ++counts.damaged;
  const differed = counts.different;
  compareFile(`damaged ${file}`, copy, {kind: random(4) === 0 ? undefined : kind}, [random(2) === 0 ? 180 : 150]);
  if (counts.different > differed) {
    const kept = `different_${counts.different}.bin`;
    fs.writeFileSync(kept, copy);
    console.log(`  written to ${kept}`);
    if (counts.different > 20) break;
  }
}
const damagedCounts = Object.fromEntries(Object.entries(counts).map(([name, value]) => [name, value - undamaged[name]]));
console.log(`damaged copies: ${JSON.stringify(damagedCounts)}`);
process.exitCode = counts.different === 0 && undamaged.results > 0 ? 0 : 1;
