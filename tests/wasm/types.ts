// The declarations of the npm package fit their use; nothing runs this.
import {Torvio, TorvioError, type Check, type NewFile, type Supported, type Verdict} from 'oldtorvio';

const torvio: Torvio = await Torvio.load();
await Torvio.load(new URL('https://example.com/torvio.wasm'));
await Torvio.load(fetch('torvio.wasm'));
await Torvio.load(new WebAssembly.Module(new Uint8Array()));
const bytes = new Uint8Array(3);
const version: string = torvio.version;
const supported: Supported = torvio.supported();
const last: number = supported.kinds[0]!.versions[0]![1];
const check: Check = torvio.check(bytes, {name: 'a.sht', kind: 'sheet', encoding: null});
const verdict: Verdict = check.verdict;
const place: number | undefined = check.fault?.offset;
const name: unknown = torvio.info(bytes.buffer)['name'];
const file: Uint8Array = torvio.fromJson(torvio.toJson(bytes, {pretty: true}), 180);
const texts: string[] = [torvio.map(bytes, {find: 'width', range: '0..9'}), torvio.mapPage(bytes), torvio.draw(bytes),
                         torvio.drawPage([{bytes, name: 'a'}], {title: 'A'}), torvio.format('sheet', 'json'),
                         torvio.schema('sheet')];
const {same, lines}: {same: boolean, lines: string} =
  torvio.diff(bytes, file, {nameA: 'a', kindB: 'part', part: '0', tolerance: 0.1, common: true});
const made: NewFile[] = [torvio.convert(bytes, 180, {allowLoss: true}), torvio.recover(bytes)];
try {
  torvio.draw(bytes);
} catch (error) {
  if (error instanceof TorvioError) {
    const {status, statusName, field, offset, report} = error;
    console.log(status.toFixed(), statusName.length, field.length, offset?.toFixed(), report?.['kind']);
  }
}
// @ts-expect-error: the bytes of a file are no text
torvio.check('text');
// @ts-expect-error: there is no such option
torvio.draw(bytes, {colour: 'red'});
// @ts-expect-error: objects come from load()
new Torvio();
// @ts-expect-error: nothing is changed
torvio.version = '1';
// @ts-expect-error: there is no such language
torvio.format('sheet', 'html');
console.log(version, last, verdict, place, name, texts, same, lines, made);
