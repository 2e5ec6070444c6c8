// Says what files are, and writes a picture of each that has one: node example.mjs FILE ...
import {readFile, writeFile} from 'node:fs/promises';
import path from 'node:path';
import {Torvio, TorvioError} from 'oldtorvio';

const torvio = await Torvio.load();
for (const file of process.argv.slice(2)) {
  const bytes = await readFile(file), name = path.basename(file);
  const {verdict, kind, version, fault} = torvio.check(bytes, {name});
  console.log(`${name}: ${verdict}${kind ? `, ${kind} of version ${version}` : ''}`);
  if (fault) console.log(`  at ${fault.offset} in ${fault.field}: ${fault.reason}`);
  try {
    await writeFile(`${name}.svg`, torvio.draw(bytes, {name}));
    console.log(`  drawn as ${name}.svg`);
  } catch (error) {
    if (!(error instanceof TorvioError)) throw error;
    console.log(`  ${error.message}`);
  }
}
