// The functions of torvio.h.
'use strict';
const {koffi, raw, torvio, TorvioError, utf8} = require('./library.js');

const constants = raw.constants;

function bytesAt(address, size) {
  // A copy: the memory belongs to the library.
  return size === 0 ? Buffer.alloc(0) : Buffer.from(Buffer.from(koffi.view(address, size)));
}

function textAt(address) {
  return koffi.decode.string(address);
}

// A result as bytes; it is freed in any case.
function take(out) {
  const address = out[0];
  if (address === null) return null;
  try {
    const buffer = koffi.decode(address, 'torvio_buffer');
    return bytesAt(buffer.data, Number(buffer.size));
  } finally {
    torvio.torvio_free(address);
  }
}

function takeError(out) {
  const address = out[0];
  if (address === null) return null;
  try {
    const error = koffi.decode(address, 'torvio_error');
    const offset = BigInt(error.offset);
    return {message: textAt(error.message), field: textAt(error.field),
            offset: offset === constants.TORVIO_NO_OFFSET ? null : Number(offset)};
  } finally {
    torvio.torvio_free(address);
  }
}

const members = new Set(['path', 'data', 'name', 'kind', 'encoding']);

// A torvio_input of a path or of an object.
function inputOf(input) {
  const file = typeof input === 'string' ? {path: input} : input instanceof Uint8Array ? {data: input} : input;
  if (file === null || typeof file !== 'object') throw new TypeError('input must be a path, bytes or an object');
  for (const member of Object.keys(file)) {
    if (!members.has(member)) throw new TypeError(`input has an unknown member ${member}`);
  }
  const inMemory = file.data !== undefined && file.data !== null;
  if (inMemory === (file.path !== undefined && file.path !== null)) {
    throw new TypeError('input must have either path or data');
  }
  if (inMemory && !(file.data instanceof Uint8Array)) throw new TypeError('data must be a Uint8Array');
  return {path: utf8(file.path, 'path'),
          // A file of no bytes needs an address, too.
          data: inMemory ? (file.data.length > 0 ? file.data : Buffer.alloc(1)) : null,
          size: inMemory ? file.data.length : 0, name: utf8(file.name, 'name'), kind: utf8(file.kind, 'kind'),
          encoding: utf8(file.encoding, 'encoding')};
}

function nameOf(input) {
  return typeof input === 'string' ? input : input.name || input.path || '';
}

// Calls a function with its result and error, and returns the result. accepted: statuses that are not failures.
function call(name, parameters, {asText = true, about = '', accepted = [constants.TORVIO_OK], report = null} = {}) {
  const result = [null], error = [null];
  const reportOut = report === null ? [] : [[null]];
  const status = torvio['torvio_' + name](...parameters, result, ...reportOut, error);
  // Everything is taken before anything can be thrown, so that everything is freed.
  const why = takeError(error);
  const bytes = take(result);
  const reportBytes = report === null ? null : take(reportOut[0]);
  const value = bytes === null ? null : asText ? bytes.toString('utf8') : bytes;
  const reportText = reportBytes === null ? null : reportBytes.toString('utf8');
  if (!accepted.includes(status) || value === null) {
    const message = why === null ? 'memory ran out' : why.message;
    throw new TorvioError(about ? `${about}: ${message}` : message,
                          {function: 'torvio_' + name, status, offset: why === null ? null : why.offset,
                           field: why === null ? '' : why.field, result: value, report: reportText});
  }
  return report === null ? value : {data: value, report: reportText};
}

function ofFile(name, input, parameters, options = {}) {
  return call(name, [inputOf(input), ...parameters], {about: nameOf(input), ...options});
}

function version(number) {
  if (!Number.isInteger(number) || number < -0x80000000 || number > 0x7FFFFFFF) {
    throw new TypeError('version must be an integer of 32 bits');
  }
  return number;
}

module.exports = {
  version: () => torvio.torvio_version(),
  supported: () => call('supported', []),

  // The verdict says what the file is: it is an error only if there is none.
  check: (input) => ofFile('check', input, [0], {
    accepted: [constants.TORVIO_OK, constants.TORVIO_DAMAGED, constants.TORVIO_NOT_READ]}),
  info: (input) => ofFile('info', input, [0]),
  json: (input, {pretty = false} = {}) => ofFile('json', input, [pretty ? constants.TORVIO_PRETTY : 0]),
  fromJson: (input, {version: wanted = 0} = {}) => ofFile('from_json', input, [version(wanted), 0], {asText: false}),
  schema: (kind) => call('schema', [utf8(kind, 'kind')]),
  map: (input, {find = null, range = null} = {}) =>
    ofFile('map', input, [utf8(find, 'find'), utf8(range, 'range'), 0]),
  mapPage: (input) => ofFile('map', input, [null, null, constants.TORVIO_PAGE]),
  format: (name, language = null) => call('format', [utf8(name, 'name'), utf8(language, 'language')]),
  draw: (input) => ofFile('draw', input, [0]),
  drawPage: (inputs, {title = null} = {}) =>
    call('draw_page', [inputs.map(inputOf), inputs.length, utf8(title, 'title'), 0]),
  diff: (a, b, {part = null, tolerance = 0, common = false} = {}) => {
    const same = new Int32Array(1);
    const lines = call('diff', [inputOf(a), inputOf(b), utf8(part, 'part'), tolerance,
                                common ? constants.TORVIO_COMMON : 0, same]);
    return {same: same[0] === 1, lines};
  },
  convert: (input, wanted, {allowLoss = false} = {}) =>
    ofFile('convert', input, [version(wanted), allowLoss ? constants.TORVIO_ALLOW_LOSS : 0],
           {asText: false, report: true}),
  recover: (input) => ofFile('recover', input, [0], {asText: false, report: true}),
};
