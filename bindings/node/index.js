'use strict';
const {raw, torvio, oldTorvIO, TorvioError, encodeText, decodeText} = require('./library.js');

module.exports = {
  torvio: require('./torvio.js'),
  ...require('./oldtorvio.js'),
  TorvioError,
  // Texts as bytes of a code page that end with a zero, for the raw functions.
  encodeText: (text, encoding) => encodeText(text, encoding, 'text'),
  decodeText,
  raw: {torvio, oldTorvIO, constants: raw.constants},
};
