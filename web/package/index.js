// The functions of torvio.h on files in memory, by the WebAssembly module torvio.wasm. The header says what they do;
// this file is for browsers, their workers and Node.

const statusNames = ['TORVIO_OK', 'TORVIO_DAMAGED', 'TORVIO_BAD_ARGUMENT', 'TORVIO_NOT_READ', 'TORVIO_REFUSED',
                     'TORVIO_NO_MEMORY', 'TORVIO_INTERNAL_ERROR'];
const [, , BAD_ARGUMENT, , REFUSED, NO_MEMORY, INTERNAL_ERROR] = statusNames.keys();
const flagPretty = 1, flagPage = 2, flagCommon = 4, flagAllowLoss = 8;

// An instance whose memory has grown above this is not used again: WebAssembly cannot give memory back otherwise.
const mostMemoryKept = 64 * 2 ** 20;
// Memory ends at 2 GiB. A larger size must not reach the module, whose sizes have 32 bits.
const mostBytes = 2 ** 31 - 1;

/** A function has no result. */
export class TorvioError extends Error {
  constructor(status, message, {field = '', offset = null, report = null, cause} = {}) {
    super(message, cause === undefined ? undefined : {cause});
    this.name = 'TorvioError';
    this.status = status;
    this.statusName = statusNames[status] ?? String(status);
    this.field = field;
    this.offset = offset;
    this.report = report;
  }
}

const badArgument = (message) => new TorvioError(BAD_ARGUMENT, message);
const noMemory = (cause) => new TorvioError(NO_MEMORY, 'not enough memory', {cause});

// ---- The module ----

async function bytesOfModule(source) {
  if (typeof source === 'string') source = new URL(source, globalThis.document?.baseURI ?? globalThis.location?.href);
  if (source instanceof URL) {
    // fetch() of Node has no files.
    if (source.protocol === 'file:' && globalThis.process?.versions?.node) {
      const {readFile} = await import(/* webpackIgnore: true */ /* @vite-ignore */ 'node:fs/promises');
      return readFile(source);
    }
    source = await fetch(source);
  }
  if (typeof source?.arrayBuffer === 'function') {
    if (source.ok === false) throw new Error(`cannot load ${source.url || 'the module'}: status ${source.status}`);
    return source.arrayBuffer();
  }
  return source;
}

async function moduleOf(source) {
  if (source instanceof WebAssembly.Module) return source;
  return WebAssembly.compile(await bytesOfModule(source));
}

// The module gets nothing from its host: files are in memory, and its C library asks for the others only in functions
// that are never called. What it prints when it fails is kept for the message.
function makeInstance(module) {
  const badFile = 8, notThere = 52;  // EBADF, ENOSYS
  let exports = null, printed = '';
  const own = {
    fd_write(file, parts, count, written) {
      if (file !== 2) return badFile;
      const view = new DataView(exports.memory.buffer);
      let total = 0;
      for (let i = 0; i < count; ++i) {
        const start = view.getUint32(parts + 8 * i, true), size = view.getUint32(parts + 8 * i + 4, true);
        const some = new Uint8Array(exports.memory.buffer, start, size).subarray(0, 1000 - printed.length);
        printed += String.fromCharCode(...some);
        total += size;
      }
      view.setUint32(written, total, true);
      return 0;
    },
    proc_exit(code) { throw new WebAssembly.RuntimeError(`exit ${code}`); },
  };
  const imports = {};
  for (const {module: from, name} of WebAssembly.Module.imports(module)) {
    (imports[from] ??= {})[name] = own[name] ?? (name.startsWith('fd_') ? () => badFile : () => notThere);
  }
  try {
    exports = new WebAssembly.Instance(module, imports).exports;
  } catch (error) {
    throw error instanceof RangeError ? noMemory(error) : error;
  }
  exports._initialize();
  return {exports, printed: () => printed.trim()};
}

// ---- Arguments and results ----

const encoder = new TextEncoder();
const decoder = new TextDecoder('utf-8', {ignoreBOM: true});

function viewOf(bytes, what) {
  if (ArrayBuffer.isView(bytes)) return new Uint8Array(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  const tag = Object.prototype.toString.call(bytes);
  if (tag === '[object ArrayBuffer]' || tag === '[object SharedArrayBuffer]') return new Uint8Array(bytes);
  throw new TypeError(`${what} must be a Uint8Array or an ArrayBuffer`);
}

function utf8(text, what) {
  if (typeof text !== 'string') throw new TypeError(`${what} must be a string`);
  // Halves of a surrogate pair have no UTF-8.
  if (/\p{Surrogate}/u.test(text)) throw badArgument(`${what} is not valid Unicode`);
  try {
    return encoder.encode(text);
  } catch (error) {
    throw noMemory(error);
  }
}

function integer(value, what) {
  if (!Number.isInteger(value) || value !== (value | 0)) throw badArgument(`${what} must be an integer`);
  return value;
}

function checkedOptions(options, known) {
  if (options === undefined || options === null) return {};
  if (typeof options !== 'object') throw new TypeError('options must be an object');
  for (const member of Object.keys(options)) {
    if (!known.includes(member)) throw new TypeError(`there is no option ${member}`);
  }
  return options;
}

const inputOptions = ['name', 'kind', 'encoding'];

// The arguments of one call, in the memory of an instance.
class Frame {
  constructor(exports) {
    this.exports = exports;
    this.taken = [];
  }
  view() { return new DataView(this.exports.memory.buffer); }
  word(address) { return this.view().getUint32(address, true); }
  reserve(size) {
    if (size > mostBytes) throw noMemory();
    // A file of no bytes has an address as well.
    const address = this.exports.malloc(Math.max(size, 1)) >>> 0;
    if (address === 0) throw noMemory();
    this.taken.push(address);
    return address;
  }
  bytes(view) {
    const address = this.reserve(view.length);
    new Uint8Array(this.exports.memory.buffer, address, view.length).set(view);
    return address;
  }
  // Null and undefined are NULL.
  text(text, what) {
    if (text === null || text === undefined) return 0;
    const bytes = utf8(text, what);
    if (bytes.includes(0)) throw badArgument(`${what} contains a NUL`);
    const address = this.reserve(bytes.length + 1);
    const to = new Uint8Array(this.exports.memory.buffer, address, bytes.length + 1);
    to.set(bytes);
    to[bytes.length] = 0;
    return address;
  }
  words(...values) {
    const address = this.reserve(4 * values.length);
    const view = this.view();
    values.forEach((value, i) => view.setUint32(address + 4 * i, value, true));
    return address;
  }
  // The words of a torvio_input.
  inputWords(bytes, {name, kind, encoding}, what = 'bytes') {
    const view = viewOf(bytes, what);
    return [0, this.bytes(view), view.length, this.text(name, 'name'), this.text(kind, 'kind'),
            this.text(encoding, 'encoding')];
  }
  input(bytes, options, what) { return this.words(...this.inputWords(bytes, options, what)); }
  // A copy of the torvio_buffer whose address is at `out`; null if there is none.
  result(out, asText) {
    const buffer = this.word(out);
    if (buffer === 0) return null;
    const bytes = new Uint8Array(this.exports.memory.buffer, this.word(buffer), this.word(buffer + 4));
    let copy;
    try {
      copy = asText ? decoder.decode(bytes) : bytes.slice();
    } catch (error) {
      throw noMemory(error);  // or the text is longer than strings of this host can be
    }
    this.exports.torvio_free(buffer);
    return copy;
  }
  textAt(address) {
    const bytes = new Uint8Array(this.exports.memory.buffer, address);
    return decoder.decode(bytes.subarray(0, bytes.indexOf(0)));
  }
  // What a torvio_error says.
  error(address, report = null) {
    const view = this.view();
    const offset = view.getBigUint64(address + 8, true);
    return new TorvioError(view.getInt32(address + 16, true), this.textAt(view.getUint32(address, true)), {
      field: this.textAt(view.getUint32(address + 4, true)),
      offset: offset === 0xFFFFFFFFFFFFFFFFn ? null : Number(offset),
      report: report === null ? null : JSON.parse(report),
    });
  }
  free() {
    for (const address of this.taken) this.exports.free(address);
  }
}

// Why a call trapped. A failure that the library knows is noted in the module.
function failureOf({exports, printed}, frame, trap, reportOut) {
  let failure = 0;
  try {
    failure = exports.torvio_failure();
  } catch {
    // Not even this can be called where the stack of the host is used up.
  }
  if (failure !== 0) {
    const error = frame.error(failure);
    if (error.status === REFUSED && reportOut !== 0) {
      const report = frame.result(reportOut, true);
      error.report = report === null ? null : JSON.parse(report);
    }
    return error;
  }
  const reason = trap instanceof WebAssembly.RuntimeError ? printed() || trap.message
                                                          : `stack overflow: ${trap.message}`;
  return new TorvioError(INTERNAL_ERROR, reason, {cause: trap});
}

export class Torvio {
  #module;
  #idle;  // an instance that can be used again, or null

  constructor(module) {
    this.#module = module;
    this.#idle = makeInstance(module);
    const {exports} = this.#idle;
    this.version = new Frame(exports).textAt(exports.torvio_version());
  }

  static async load(source = new URL('torvio.wasm', import.meta.url)) {
    return new Torvio(await moduleOf(await source));
  }

  // parameters(frame) returns those of the function before its result, finish(frame) is called if there is a result.
  // The instance is used again only if nothing went wrong: a trap leaves its memory as the failed function had it.
  #call(name, parameters, {asText = true, withReport = false, finish = () => {}} = {}) {
    const instance = this.#idle ?? makeInstance(this.#module);
    this.#idle = null;
    const {exports} = instance;
    const frame = new Frame(exports);
    const passed = parameters(frame);
    const resultOut = frame.words(0), errorOut = frame.words(0), reportOut = withReport ? frame.words(0) : 0;
    try {
      exports[name](...passed, resultOut, ...(withReport ? [reportOut] : []), errorOut);
    } catch (trap) {
      throw failureOf(instance, frame, trap, reportOut);
    }
    const report = withReport ? frame.result(reportOut, true) : null;
    const result = frame.result(resultOut, asText);
    const error = frame.word(errorOut);
    // Of a damaged file there is both an error and a result, namely what was read.
    if (result === null) throw error === 0 ? noMemory() : frame.error(error, report);
    if (error !== 0) exports.torvio_free(error);
    finish(frame);
    frame.free();
    if (exports.memory.buffer.byteLength <= mostMemoryKept) this.#idle = instance;
    return {result, report};
  }

  supported() { return JSON.parse(this.#call('torvio_supported', () => []).result); }

  check(bytes, options) {
    options = checkedOptions(options, inputOptions);
    return JSON.parse(this.#call('torvio_check', (frame) => [frame.input(bytes, options), 0]).result);
  }

  info(bytes, options) {
    options = checkedOptions(options, inputOptions);
    return JSON.parse(this.#call('torvio_info', (frame) => [frame.input(bytes, options), 0]).result);
  }

  toJson(bytes, options) {
    options = checkedOptions(options, [...inputOptions, 'pretty']);
    const flags = options.pretty ? flagPretty : 0;
    return this.#call('torvio_json', (frame) => [frame.input(bytes, options), flags]).result;
  }

  fromJson(text, version = 0) {
    const bytes = typeof text === 'string' ? utf8(text, 'text') : viewOf(text, 'text');
    version = integer(version, 'version');
    return this.#call('torvio_from_json', (frame) => [frame.input(bytes, {}), version, 0], {asText: false}).result;
  }

  map(bytes, options) {
    options = checkedOptions(options, [...inputOptions, 'find', 'range']);
    return this.#call('torvio_map', (frame) => [frame.input(bytes, options), frame.text(options.find, 'find'),
                                                frame.text(options.range, 'range'), 0]).result;
  }

  mapPage(bytes, options) {
    options = checkedOptions(options, inputOptions);
    return this.#call('torvio_map', (frame) => [frame.input(bytes, options), 0, 0, flagPage]).result;
  }

  draw(bytes, options) {
    options = checkedOptions(options, inputOptions);
    return this.#call('torvio_draw', (frame) => [frame.input(bytes, options), 0]).result;
  }

  drawPage(files, options) {
    const {title} = checkedOptions(options, ['title']);
    return this.#call('torvio_draw_page', (frame) => {
      const words = [];
      for (const {bytes, ...input} of files) {
        words.push(...frame.inputWords(bytes, checkedOptions(input, inputOptions)));
      }
      return [frame.words(...words), words.length / 6, frame.text(title, 'title'), 0];
    }).result;
  }

  diff(a, b, options) {
    options = checkedOptions(options, ['nameA', 'nameB', 'kindA', 'kindB', 'encoding', 'part', 'tolerance', 'common']);
    const {nameA, nameB, kindA, kindB, encoding, part, tolerance = 0, common} = options;
    if (typeof tolerance !== 'number') throw new TypeError('tolerance must be a number');
    let sameOut, same;
    const {result} = this.#call('torvio_diff', (frame) => {
      sameOut = frame.words(0);
      return [frame.input(a, {name: nameA, kind: kindA, encoding}, 'a'),
              frame.input(b, {name: nameB, kind: kindB, encoding}, 'b'), frame.text(part, 'part'), tolerance,
              common ? flagCommon : 0, sameOut];
    }, {finish: (frame) => { same = frame.word(sameOut) === 1; }});
    return {same, lines: result};
  }

  convert(bytes, version, options) {
    options = checkedOptions(options, [...inputOptions, 'allowLoss']);
    version = integer(version, 'version');
    const flags = options.allowLoss ? flagAllowLoss : 0;
    const {result, report} = this.#call('torvio_convert', (frame) => [frame.input(bytes, options), version, flags],
                                        {asText: false, withReport: true});
    return {bytes: result, report: JSON.parse(report)};
  }

  recover(bytes, options) {
    options = checkedOptions(options, inputOptions);
    const {result, report} = this.#call('torvio_recover', (frame) => [frame.input(bytes, options), 0],
                                        {asText: false, withReport: true});
    return {bytes: result, report: JSON.parse(report)};
  }

  format(name, language = 'markdown') {
    return this.#call('torvio_format', (frame) => [frame.text(name, 'name'), frame.text(language, 'language')]).result;
  }

  schema(kind) { return this.#call('torvio_schema', (frame) => [frame.text(kind, 'kind')]).result; }
}
