// Compares readers that Kaitai Struct makes of `torvio format KIND --as kaitai` with `torvio map --json`, field by field:
// offset, size, path and value.
//
//   node kaitai_compare.mjs TORVIO MODULES FOLDER
//
// MODULES is the folder that the npm packages kaitai-struct-compiler, kaitai-struct and yaml are in; FOLDER holds files
// that are named KIND_VERSION.bin or KIND_VERSION_VARIANT.bin. Prints what differs; the exit code is 1 then, or if there was nothing to compare.
import { spawnSync } from "node:child_process";
import { readdirSync, readFileSync, writeFileSync, mkdirSync } from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";

const [torvio, modules, folder] = process.argv.slice(2);
const require = createRequire(path.join(path.resolve(modules), "node_modules", "x.js"));
const yaml = require("yaml");
const KaitaiStream = require("kaitai-struct/KaitaiStream");
const compiler = require("kaitai-struct-compiler");
// Texts are compared byte by byte: decoders of code pages differ between versions of Node.js.
KaitaiStream.bytesToStr = (bytes) => Buffer.from(bytes).toString("latin1");
const [command, ...leading] = torvio.split(" ");
const run = (...args) => spawnSync(command, [...leading, ...args], { encoding: "utf8", maxBuffer: 1 << 30 });

const camel = (id) => id.replace(/_([a-z0-9])/g, (all, c) => c.toUpperCase());

async function readerOf(kind) {
  const described = run("format", kind, "--as", "kaitai");
  if (described.status !== 0) throw new Error(`${kind}: ${described.stderr}`);
  const ksy = yaml.parse(described.stdout);
  const files = await compiler.compile("javascript", ksy, null, true);
  const made = path.join(folder, `${kind}.ksyjs`);
  mkdirSync(made, { recursive: true });
  for (const [name, text] of Object.entries(files)) writeFileSync(path.join(made, name), text);
  writeFileSync(path.join(made, "package.json"), '{"type":"commonjs"}');
  const main = Object.keys(files)[0];
  const exports = {};
  new Function("exports", "require", "module", "define", files[main])(exports, (name) => require(name), { exports }, undefined);
  const found = Object.values(exports)[0] ?? exports;
  return { ksy, Reader: typeof found === "function" ? found : found[Object.keys(found)[0]] };
}

const sizes = { s1: 1, u1: 1, s2: 2, u2: 2, s4: 4, u4: 4, s8: 8, u8: 8, f4: 4, f8: 8 };

// The fields of a parsed record in the order of its bytes.
function* fieldsOf(object, type, scope, prefix, row, base) {
  const inner = { ...scope, ...(type.types ?? {}) };
  for (const attribute of type.seq) {
    const name = camel(attribute.id);
    const value = object[name];
    const debug = object._debug[name];
    if (value === undefined || debug === undefined) continue;
    const origin = attribute["-orig-id"];
    const pathOf = (index) => {
      if (origin === undefined) return prefix;
      return prefix + origin.replace("[]", `[${index + (attribute["-first-index"] ?? 0)}]`).replace("[i]", `[${row}]`);
    };
    const one = function* (item, where, index) {
      const child = typeof attribute.type === "string" ? inner[attribute.type.replace(/\(.*$/, "")] : undefined;
      if (child) {
        const own = pathOf(index);
        // A part of the record around has no name: its index is that of the row.
        const isPart = origin === undefined;
        yield* fieldsOf(item, child, inner, isPart ? prefix : `${own}.`, isPart && attribute.repeat ? index : row,
                        attribute.size !== undefined ? base + where.start : base);
      } else {
        yield { offset: base + where.start, size: where.end - where.start, path: pathOf(index), value: item };
      }
    };
    if (attribute.repeat) {
      for (let i = 0; i < value.length; ++i) yield* one(value[i], debug.arr[i], i);
    } else {
      yield* one(value, debug, 0);
    }
  }
}

const same = (wanted, field) => {
  const { value } = field;
  if (wanted.type === "reserved") return true;
  if (wanted.type === "bytes") return Buffer.from(value).toString("hex") === wanted.value;
  if (wanted.type === "f32") {
    if (Number.isNaN(value)) return wanted.value === "NaN";
    return Object.is(Math.fround(Number(wanted.value)), value);
  }
  if (wanted.type === "f64") return Number.isNaN(value) ? wanted.value === "NaN" : Object.is(Number(wanted.value), value);
  return wanted.value === value;
};

let files = 0;
let fields = 0;
let differences = 0;
const differ = (text) => {
  if (++differences <= 20) console.log(text);
};
const readers = new Map();
for (const name of readdirSync(folder).sort()) {
  const match = /^([a-z-]+)_(\d+)(_[a-z]+)?\.bin$/.exec(name);
  if (!match) continue;
  const kind = match[1];
  if (!readers.has(kind)) readers.set(kind, await readerOf(kind));
  const { ksy, Reader } = readers.get(kind);
  const file = path.join(folder, name);
  const mapped = run("map", "--json", "--encoding", "latin1", "--kind", kind, file);
  const wanted = mapped.stdout.trimEnd().split("\n").map((line) => JSON.parse(line)).filter((one) => one.size > 0);
  if (mapped.status !== 0) { differ(`${name}: torvio map fails: ${mapped.stdout.trimEnd().split("\n").at(-1)}`); continue; }
  const bytes = readFileSync(file);
  const stream = new KaitaiStream(bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length));
  let read;
  let failure = "";
  try {
    read = new Reader(stream);
    read._read();
  } catch (error) {
    failure = String(error);
  }
  ++files;
  let i = 0;
  if (read) {
    for (const field of fieldsOf(read, ksy, ksy.types, "", 0, 0)) {
      const expected = wanted[i++];
      ++fields;
      const isEqual = expected !== undefined && expected.offset === field.offset && expected.size === field.size &&
        expected.field === field.path && same(expected, field);
      if (isEqual) continue;
      differ(`${name}: ${JSON.stringify(field)} is not ${JSON.stringify(expected)}`);
      break;
    }
  }
  if (failure) differ(`${name}: after field ${i}, ${JSON.stringify(wanted[i])}: ${failure}`);
  else if (i !== wanted.length) differ(`${name}: ${i} of ${wanted.length} fields`);
}
console.log(`${files} files, ${fields} fields, ${readers.size} kinds, ${differences} differences`);
process.exit(differences > 0 || files === 0 ? 1 : 0);
