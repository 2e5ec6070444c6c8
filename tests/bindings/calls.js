// Calls everything that bindings/node has: calls.js BINDINGS FILES OUTPUT
'use strict';
const fs = require('fs');
const path = require('path');
const [bindings, files, output] = process.argv.slice(2);
const {torvio, PartBuilder, PartFile, GroupPartFile, SpecialToolFile, ToolInventoryFile, MachineFile, SheetFile, Sheet,
       PartList, TorvioError, encodeText, decodeText, raw} = require(bindings);

const file = (name) => path.join(files, name);
const line = (...values) => console.log(values.join(' | '));
const real = (value) => value.toFixed(4);
const reals = (values) => [...values].map(real).join(' ');
const write = (name, content) => fs.writeFileSync(path.join(output, name), content);

function status(label, job) {
  try {
    job();
    line(label, 'no error');
  } catch (error) {
    if (!(error instanceof TorvioError)) throw error;
    line(label, error.function, error.status);
  }
}

function refused(label, job) {
  try {
    job();
    line(label, 'accepted');
  } catch (error) {
    if (error instanceof TorvioError) throw error;
    line(label, 'refused');
  }
}

function parts() {
  refused('a shape before the first part', () => PartBuilder.add({x: 1, y: 1, type: 1}));
  PartBuilder.start({width: 24, height: 12.5, thickness: 0.0625, kind: -1, name: 'COVER', assembly: 'CABINET',
                     material: 'STEEL', customTexts: ['first', 'Ä€', null]});
  line('shapes', PartBuilder.add({x: 1, y: 1, type: 1, values: [0.5, 1]}));
  line('shapes', PartBuilder.add({x: 2, y: 1, type: 2, flags: 3, values: Uint32Array.of(0x3F000000, 7), itemWord1: 16,
                                  itemWord2: 0.25, pairA: 1, pairB: 2, pairC: 3, pairD: 4, toolName: 'corner punch',
                                  itemShort1: -1, itemShort2: 7, itemWord3: 0.5, itemWord4: 0.75}));
  status('no such tool', () => PartBuilder.add({x: 1, y: 1, type: 2, toolName: 'no such tool'}));
  status('no such group', () => PartBuilder.addGroup({x: 1, y: 1, toolName: 'no such tool'}));
  line('shapes', PartBuilder.addGroup({x: 5, y: 6, angle: 4, toolName: 'Corner Punch'}));
  line('shapes', PartBuilder.addToGroup(3, {x: 5.5, y: 6.5, type: 1, values: [0.5]}));
  refused('a group that does not exist', () => PartBuilder.addToGroup(9, {x: 1, y: 1, type: 1}));
  refused('a long material', () => PartBuilder.start({width: 1, height: 1, thickness: 1, material: 'x'.repeat(21)}));
  status('version 63', () => PartBuilder.save(file('calls.part'), 63));
  status('no such folder', () => PartBuilder.save(file('no such folder/calls.part')));
  PartBuilder.save(file('calls.part'));
  refused('a long path', () => PartBuilder.save('x'.repeat(260)));

  const info = PartFile.info(file('calls.part'));
  line('part', info.materialType, real(info.width), real(info.height), real(info.thickness));
  for (const key of ['angle', 'Revision', 'MATTYPE', 'Thickness']) line(key, PartFile.value(file('calls.part'), key));
  status('an unknown key', () => PartFile.value(file('calls.part'), 'colour'));
  line('tools', PartFile.tools(file('calls.part')));
  line('special tools', PartFile.specialTools(file('calls.part')).replaceAll(files, ''));
  line('special tools', PartFile.specialTools(file('tooled.part')));
  line('special tools', GroupPartFile.specialTools(file('brackets.group')));
  const list = new PartList();
  list.load(file('brackets.group'));
  status('a list from a material', () => list.load(file('steel.mat')));
  list.close();
}

function tools() {
  const tool = SpecialToolFile.open(file('Corner Punch.spt'));
  line('special tool', real(tool.orientation), real(tool.specialValue), reals(tool.dimensions), tool.firstValueCount,
       reals(tool.firstValues), tool.secondValueCount, reals(tool.secondValues), reals(tool.extraValues),
       tool.lateFlag);
  for (const shape of tool.shapes) line('shape', shape.type, real(shape.x), real(shape.y), reals(shape.values));
  for (const one of ToolInventoryFile.open(file('shop.inv'))) {
    line('tool', one.name, reals(one.dimensions), real(one.orientation), one.firstValueCount, reals(one.firstValues),
         one.secondValueCount, reals(one.secondValues));
  }
  status('no inventory', () => ToolInventoryFile.open(file('nothing')));
}

function machines() {
  const machine = MachineFile.open(file('punch.mch'));
  line('machine', machine.kind, machine.version, real(machine.sizeX), real(machine.sizeY), machine.text1, machine.text2,
       machine.stationWord, machine.extra1, machine.extra2, machine.stationMode);
  for (const one of machine.stations) {
    line('station', one.stationNumber, one.stationType, real(one.orientation), real(one.realF), real(one.stationValue),
         one.valueCount, reals(one.values), reals(one.limits), one.shapeCode, reals(one.dimensions), reals(one.offsets),
         one.specialToolPath, reals(one.pairValues), one.wordF);
  }
  const name = MachineFile.name(file('punch.mch'));
  line('name', name.displayName, name.kind, name.text2, name.secondText, name.lateText);
  const size = MachineFile.size(file('punch.mch'));
  line('size', real(size.sizeX), real(size.sizeY), size.clampCount, size.blockMode, real(size.stationMinX),
       real(size.stationMinY), real(size.stationMaxX), real(size.stationMaxY), reals(size.area));
  status('a damaged machine', () => MachineFile.open(file('damaged.mch')));
  status('its name', () => MachineFile.name(file('damaged.mch')));
  status('its size', () => MachineFile.size(file('damaged.mch')));
}

function sheets() {
  for (const name of ['nest_180.sheet', 'nest_80.sheet']) {
    const info = SheetFile.info(file(name)), clamps = SheetFile.clamps(file(name));
    line('sheet', info.materialName, info.materialGroup, info.materialType, info.materialText3, info.materialText4,
         info.materialText5, info.machinePath, info.sheetLabel, info.materialFile, real(info.width), real(info.height),
         real(info.thickness), real(info.lateValue), info.partNames, info.tools);
    line('clamps', clamps.word, clamps.bits.join(' '), reals(clamps.positions), clamps.count, real(clamps.spacing));
    const {text3, text5} = SheetFile.materialTexts(file(name));
    line('texts', text3, text5);
    line('utilization', real(SheetFile.utilization(file(name))));
    const flags = SheetFile.driverFlags(file(name));
    line('flags', flags.length, flags[55], flags[101], flags[600]);
    line('sequence', SheetFile.sequenceSize(file(name)));
    SheetFile.verify(file(name));
  }
  for (const ask of ['info', 'clamps', 'materialTexts', 'utilization', 'driverFlags', 'sequenceSize', 'verify']) {
    status(ask, () => SheetFile[ask](file('damaged.sheet')));
  }
  status('no sheet', () => SheetFile.verify(file('nothing')));

  const copy = file('cöpy.sheet');
  fs.copyFileSync(file('nest_180.sheet'), copy);
  SheetFile.updateWorkOrder(copy, 'BRACKET 01', 'no such number', 'WO-1');
  SheetFile.updateWorkOrder(copy, 'BRACKET 02', 'WO-7001', 'WO-2');
  SheetFile.updateWorkOrder(copy, 'BRACKET 03', null, 'Prüfung');
  SheetFile.replaceNcPath(copy, 'D:\\NC');
  const sheet = Sheet.open(copy);
  for (const key of ['Material_Group', 'width', 'height', 'part_count', 'partfulldosname_and_count',
                     'partfulldosname_and_count_and_wonumber', 'partname_and_count_and_wonumber', 'PART_DETAILS_01',
                     'sheet_mat_type', 'sheet_thickness', 'preSkeletonDosName', 'totalSknPartCutArea',
                     'sheet_utilization', 'sheet_sequence_size']) {
    line(key, sheet.value(key));
  }
  line('groups', sheet.partGroupIds());
  refused('an unknown key', () => sheet.value('colour'));
  sheet.close();
  SheetFile.replaceSkeleton(copy, file('calls.part'));
  status('no skeleton', () => SheetFile.replaceSkeleton(copy, file('nothing')));

  const made = new Sheet();
  line('a new sheet', made.value('width'), made.partGroupIds());
  made.save(file('made.sheet'));
  made.load(file('made.sheet'));
  made.load(copy);
  line('parts', made.value('part_count'), made.value('totalSknPartCutArea'));
  status('version 51', () => made.save(file('refused.sheet'), 51));
  status('a sheet of a material', () => made.load(file('steel.mat')));
  made.close();
}

function companion() {
  const nest = fs.readFileSync(file('nest_180.sheet'));
  const inMemory = {data: nest, name: 'Träger', kind: 'sheet', encoding: 'cp437'};
  write('version', torvio.version());
  write('supported', torvio.supported());
  write('check', torvio.check(file('nest_180.sheet')));
  write('check damaged', torvio.check({path: file('damaged.sheet'), name: 'a'}));
  write('check nothing', torvio.check({path: file('nothing'), name: 'a'}));
  write('check empty', torvio.check(new Uint8Array(0)));
  write('info', torvio.info(inMemory));
  write('json', torvio.json(inMemory));
  write('json pretty', torvio.json(file('calls.part'), {pretty: true}));
  write('from json', torvio.fromJson({data: Buffer.from(torvio.json(file('tab.mac')))}));
  write('from json 180', torvio.fromJson({data: Buffer.from(torvio.json(file('tab.mac')))}, {version: 180}));
  write('schema', torvio.schema('part'));
  write('map', torvio.map(file('nest_180.sheet'), {find: '**.*Count', range: '0..20000'}));
  write('map page', torvio.mapPage(file('tab.mac')));
  write('format', torvio.format('macro'));
  write('format json', torvio.format('clamp-info', 'json'));
  write('draw', torvio.draw(inMemory));
  write('page', torvio.drawPage([inMemory, file('punch.mch')], {title: '<Seite>'}));
  const all = torvio.diff(file('nest_112.sheet'), file('nest_180.sheet'));
  write('diff', all.lines);
  const some = torvio.diff(file('nest_180.sheet'), {...inMemory, encoding: null},
                           {part: 'BRACKET 02', tolerance: 0.5, common: true});
  write('diff part', some.lines);
  line('same', all.same ? 1 : 0, some.same ? 1 : 0);
  const converted = torvio.convert(file('nest_180.sheet'), 112, {allowLoss: true});
  write('convert', converted.data);
  write('convert report', converted.report);
  const recovered = torvio.recover(file('damaged.sheet'));
  write('recover', recovered.data);
  write('recover report', recovered.report);
  try {
    torvio.convert(file('nest_180.sheet'), 112);
  } catch (error) {
    write('convert refused', error.report);
    line(error.function, error.status, error.result === null ? 'no result' : 'a result');
  }
  try {
    torvio.map(file('damaged.sheet'), {find: '*'});
  } catch (error) {
    write('map damaged', error.result);
    line(error.function, error.status, error.offset, error.field);
  }
  status('a macro', () => torvio.draw(file('tab.mac')));
  status('a folder', () => torvio.info(files));
  status('no JSON', () => torvio.fromJson(Buffer.from('{}')));
  status('no kind', () => torvio.schema('plate'));
  status('no file', () => torvio.drawPage([]));
  status('a flag', () => torvio.diff(file('tab.mac'), file('tab.mac'), {tolerance: -1}));
  // A number that signals: no computation with it may end the program.
  write('signals', torvio.json({data: fs.readFileSync(file('signals.sheet')), name: 'a'}));
  write('draw signals', torvio.draw({data: fs.readFileSync(file('signals.sheet')), name: 'a'}));
}

function texts() {
  for (const page of ['cp1252', 'cp1250', 'cp1251', 'cp1253', 'cp1254', 'cp437', 'cp850', 'latin1']) {
    const bytes = Uint8Array.from({length: 256}, (_, index) => (index + 1) % 256);
    const text = decodeText(bytes, page);
    write('page ' + page, text);
    line(page, Buffer.compare(encodeText(text, page), bytes) === 0 ? 'comes back' : 'is lost');
  }
  refused('a character that is missing', () => PartFile.value(file('calls.part'), 'я'));
  refused('an unknown code page', () => encodeText('a', 'cp9'));
  refused('a NUL in a path', () => torvio.check('a\0b'));
  refused('a NUL in a text', () => PartFile.value(file('calls.part'), 'a\0b'));
}

// Functions for C++ records, which only their status shows here, and the second name of a function.
function rawFunctions() {
  const path = Buffer.from(file('calls.part') + '\0');
  line('raw', ...['LoadOldPart', 'LoadOldSpecialTool', 'LoadOldToolInventory', 'LoadOldMacro', 'LoadOldMaterial',
                  'LoadOldMachine'].map((name) => raw.oldTorvIO[name](path, null)));
  raw.oldTorvIO.DeleteSheetInfo(raw.oldTorvIO.CreateSheetInfo());
}

// Another copy of the module, such as that of another package.
function secondCopy() {
  const own = Object.keys(require.cache).filter((name) => path.dirname(name) === fs.realpathSync(bindings));
  own.forEach((name) => delete require.cache[name]);
  const again = require(bindings);
  if (own.length < 5 || again.torvio === torvio) throw new Error('it is the same copy');
  again.torvio.info(file('nest_180.sheet'));
}

parts();
tools();
machines();
sheets();
companion();
texts();
rawFunctions();
secondCopy();
