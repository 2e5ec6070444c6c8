// The npm package as its users call it: node --test, with PACKAGE (the folder of index.js and torvio.wasm) and SAMPLES
// (a folder of torvio_kind_files) in the environment.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';
import {test} from 'node:test';
import {pathToFileURL} from 'node:url';

const folder = path.resolve(process.env.PACKAGE);
const {Torvio, TorvioError} = await import(pathToFileURL(path.join(folder, 'index.js')).href);
const sample = (name) => fs.readFileSync(path.join(process.env.SAMPLES, name));
const torvio = await Torvio.load();
const sheet = sample('sheet_180.bin'), part = sample('part_180.bin');

function errorOf(call) {
  try {
    call();
  } catch (error) {
    assert.ok(error instanceof TorvioError, String(error?.stack));
    assert.ok(error instanceof Error && error.name === 'TorvioError');
    return error;
  }
  return assert.fail('no error');
}

test('A module is loaded from everything that a source can be', async () => {
  const bytes = fs.readFileSync(path.join(folder, 'torvio.wasm'));
  const url = pathToFileURL(path.join(folder, 'torvio.wasm'));
  const view = new Uint8Array(bytes.length + 3).subarray(3);
  view.set(bytes);
  const typed = {headers: {'content-type': 'application/wasm'}};
  for (const source of [undefined, url, url.href, view, Uint8Array.from(bytes).buffer, new WebAssembly.Module(bytes),
                        new Response(bytes), new Response(bytes, typed), Promise.resolve(bytes)]) {
    assert.equal((await Torvio.load(source)).check(sheet).verdict, 'sound');
  }
  const server = http.createServer((request, response) => {
    response.statusCode = request.url === '/torvio.wasm' ? 200 : 404;
    response.end(bytes);
  }).listen(0, '127.0.0.1');
  await new Promise((resolve) => { server.once('listening', resolve); });
  const base = `http://127.0.0.1:${server.address().port}/`;
  assert.equal((await Torvio.load(`${base}torvio.wasm`)).version, torvio.version);
  await assert.rejects(Torvio.load(new URL(`${base}other.wasm`)), /status 404/);
  server.closeAllConnections?.();
  server.close();
  await assert.rejects(Torvio.load(new Uint8Array(8)), WebAssembly.CompileError);
  await assert.rejects(Torvio.load(42), TypeError);
});

test('Files are checked, shown, drawn, compared and converted', () => {
  assert.match(torvio.version, /^\d+\.\d+\.\d+$/);
  const supported = torvio.supported();
  assert.equal(supported.version, torvio.version);
  assert.ok(supported.kinds.some(({name, drawable}) => name === 'sheet' && drawable));
  assert.equal(torvio.check(sheet, {name: 'Träger.sht'}).path, 'Träger.sht');
  assert.equal(torvio.info(sheet).kind, 'sheet');
  const json = torvio.toJson(sheet);
  assert.deepEqual(JSON.parse(torvio.toJson(sheet, {pretty: true})), JSON.parse(json));
  // What follows a NUL in a text is not in the JSON, so only files made of JSON come back byte by byte.
  const made = torvio.fromJson(json);
  assert.deepEqual(torvio.toJson(made), json);
  assert.ok(Buffer.from(torvio.fromJson(torvio.toJson(made))).equals(made));
  assert.deepEqual(torvio.fromJson(new TextEncoder().encode(json), 180), torvio.fromJson(json));
  assert.match(torvio.draw(sheet), /^<svg |^<\?xml/);
  const lines = torvio.map(sheet, {find: 'width', range: '0..5000'}).trim().split('\n');
  assert.deepEqual(lines.map((line) => JSON.parse(line).field), ['width', 'partList.parts[0].width']);
  assert.match(torvio.mapPage(sheet), /^<!doctype html>/);
  assert.match(torvio.drawPage([{bytes: sheet, name: 'a.sht'}, {bytes: part}], {title: 'Two'}), /<title>Two</);
  assert.equal(torvio.diff(sheet, sheet).same, true);
  const {bytes, report} = torvio.convert(sheet, 160, {allowLoss: true});
  assert.equal(new DataView(bytes.buffer).getInt16(0, true), 160);
  assert.equal(typeof report, 'object');
  const difference = torvio.diff(sheet, bytes, {nameA: 'a', nameB: 'b'});
  assert.equal(difference.same, false);
  assert.ok(difference.lines.endsWith('}\n'));
  assert.match(torvio.format('sheet', 'markdown'), /\|/);
  assert.equal(typeof JSON.parse(torvio.schema('sheet')), 'object');
});

test('ArrayBuffers and parts of them are files as well, and stay as they are', () => {
  const copy = Uint8Array.from(sheet);
  const expected = torvio.check(sheet);
  assert.deepEqual(torvio.check(copy.buffer), expected);
  const larger = new Uint8Array(copy.length + 20);
  larger.set(copy, 7);
  assert.deepEqual(torvio.check(larger.subarray(7, 7 + copy.length)), expected);
  assert.ok(sheet.equals(copy));
  assert.equal(torvio.check(new Uint8Array(0)).verdict, 'foreign');
  // Results are copies: no later call changes them.
  const first = torvio.fromJson(torvio.toJson(sheet)), before = Uint8Array.from(first);
  torvio.convert(part, 180);
  assert.deepEqual(first, before);
});

test('Of a damaged file there is what was read', () => {
  const cut = sheet.subarray(0, sheet.length - 40);
  const options = {kind: 'sheet'};
  const {verdict, fault} = torvio.check(cut, options);
  assert.equal(verdict, 'damaged');
  assert.equal(torvio.info(cut, options).verdict, 'damaged');
  assert.deepEqual(JSON.parse(torvio.toJson(cut, options)).fault.offset, fault.offset);
  assert.ok(JSON.parse(torvio.map(cut, options).trim().split('\n').at(-1)).fault);
  assert.match(torvio.draw(cut, options), /<svg /);
  const {bytes, report} = torvio.recover(cut, options);
  assert.equal(torvio.check(bytes, options).verdict, 'sound');
  assert.equal(typeof report, 'object');
});

test('Errors say what happened and leave the object usable', () => {
  const refused = errorOf(() => torvio.draw(sample('material_180.bin')));
  assert.equal(refused.statusName, 'TORVIO_REFUSED');
  assert.equal(refused.status, 4);
  assert.equal(refused.report, null);
  const lost = errorOf(() => torvio.convert(sheet.subarray(0, 3000), 180, {kind: 'sheet'}));
  assert.equal(lost.statusName, 'TORVIO_REFUSED');
  assert.equal(typeof lost.report, 'object');
  assert.notEqual(lost.report, null);
  for (const call of [() => torvio.check(sheet, {kind: 'picture'}), () => torvio.check(sheet, {encoding: 'none'}),
                      () => torvio.check(sheet, {name: 'a\0b'}), () => torvio.check(sheet, {name: '\uD800'}),
                      () => torvio.map(sheet, {find: '[['}), () => torvio.map(sheet, {range: 'x'}),
                      () => torvio.convert(sheet, 70000), () => torvio.convert(sheet, 2 ** 32 + 180),
                      () => torvio.convert(sheet, 1.5), () => torvio.fromJson('{}', 40000), () => torvio.format('none'),
                      () => torvio.schema('none'), () => torvio.drawPage([]), () => torvio.fromJson('"\uDC00"'),
                      () => torvio.diff(sheet, part, {tolerance: NaN})]) {
    const error = errorOf(call);
    assert.equal(error.statusName, 'TORVIO_BAD_ARGUMENT', `${call}: ${error.message}`);
    assert.ok(error.message.length > 0);
  }
  for (const call of [() => torvio.check('text'), () => torvio.check(null), () => torvio.check(sheet, {nmae: 'a'}),
                      () => torvio.check(sheet, {name: 7}), () => torvio.check(sheet, 'sheet'),
                      () => torvio.diff(sheet, undefined), () => torvio.diff(sheet, sheet, {tolerance: '1'})]) {
    assert.throws(call, TypeError, String(call));
  }
  assert.equal(errorOf(() => torvio.fromJson('{')).statusName, 'TORVIO_REFUSED');
  assert.equal(torvio.check(sheet).verdict, 'sound');
});

test('Files that do not fit into 32 bits are refused without being copied', () => {
  let huge;
  try {
    huge = new Uint8Array(2 ** 32 + 400);
  } catch {
    return;  // this host has no such arrays either
  }
  // Of 2 ^ 32 + 400 bytes only the last nine digits would be left.
  assert.equal(errorOf(() => torvio.check(huge)).statusName, 'TORVIO_NO_MEMORY');
  assert.equal(errorOf(() => torvio.info(huge.subarray(0, 2 ** 31))).statusName, 'TORVIO_NO_MEMORY');
  assert.equal(torvio.check(sheet).verdict, 'sound');
});

test('Running out of memory within a call is an error', () => {
  // As many tools as fit into the file, whose records take several times its size.
  const file = new Uint8Array(1.2 * 2 ** 30), view = new DataView(file.buffer);
  view.setInt16(0, 180, true);
  view.setInt32(2, 2 ** 31 - 1, true);
  assert.equal(errorOf(() => torvio.toJson(file, {kind: 'tool-inventory'})).statusName, 'TORVIO_NO_MEMORY');
  assert.equal(torvio.check(sheet).verdict, 'sound');
});

test('A stack overflow of the host is an error', () => {
  let seen = null;
  const descend = (depth) => {
    try {
      return descend(depth + 1);
    } catch (error) {
      if (!(error instanceof RangeError)) throw error;
      // Almost nothing of the stack is left here, and more with every return.
      try {
        torvio.toJson(sheet);
      } catch (inner) {
        if (inner instanceof TorvioError) seen = inner;
        else if (!(inner instanceof RangeError)) throw inner;
        throw error;
      }
      return depth;
    }
  };
  assert.ok(descend(0) > 0);
  if (seen !== null) assert.equal(seen.statusName, 'TORVIO_INTERNAL_ERROR');
  assert.equal(torvio.check(sheet).verdict, 'sound');
});

test('A trap without a reason is an internal error', async () => {
  // (module (memory (export "memory") 1) ...) with the functions that a call needs; torvio_format traps.
  const name = (text) => [text.length, ...new TextEncoder().encode(text)];
  const section = (id, content) => [id, content.length, ...content];
  const functions = ['_initialize', 'torvio_version', 'torvio_failure', 'malloc', 'free', 'torvio_format'];
  const types = [[0x60, 0, 0], [0x60, 0, 1, 0x7F], [0x60, 0, 1, 0x7F], [0x60, 1, 0x7F, 1, 0x7F], [0x60, 1, 0x7F, 0],
                 [0x60, 4, 0x7F, 0x7F, 0x7F, 0x7F, 1, 0x7F]];
  const bodies = [[0x0B], [0x41, 8, 0x0B], [0x41, 0, 0x0B], [0x41, 16, 0x0B], [0x0B], [0x00, 0x0B]];
  const module = Uint8Array.from([
    0, 0x61, 0x73, 0x6D, 1, 0, 0, 0,
    ...section(1, [types.length, ...types.flat()]),
    ...section(3, [functions.length, ...functions.keys()]),
    ...section(5, [1, 0, 1]),
    ...section(7, [functions.length + 1, ...name('memory'), 2, 0,
                   ...functions.flatMap((one, i) => [...name(one), 0, i])]),
    ...section(10, [bodies.length, ...bodies.flatMap((body) => [body.length + 1, 0, ...body])]),
  ]);
  const trapping = await Torvio.load(module);
  for (let i = 0; i < 3; ++i) {
    const error = errorOf(() => trapping.format('sheet'));
    assert.equal(error.statusName, 'TORVIO_INTERNAL_ERROR');
    assert.ok(error.cause instanceof WebAssembly.RuntimeError);
    assert.match(error.message, /unreachable/);
  }
});

test('Calls that fail a thousand times do not use memory up', () => {
  for (let i = 0; i < 1000; ++i) assert.equal(errorOf(() => torvio.format('none')).statusName, 'TORVIO_BAD_ARGUMENT');
  assert.equal(torvio.check(sheet).verdict, 'sound');
});
