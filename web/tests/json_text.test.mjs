// The tree over a JSON text has what JSON.parse has.
import assert from 'node:assert/strict';
import {dirname, join} from 'node:path';
import {before, test} from 'node:test';
import {fileURLToPath} from 'node:url';
import {build} from 'esbuild';

const source = join(dirname(fileURLToPath(import.meta.url)), '../page/src/json_text.ts');
let JsonText;
before(async () => {
  const {outputFiles} = await build({entryPoints: [source], bundle: true, write: false, format: 'esm'});
  ({JsonText} = await import(`data:text/javascript;base64,${Buffer.from(outputFiles[0].text).toString('base64')}`));
});

// The value of a node, from its children.
const rebuilt = (json, node) => {
  if (node.kind === 'value') return json.value(node);
  const children = json.children(node);
  if (node.kind === 'object') return Object.fromEntries(children.map((child) => [child.key, rebuilt(json, child)]));
  return children.flatMap((child) => (child.kind === 'group' ? rebuilt(json, child) : [rebuilt(json, child)]));
};

const values = {
  'scalars': [1, -0.5, 1e20, true, false, null, '', 'a'],
  'texts with quotes, backslashes and brackets': {'a"b': 'c\\', 'd\\"': '{["\\\\"', '}': ']', ',': ':', '\\': '\\\\"'},
  'empty lists and objects': {a: [], b: {}, c: [[], {}, [[]]]},
  'long lists': {list: Array.from({length: 12345}, (_, i) => ({i, s: `n${i}`})), after: 1},
  'long lists in long lists': Array.from({length: 450}, (_, i) => Array.from({length: 450}, (_, k) => i * k)),
  'a list of exactly two groups': Array.from({length: 200}, (_, i) => i),
  'a list of two groups and one': Array.from({length: 201}, (_, i) => [i]),
};
for (const [name, value] of Object.entries(values)) {
  for (const space of [0, 2]) {
    test(`${name}, indented by ${space}`, () => {
      const json = new JsonText(JSON.stringify(value, null, space));
      assert.deepEqual(rebuilt(json, json.root()), value);
    });
  }
}

test('no node has more than 200 children', () => {
  const json = new JsonText(JSON.stringify(Array.from({length: 250000}, (_, i) => i)));
  const count = (node) => {
    const children = json.children(node);
    assert.ok(children.length <= 200);
    return children.reduce((sum, child) => sum + (child.kind === 'group' ? count(child) : 1), 0);
  };
  assert.equal(count(json.root()), 250000);
});

test('members are found by their path', () => {
  const json = new JsonText(JSON.stringify({record: {parts: Array.from({length: 3000}, (_, i) => ({x: i}))}}));
  for (const i of [0, 99, 100, 101, 2999]) assert.equal(json.value(json.at(['record', 'parts', i, 'x'])), i);
  for (const path of [['record', 'parts', 3000], ['record', 'none'], ['none'], ['record', 'parts', 'x']])
    assert.equal(json.at(path), null);
});

test('search ignores case and takes signs literally', () => {
  const json = new JsonText(JSON.stringify({a: 'Plate (1.5)', b: 'plate', c: 'a"b'}));
  assert.equal(json.find('PLATE', 10).length, 2);
  assert.equal(json.find('(1.5)', 10).length, 1);
  assert.equal(json.find('(1x5)', 10).length, 0);
  assert.equal(json.find('a"b', 10).length, 1);
  assert.equal(json.find('a', 2).length, 2);
});
