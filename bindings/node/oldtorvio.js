// The functions of OldTorvIO.h.
'use strict';
const fs = require('fs');
const {oldTorvIO, TorvioError, defaultEncoding, encodeText, decodeText, fileName} = require('./library.js');

const meanings = new Map([
  [1, 'the file ends too early, or contains a value that is refused'],
  [-1, 'this version is not accepted'],
  [-2, 'the file cannot be opened or saved'],
]);

function nameOf(path) {
  return typeof path === 'string' ? path : Buffer.from(path).toString('utf8');
}

function failure(name, path, status, message) {
  return new TorvioError(`${nameOf(path)}: ${message || meanings.get(status) || 'status ' + status}`,
                         {function: name, status});
}

// Calls a function that begins with a path and returns a status.
function call(name, path, ...parameters) {
  const status = Number(oldTorvIO[name](fileName(path), ...parameters));
  if (status !== 0) throw failure(name, path, status);
}

// Some functions return 0 and change nothing if a file has a fault after its version word. Outputs begin with a value
// that no file has, so that this is noticed.
function damagedAfterVersion(name, path) {
  return failure(name, path, 1, 'the file is damaged after its version word');
}

const float = () => new Float32Array(1);
const floats = (count) => Array.from({length: count}, float);
const values = (arrays) => arrays.map((one) => one[0]);
const int = () => new Int32Array(1);
const uint = () => new Uint32Array(1);
const text = (size) => new Uint8Array(size);

// A NaN that differs from those of files: a file with exactly these bits would look damaged.
const unchanged = 0x7FC0DEAD;
function unchangedFloats(count) {
  return new Float32Array(new Uint32Array(count).fill(unchanged).buffer);
}
function isUnchanged(numbers) {
  return new Uint32Array(numbers.buffer, numbers.byteOffset, 1)[0] === unchanged;
}
// A text that begins like this was not set either.
function unchangedText(size) {
  const bytes = text(size);
  bytes[0] = bytes[1] = 1;
  return bytes;
}
function isUnchangedText(bytes) {
  return bytes[0] === 1 && bytes[1] === 1 && bytes[2] === 0;
}


function integer(value, least, most, what) {
  if (!Number.isInteger(value) || value < least || value > most) {
    throw new RangeError(`${what} must be an integer from ${least} to ${most}`);
  }
  return value;
}

// Nine 32-bit values: numbers are stored as float, those of an Int32Array or Uint32Array as they are.
function nineValues(numbers) {
  const nine = new Uint32Array(9);
  if (numbers.length > 9) throw new RangeError('values must have at most nine elements');
  if (numbers instanceof Int32Array || numbers instanceof Uint32Array) nine.set(numbers);
  else new Float32Array(nine.buffer).set(numbers);
  return nine;
}

// A text whose length the function returns: the buffer grows until it fits, in the second call unless the file changes.
function textOfAnyLength(read) {
  for (let size = 4096;;) {
    const bytes = text(size);
    const length = read(bytes, size);
    if (length < size) return bytes.subarray(0, length + 1);
    size = length + 1;
  }
}

// ---- Parts ----

let shapeCount = -1;  // of the part builder; -1 before the first start

function startedBuilder() {
  if (shapeCount < 0) throw new Error('PartBuilder.start must be called first');
}

const PartBuilder = {
  start({width, height, thickness, kind = 1, name = null, assembly = null, material = null, customTexts = [],
         encoding = defaultEncoding}) {
    const short = (value, what) => encodeText(value, encoding, what, 20);
    const long = (value, what) => encodeText(value, encoding, what, 255);
    oldTorvIO.InitTorvPart(width, height, thickness, integer(kind, -0x8000, 0x7FFF, 'kind'), long(name, 'name'),
                           short(assembly, 'assembly'), short(material, 'material'),
                           long(customTexts[0], 'a custom text'), long(customTexts[1], 'a custom text'),
                           long(customTexts[2], 'a custom text'));
    shapeCount = 0;
  },
  add({x, y, type, flags = 0, values: numbers = [], itemWord1 = 0, itemWord2 = 0, pairA = 0, pairB = 0, pairC = 0,
       pairD = 0, toolName = null, itemShort1 = 0, itemShort2 = 0, itemWord3 = 0, itemWord4 = 0,
       encoding = defaultEncoding}) {
    startedBuilder();
    const count = oldTorvIO.AddPatternToTorvPart(
      x, y, integer(type, -128, 255, 'type') & 255, integer(flags, 0, 0xFFFFFFFF, 'flags'), nineValues(numbers),
      integer(itemWord1, 0, 0xFFFFFFFF, 'itemWord1'), itemWord2, pairA, pairB, pairC, pairD,
      encodeText(toolName, encoding, 'toolName', 255), integer(itemShort1, -0x8000, 0x7FFF, 'itemShort1'),
      integer(itemShort2, -0x8000, 0x7FFF, 'itemShort2'), itemWord3, itemWord4);
    if (count < 0) throw failure('AddPatternToTorvPart', toolName || '', -1, 'the special tool cannot be loaded');
    return shapeCount = count;
  },
  addGroup({x, y, angle = 0, toolName, encoding = defaultEncoding}) {
    startedBuilder();
    const count = oldTorvIO.AddGroupPatIntoTorvPart(x, y, angle, encodeText(toolName, encoding, 'toolName', 255));
    if (count < 0) throw failure('AddGroupPatIntoTorvPart', toolName || '', -1, 'the special tool cannot be loaded');
    return shapeCount = count;
  },
  addToGroup(groupIndex, {x, y, type, values: numbers = []}) {
    startedBuilder();
    // A position after the new member would end the process.
    integer(groupIndex, 1, shapeCount, 'groupIndex');
    const count = oldTorvIO.AddPatIntoGroupPat(groupIndex, x, y, integer(type, -128, 255, 'type') & 255, 0,
                                               nineValues(numbers));
    if (count !== (shapeCount + 1) % 0x10000) throw failure('AddPatIntoGroupPat', 'the part', 0, 'memory ran out');
    return ++shapeCount;
  },
  save(path, version = 180) {
    const status = Number(oldTorvIO.SaveTorvPart(fileName(path, 259), integer(version, -0x8000, 0x7FFF, 'version')));
    if (status !== 0) throw failure('SaveTorvPart', path, status);
  },
};

const PartFile = {
  info(path, {encoding} = {}) {
    const materialType = text(257), size = floats(3);
    call('GetOldPartInfo', path, materialType, ...size);
    const [width, height, thickness] = values(size);
    return {materialType: decodeText(materialType, encoding), width, height, thickness};
  },
  value(path, key, {encoding} = {}) {
    const value = text(257);
    call('GetOldPartInfo_v1', path, encodeText(key, 'cp1252', 'key'), value);
    return decodeText(value, encoding);
  },
  tools: (path, {encoding} = {}) => decodeText(toolsOf(path), encoding),
  specialTools(path, {encoding} = {}) {
    // Each special tool is an item of the tools, and each item ends with a comma.
    const most = toolsOf(path).filter((byte) => byte === 0x2C).length;
    const value = text(1 + 258 * most);
    call('GetOldSptFromPart', path, value);
    return decodeText(value, encoding);
  },
};

function toolsOf(path) {
  return textOfAnyLength((bytes, size) => {
    const length = uint();
    call('GetOldPartTool', path, bytes, size, length);
    return length[0];
  });
}

const GroupPartFile = {
  specialTools: (path, {encoding} = {}) => decodeText(textOfAnyLength((bytes, size) => {
    const length = uint();
    call('GetOldSptFromGroupPart', path, bytes, size, length);
    return length[0];
  }), encoding),
};

// ---- Special tools, inventories, machines ----

const SpecialToolFile = {
  open(path) {
    const count = uint(), numbers = floats(5), firstCount = int(), first = floats(6), secondCount = int();
    const second = floats(6), extra = floats(2), lateFlag = new Uint8Array(1);
    call('OpenSpecialToolFile', path, count, ...numbers, firstCount, ...first, secondCount, ...second, ...extra,
         lateFlag);
    const [orientation, specialValue, ...dimensions] = values(numbers);
    const shapes = Array.from({length: count[0]}, (_, index) => {
      const type = int(), place = floats(6);
      oldTorvIO.GetShapeAt(index, type, ...place);
      const [x, y, ...more] = values(place);
      return {type: type[0], x, y, values: more};
    });
    return {orientation, specialValue, dimensions, firstValueCount: firstCount[0], firstValues: values(first),
            secondValueCount: secondCount[0], secondValues: values(second), extraValues: values(extra),
            lateFlag: lateFlag[0], shapes};
  },
};

const ToolInventoryFile = {
  open(path, {encoding} = {}) {
    const count = uint();
    call('LoadOldToolInventoryForCount', path, count);
    return Array.from({length: count[0]}, (_, index) => {
      const name = text(257), numbers = floats(4), firstCount = int(), first = floats(6), secondCount = int();
      const second = floats(6);
      oldTorvIO.GetOldToolInventoryInformation(index, name, ...numbers, firstCount, ...first, secondCount, ...second);
      const [dimension1, dimension2, dimension3, orientation] = values(numbers);
      return {name: decodeText(name, encoding), dimensions: [dimension1, dimension2, dimension3], orientation,
              firstValueCount: firstCount[0], firstValues: values(first), secondValueCount: secondCount[0],
              secondValues: values(second)};
    });
  },
};

const MachineFile = {
  open(path, {encoding} = {}) {
    const machine = {infoKind: 0, infoVersion: 0, infoSizeX: 0, infoSizeY: 0, infoText1: text(256),
                     infoText2: text(256), infoStationWord: 0, infoExtra1: 0, infoExtra2: 0, infoStationMode: 0,
                     infoStationCount: 0};
    call('LoadOldMachineInformation', path, machine);
    if (machine.infoVersion === 0) throw damagedAfterVersion('LoadOldMachineInformation', path);
    return {kind: machine.infoKind, version: machine.infoVersion, sizeX: machine.infoSizeX, sizeY: machine.infoSizeY,
            text1: decodeText(machine.infoText1, encoding), text2: decodeText(machine.infoText2, encoding),
            stationWord: machine.infoStationWord, extra1: machine.infoExtra1, extra2: machine.infoExtra2,
            stationMode: machine.infoStationMode,
            stations: Array.from({length: machine.infoStationCount}, (_, index) => stationAt(index, encoding))};
  },
  name(path, {encoding} = {}) {
    const texts = [unchangedText(257), text(257), text(257), text(257)], kind = uint();
    call('GetOldVLMQMachineName', path, texts[0], kind, texts[1], texts[2], texts[3]);
    if (isUnchangedText(texts[0])) throw damagedAfterVersion('GetOldVLMQMachineName', path);
    const [displayName, text2, secondText, lateText] = texts.map((one) => decodeText(one, encoding));
    return {displayName, kind: kind[0], text2, secondText, lateText};
  },
  size(path) {
    const numbers = floats(12);
    call('GetMachineDatasForQD', path, ...numbers);
    // Two of them are integers in the bytes of a float.
    const [sizeX, sizeY, , , stationMinX, stationMinY, stationMaxX, stationMaxY, ...area] = values(numbers);
    const [clampCount, blockMode] = [numbers[2], numbers[3]].map((one) => new Int32Array(one.buffer)[0]);
    return {sizeX, sizeY, clampCount, blockMode, stationMinX, stationMinY, stationMaxX, stationMaxY, area};
  },
};

function stationAt(index, encoding) {
  const ints = Array.from({length: 5}, int), reals = floats(3), numbers = new Float32Array(6), limits = floats(4);
  const dimensions = new Float32Array(3), offsets = new Float32Array(3), path = text(257), pair = floats(2);
  oldTorvIO.LoadOldStationToolFromMachine(index, ints[0], ints[1], ...reals, ints[2], numbers, ...limits, ints[3],
                                          dimensions, offsets, path, ...pair, ints[4]);
  const [stationNumber, stationType, valueCount, shapeCode, wordF] = values(ints);
  const [orientation, realF, stationValue] = values(reals);
  return {stationNumber, stationType, orientation, realF, stationValue, valueCount, values: [...numbers],
          limits: values(limits), shapeCode, dimensions: [...dimensions], offsets: [...offsets],
          specialToolPath: decodeText(path, encoding), pairValues: values(pair), wordF};
}

// ---- Sheets ----

const sheetTexts = ['materialName', 'materialGroup', 'materialType', 'materialText3', 'materialText4', 'materialText5',
                    'machinePath', 'sheetLabel', 'materialFile'];

const SheetFile = {
  info(path, {encoding} = {}) {
    for (let namesSize = 4096, toolsSize = 4096;;) {
      const texts = sheetTexts.map(() => text(261)), size = floats(3), lateValue = new Float64Array(1);
      const names = text(namesSize), namesLength = Int32Array.of(-1), tools = text(toolsSize), toolsLength = int();
      call('GetOldSheetInfo', path, ...texts, ...size, lateValue, names, namesSize, namesLength, tools, toolsSize,
           toolsLength);
      if (namesLength[0] < 0) throw damagedAfterVersion('GetOldSheetInfo', path);
      if (namesLength[0] < namesSize && toolsLength[0] < toolsSize) {
        const [width, height, thickness] = values(size);
        const decoded = sheetTexts.map((name, position) => [name, decodeText(texts[position], encoding)]);
        return {...Object.fromEntries(decoded), width, height, thickness, lateValue: lateValue[0],
                partNames: decodeText(names, encoding), tools: decodeText(tools, encoding)};
      }
      namesSize = Math.max(namesSize, namesLength[0] + 1);
      toolsSize = Math.max(toolsSize, toolsLength[0] + 1);
    }
  },
  clamps(path) {
    const word = uint(), bits = floats(3), positions = unchangedFloats(8), count = uint(), spacing = float();
    call('GetOldClampInfo', path, word, ...bits, positions, count, spacing);
    if (isUnchanged(positions)) throw damagedAfterVersion('GetOldClampInfo', path);
    return {word: word[0], bits: bits.map((one) => new Uint32Array(one.buffer)[0]), positions: [...positions],
            count: count[0], spacing: spacing[0]};
  },
  materialTexts(path, {encoding} = {}) {
    const text3 = unchangedText(257), text5 = text(257);
    call('GetOldVLMQMaterialName', path, text3, text5);
    if (isUnchangedText(text3)) throw damagedAfterVersion('GetOldVLMQMaterialName', path);
    return {text3: decodeText(text3, encoding), text5: decodeText(text5, encoding)};
  },
  utilization(path) {
    const utilization = unchangedFloats(1);
    call('GetOldSkeletonUtil', path, utilization);
    if (isUnchanged(utilization)) throw damagedAfterVersion('GetOldSkeletonUtil', path);
    return utilization[0];
  },
  driverFlags(path) {
    const flags = new Int32Array(601);
    call('GetSheetDriverFlags', path, flags);
    return flags;
  },
  sequenceSize(path) {
    const count = uint();
    call('GetSheetSequenceListSize', path, count);
    return count[0];
  },
  verify: (path) => call('LoadOldSheetInformation', path),

  // The edits. Their status does not say whether the file has changed, and they can ruin sheets below version 152.
  replaceNcPath: (path, ncPath, {encoding} = {}) =>
    call('ReplaceSheetMachineNcPath', path, given(encodeText(ncPath, encoding, 'ncPath', 255), 'ncPath')),
  replaceSkeleton: (path, partPath) => call('ReplaceSheetSknPatListWithPartPatList', path, fileName(partPath)),
  updateWorkOrder: (path, partName, oldNumber, newNumber, {encoding} = {}) =>
    call('UpdateSheetPartWONumber', path, given(encodeText(partName, encoding, 'partName'), 'partName'),
         encodeText(oldNumber, encoding, 'oldNumber'),
         given(encodeText(newNumber, encoding, 'newNumber', 255), 'newNumber')),
};

function given(value, what) {
  if (value === null) throw new TypeError(`${what} must be a string`);
  return value;
}

// Frees records that were not closed.
const forgotten = new FinalizationRegistry(({free, address}) => oldTorvIO[free](address));

class RecordHandle {
  #address;
  #free;

  constructor(address, free) {
    if (address === null) throw new Error('memory ran out');
    this.#address = address;
    this.#free = free;
    forgotten.register(this, {free, address}, this);
  }
  get address() {
    if (this.#address === null) throw new Error('it is closed');
    return this.#address;
  }
  close() {
    if (this.#address === null) return;
    forgotten.unregister(this);
    oldTorvIO[this.#free](this.#address);
    this.#address = null;
  }
}
if (Symbol.dispose) {
  RecordHandle.prototype[Symbol.dispose] = RecordHandle.prototype.close;
}

const listKeys = new Set(['partfulldosname_and_count', 'partfulldosname_and_count_and_wonumber',
                          'partname_and_count_and_wonumber', 'part_details_01']);

class Sheet extends RecordHandle {
  // The bytes of all files that were loaded: no text about their patterns needs more. NaN if unknown.
  #bytes = 0;

  constructor(address = oldTorvIO.CreateSheetInfo()) {
    super(address, 'FreeSheetHandle');
  }
  static open(path) {
    const size = sizeOf(path), sheet = [null];
    call('GetOldSheetHandle', path, sheet);
    const opened = new Sheet(sheet[0]);
    opened.#loaded(path, size);
    return opened;
  }
  #loaded(path, sizeBefore) {
    // An empty file cannot be loaded: a loaded file of size 0 has an unknown size.
    this.#bytes += Math.max(sizeBefore, sizeOf(path)) || NaN;
  }
  load(path) {
    const size = sizeOf(path);
    try {
      call('LoadOldSheet', path, this.address);
    } finally {
      this.#loaded(path, size);
    }
  }
  save(path, version = 180) {
    call('SaveOldSheet', path, this.address, integer(version, 0, 0xFFFF, 'version'));
  }
  value(key, {encoding} = {}) {
    const known = encodeText(key, 'cp1252', 'key');
    const parts = listKeys.has(key.toLowerCase()) ? Number(this.value('part_count')) : 0;
    const value = text(264 + parts * (260 + 256 + 256 + 3 * 64));
    // An unknown key leaves the value unchanged.
    value[0] = value[1] = 1;
    const status = Number(oldTorvIO.GetOldSheetInfoByName(this.address, known, value));
    if (status !== 0) throw failure('GetOldSheetInfoByName', key, status, 'memory ran out');
    if (isUnchangedText(value)) throw new RangeError(`sheets have no value ${JSON.stringify(key)}`);
    return decodeText(value, encoding);
  }
  partGroupIds() {
    if (Number.isNaN(this.#bytes)) {
      throw new Error('the sheet is from a pipe or device: the size of the text is unknown');
    }
    // A pattern takes more bytes in its file than its id takes in the text.
    const value = text(1 + this.#bytes);
    const status = Number(oldTorvIO.GetOldSheetInfoPartGroupIDs(this.address, value));
    if (status !== 0) throw failure('GetOldSheetInfoPartGroupIDs', 'the sheet', status, 'memory ran out');
    return decodeText(value);
  }
}

// The size of a file; pipes and devices have none.
function sizeOf(path) {
  const stat = fs.statSync(typeof path === 'string' ? path : Buffer.from(path), {throwIfNoEntry: false});
  return stat ? stat.size : 0;
}

class PartList extends RecordHandle {
  constructor() {
    super(oldTorvIO.CreateOldPartlistInfo(), 'DeleteOldPartlistInfo');
  }
  load(path) {
    call('LoadGroupPart', path, this.address);
  }
}

module.exports = {PartBuilder, PartFile, GroupPartFile, SpecialToolFile, ToolInventoryFile, MachineFile, SheetFile,
                  Sheet, PartList};
