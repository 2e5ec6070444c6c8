// The libraries with the functions of raw.js, texts and errors: what torvio.js and oldtorvio.js share.
'use strict';
const koffi = require('koffi');
const raw = require('./raw.js');

// A library is loaded when the first function of it is called. The environment variable holds its path; without it, the
// loader of the system searches.
function lazyLibrary(name, variable) {
  let loaded = null;
  const load = () => {
    const own = process.env[variable];
    const names = own ? [own] : raw.files[name][process.platform] || raw.files[name].linux;
    for (const [position, file] of names.entries()) {
      try {
        return koffi.load(file);
      } catch (error) {
        if (position + 1 === names.length) {
          throw new Error(`cannot load the library ${file}: ${error.message}; ${variable} can hold its path`);
        }
      }
    }
  };
  const functions = {};
  for (const [called, prototype] of Object.entries(raw.prototypes[name])) {
    let native = null;
    functions[called] = (...parameters) => {
      if (native === null) {
        loaded = loaded || load();
        native = loaded.func(prototype);
      }
      return native(...parameters);
    };
  }
  return functions;
}

const torvio = lazyLibrary('torvio', 'TORVIO_LIBRARY');
const oldTorvIO = lazyLibrary('OldTorvIO', 'OLDTORVIO_LIBRARY');

class TorvioError extends Error {
  constructor(message, details) {
    super(message);
    this.name = 'TorvioError';
    this.function = details.function;
    this.status = details.status;
    this.offset = details.offset === undefined ? null : details.offset;
    this.field = details.field || '';
    this.result = details.result === undefined ? null : details.result;
    this.report = details.report === undefined ? null : details.report;
  }
}

// ---- Texts ----

const codePages = new Map();
function codePage(name) {
  let page = codePages.get(name);
  if (page) return page;
  const upper = Object.prototype.hasOwnProperty.call(raw.codePages, name) ? raw.codePages[name] : null;
  if (upper === null) {
    throw new RangeError(`there is no code page ${name}, only ${Object.keys(raw.codePages).join(', ')}`);
  }
  page = {upper, bytes: new Map([...upper].map((character, position) => [character, position + 0x80]))};
  codePages.set(name, page);
  return page;
}

const defaultEncoding = 'cp1252';

function withoutNul(text, what) {
  if (typeof text !== 'string') throw new TypeError(`${what} must be a string`);
  if (text.includes('\0')) throw new RangeError(`${what} must not contain a NUL`);
}

// A text as bytes of the code page with a zero at the end. More than `most` bytes would end the process.
function encodeText(text, encoding, what, most = Infinity) {
  if (text === null || text === undefined) return null;
  withoutNul(text, what);
  const page = codePage(encoding || defaultEncoding);
  const bytes = [];
  for (const character of text) {
    const code = character.codePointAt(0);
    const byte = code < 0x80 ? code : page.bytes.get(character);
    if (byte === undefined) {
      throw new RangeError(`${what}: the code page ${encoding || defaultEncoding} has no ${JSON.stringify(character)}`);
    }
    bytes.push(byte);
  }
  if (bytes.length > most) throw new RangeError(`${what} must have at most ${most} characters`);
  return Uint8Array.from([...bytes, 0]);
}

// The text up to its first zero.
function decodeText(bytes, encoding) {
  const page = codePage(encoding || defaultEncoding);
  let text = '';
  for (const byte of bytes) {
    if (byte === 0) break;
    text += byte < 0x80 ? String.fromCharCode(byte) : page.upper[byte - 0x80];
  }
  return text;
}

function utf8(text, what) {
  if (text === null || text === undefined) return null;
  withoutNul(text, what);
  // Halves of a pair have no UTF-8.
  if (/[\uD800-\uDFFF]/u.test(text)) throw new RangeError(`${what} is not valid Unicode`);
  return Buffer.from(text + '\0', 'utf8');
}

// The name of a file as the system has it: UTF-8, but on Windows bytes of its code page, for which a string is encoded
// as cp1252. Bytes are passed unchanged.
function fileName(path, most = Infinity) {
  let bytes;
  if (path instanceof Uint8Array) {
    if (path.includes(0)) throw new RangeError('path must not contain a NUL');
    bytes = Buffer.concat([path, Uint8Array.of(0)]);
  } else {
    if (typeof path !== 'string') throw new TypeError('path must be a string or bytes');
    bytes = process.platform === 'win32' ? encodeText(path, defaultEncoding, 'path') : utf8(path, 'path');
  }
  if (bytes.length - 1 > most) throw new RangeError(`path must have at most ${most} bytes`);
  return bytes;
}

module.exports = {koffi, raw, torvio, oldTorvIO, TorvioError, defaultEncoding, encodeText, decodeText, utf8, fileName};
