// Four jobs on the files of a folder, and two files that cannot be read.
'use strict';
const path = require('path');
const {torvio, PartBuilder, PartFile, Sheet, TorvioError} = require('./index.js');

function askParts(file) {
  const sheet = Sheet.open(file);
  try {
    console.log(`${sheet.value('width')} x ${sheet.value('height')}, ${sheet.value('part_count')} parts`);
    // Six texts for each part: path, width, height, quantity, work order and ";".
    const details = sheet.value('part_details_01').split('|');
    for (let i = 0; i + 5 < details.length; i += 6) {
      const [part, width, height, quantity, order] = details.slice(i);
      console.log(`  ${quantity} of ${part}, ${width} x ${height}, for ${order}`);
    }
  } finally {
    sheet.close();
  }
}

function walkNest(file) {
  const {record} = JSON.parse(torvio.json(file));
  for (const part of record.partList.parts) {
    console.log(`${part.partName}: ${part.shapes.shapes.length} shapes`);
    for (const {gridCount1, gridCount2, originX, originY} of part.patterns) {
      console.log(`  ${gridCount1} x ${gridCount2} at ${originX.toFixed(4)}, ${originY.toFixed(4)}`);
    }
  }
}

function buildPart(file) {
  PartBuilder.start({width: 24, height: 12, thickness: 0.0625, material: 'STEEL', customTexts: ['Träger 7']});
  PartBuilder.add({x: 6, y: 6, type: 1, values: [0.5]});
  PartBuilder.add({x: 18, y: 6, type: 1, values: [0.5]});
  PartBuilder.save(file, 180);

  const {width, height, thickness} = PartFile.info(file);
  console.log(`${width.toFixed(4)} x ${height.toFixed(4)} x ${thickness.toFixed(4)}`);
  const {record} = JSON.parse(torvio.json(file));
  const {shapes} = record.shapes;
  console.log(`${record.customText1}: ${shapes.length} shapes, the last at ${shapes[1].x.toFixed(4)}`);
}

function readRecord(file) {
  const {kind, version, record} = JSON.parse(torvio.json(file));
  console.log(`${kind} of version ${version}: ${record.name}`);
  for (const {entryKey, entryText} of record.entryList) console.log(`  ${entryKey}: ${entryText}`);
}

function report(job) {
  try {
    job();
  } catch (error) {
    if (!(error instanceof TorvioError)) throw error;
    const place = error.offset === null ? '' : `, at ${error.offset} in ${error.field}`;
    console.log(`${error.function}: status ${error.status}${place}`);
    if (error.result === null) return;
    console.log(`  ${JSON.parse(error.result).record.partList.parts.length} parts were read`);
  }
}

const inFolder = (name) => path.join(process.argv[2], name);
console.log('Parts of a sheet');
askParts(inFolder('nest_180.sheet'));
console.log('A nest');
walkNest(inFolder('nest_180.sheet'));
console.log('A new part');
buildPart(inFolder('Träger.part'));
console.log('A material');
readRecord(inFolder('steel.mat'));
console.log('A file that does not exist');
report(() => torvio.json(inFolder('nothing.sheet')));
report(() => PartFile.info(inFolder('nothing.part')));
console.log('A damaged file');
report(() => torvio.json(inFolder('damaged.sheet')));
report(() => Sheet.open(inFolder('damaged.sheet')));
