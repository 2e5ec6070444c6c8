// Uses the declarations of bindings/node; the compiler only checks it.
import {torvio, PartBuilder, PartFile, SheetFile, Sheet, MachineFile, TorvioError, raw, decodeText}
  from '../../bindings/node';

const text: string = torvio.json({path: 'a', encoding: 'cp437'}, {pretty: true});
const bytes: Uint8Array = torvio.fromJson({data: new Uint8Array(3)}, {version: 180});
const made: string = torvio.convert(bytes, 112, {allowLoss: true}).report;
const same: boolean = torvio.diff('a', 'b', {part: null, tolerance: 1}).same;
PartBuilder.start({width: 1, height: 2, thickness: 3, customTexts: [text, null]});
const count: number = PartBuilder.add({x: 1, y: 2, type: 1, values: new Uint32Array(9)});
const width: number = PartFile.info(new Uint8Array(1)).width + SheetFile.info('a', {encoding: 'cp850'}).height;
const stations: number[] = MachineFile.open('a').stations.map((one) => one.values[0]);
const sheet: Sheet = Sheet.open('a');
const value: string = sheet.value('width') + decodeText(bytes) + made + same + count + width + stations;
const status: number = raw.oldTorvIO.GetOldSheetInfoPartGroupIDs(sheet.address, bytes);
const result: [bigint | null] = [null];
raw.torvio.torvio_supported(result, null);
const place: number | null = new (TorvioError as any)().offset;

// @ts-expect-error: an unknown member
torvio.json({path: 'a', paht: 'b'});
// @ts-expect-error: a part has a thickness
PartBuilder.start({width: 1, height: 2});
// @ts-expect-error: the bytes of a new file are no text
const wrong: string = torvio.recover('a').data;
// @ts-expect-error: a record is an address
raw.oldTorvIO.DeleteSheetInfo('sheet');

export {value, status, place, wrong};
