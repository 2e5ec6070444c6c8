// Runs a test program of web/wasm: node --no-warnings run_tests.mjs PROGRAM.wasm SCRATCH_FOLDER [ARGUMENTS]
// The program has the scratch folder as /tmp, and no other file.
import fs from 'node:fs';
import path from 'node:path';
import {WASI} from 'node:wasi';

const [program, scratch, ...options] = process.argv.slice(2);
fs.mkdirSync(scratch, {recursive: true});
const wasi = new WASI({version: 'preview1', args: [path.basename(program), ...options], env: {PWD: '/'},
                       preopens: {'/tmp': scratch}, returnOnExit: true});
// Node destroys an unreachable WASI object even while its program runs, and aborts if the program uses a file then.
globalThis.wasi = wasi;
const module = await WebAssembly.compile(fs.readFileSync(program));
process.exitCode = wasi.start(new WebAssembly.Instance(module, wasi.getImportObject()));
