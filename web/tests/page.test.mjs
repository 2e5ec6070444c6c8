// The page in a browser. TORVIO_BUILD names a finished build of the project (build/release by default).
import assert from 'node:assert/strict';
import {readFileSync, statSync} from 'node:fs';
import {basename, join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {drop, launch, open, openPage, serve} from './browser.mjs';
import {bigSheet, guideFiles, kindFiles, sample, sheetWithTexts, top, torvio} from './files.mjs';

let browser;
before(async () => { browser = await launch(); });
after(() => browser.close());

// A test with a page of its own, which must have been quiet.
const withPage = (name, run, options) => test(name, async () => {
  const opened = await openPage(browser, options);
  try {
    await run(opened.page, opened);
    await opened.checkQuiet(assert);
  } finally {
    await opened.close();
  }
});
const textOf = (page, selector) => page.locator(selector).first().innerText();
const picture = (page) => page.waitForSelector('#panel-picture [data-drawn]');
const downloaded = async (page, act) => {
  const [download] = await Promise.all([page.waitForEvent('download'), act()]);
  return {name: download.suggestedFilename(), bytes: readFileSync(await download.path())};
};
const tab = async (page, name) => { await page.click(`#tab-${name}`); };

describe('files', () => {
  withPage('a dropped sheet is judged and drawn', async (page) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await picture(page);
    assert.equal(await textOf(page, '#verdict'), 'sound');
    assert.match(await textOf(page, '#badges'), /sheet, version 180/);
    const image = page.locator('.drawing');
    assert.match(await image.getAttribute('alt'), /NEST 4711.*sheet, version 180; Plate: 96 × 48/);
    assert.equal(await image.evaluate((one) => one.naturalWidth), 1400);
  });

  withPage('every kind has its verdict, its summary, its record and its bytes', async (page) => {
    const files = kindFiles(), chosen = new Map();
    for (const path of files) {
      const bytes = readFileSync(path), {kind, verdict} = torvio.check(bytes, {name: basename(path)});
      if (kind && verdict === 'sound') chosen.set(kind, path); // the newest version
    }
    const kinds = torvio.supported().kinds;
    assert.deepEqual([...chosen.keys()].sort(), kinds.map(({name}) => name).sort());
    await drop(page, [...chosen.values()]);
    for (const [kind, path] of chosen) {
      await open(page, basename(path));
      const {version} = torvio.check(readFileSync(path), {name: basename(path)});
      assert.match(await textOf(page, '#badges'), new RegExp(`${kind}, version ${version}`));
      const isDrawable = kinds.find(({name}) => name === kind).drawable;
      assert.equal(await page.locator('#tab-picture').isVisible(), isDrawable, kind);
      if (isDrawable) {
        await tab(page, 'picture');
        await picture(page);
      }
      await tab(page, 'summary');
      await page.waitForSelector('#panel-summary .facts');
      await tab(page, 'record');
      await page.waitForSelector('.tree-row');
      const {record} = JSON.parse(torvio.toJson(readFileSync(path), {name: basename(path)}));
      assert.equal(await textOf(page, '.tree-row .key'), Object.keys(record)[0]);
      await tab(page, 'bytes');
      await page.waitForSelector('.fields .row');
      const first = JSON.parse(torvio.map(readFileSync(path), {name: basename(path)}).split('\n')[0]);
      assert.match(await textOf(page, '.fields .row'), new RegExp(first.field.replace(/[.[\]]/g, '\\$&')));
    }
  });

  withPage('all small files of every version are listed with the verdicts of the library', async (page) => {
    const files = kindFiles();
    assert.ok(files.length > 450);
    await drop(page, files);
    const counts = new Map();
    for (const path of files) {
      const {verdict} = torvio.check(readFileSync(path), {name: basename(path)});
      counts.set(verdict, (counts.get(verdict) ?? 0) + 1);
    }
    const shown = await page.locator('#filter-verdict option').allTextContents();
    assert.deepEqual(new Set(shown.slice(1)), new Set([...counts].map(([verdict, count]) => `${verdict} (${count})`)));
    assert.match(await textOf(page, '#count'), new RegExp(`^${files.length} files$`));
    await page.selectOption('#sort', 'size');
    await page.click('#sort-direction');
    const largest = Math.max(...files.map((path) => statSync(path).size));
    await page.waitForFunction(
      (wanted) => {
        const id = document.querySelector('.file')?.dataset.id;
        return id !== undefined && document.querySelector('.file .file-facts').textContent.includes(wanted);
      },
      largest < 1000 ? `${largest} bytes`
        : largest < 10000 ? `${(largest / 1000).toFixed(1)} kB`
                          : `${Math.round(largest / 1000)} kB`);
    // Only the rows in view are there.
    assert.ok(await page.locator('.file').count() < 40);
  });

  withPage('a folder is listed with everything in it', async (page) => {
    const files = guideFiles(), folder = files[0].slice(0, files[0].indexOf('/guide/') + '/guide'.length);
    await page.setInputFiles('#choose-folder', folder);
    await page.waitForFunction((wanted) => Number(document.body.dataset.checked ?? 0) === wanted, files.length);
    const listed = await page.locator('.file').evaluateAll((rows) => rows.map((row) => row.title));
    assert.deepEqual(listed.sort(), files.map((path) => path.slice(folder.length - 'guide'.length)).sort());
  });

  withPage('500 files at once', async (page) => {
    const bytes = sample('nest_180.sheet').subarray(0, 60000);
    const small = sample('tab.mac');
    await drop(page,
      Array.from(
        {length: 500}, (_, i) => ({name: `file${i}.${i % 5 ? 'mac' : 'sheet'}`, bytes: i % 5 ? small : bytes})));
    const options = await page.locator('#filter-verdict option').allTextContents();
    assert.deepEqual(options, ['All verdicts', 'damaged (100)', 'sound (400)']);
    await page.fill('#filter', 'file49');
    await page.waitForFunction(() => document.querySelector('#count').textContent.startsWith('11 of 500'));
    await page.selectOption('#filter-verdict', 'damaged');
    await page.waitForFunction(() => document.querySelector('#count').textContent.startsWith('2 of 500'));
  });

  withPage('a damaged file says where it breaks, and shows what was read', async (page) => {
    const bytes = sample('copy.sheet'), {fault} = torvio.check(bytes, {name: 'copy.sheet'});
    await drop(page, [{name: 'copy.sheet', bytes}]);
    assert.equal(await textOf(page, '#verdict'), 'damaged');
    assert.equal(await textOf(page, '#fault'), `Breaks in ${fault.field}: ${fault.reason}`);
    await picture(page);
    await tab(page, 'summary');
    await page.click('.fault button');
    await page.waitForSelector('.fields .fault');
    assert.match(await textOf(page, '.fields .fault'), new RegExp(fault.reason));
  });

  withPage('files that are cut at any place get the verdict of the library', async (page) => {
    const bytes = sample('punch.mch');
    const files = Array.from({length: 40},
      (_, i) =>
        ({name: `cut${String(i).padStart(2, '0')}.mch`, bytes: bytes.subarray(0, Math.floor(bytes.length * i / 40))}));
    await drop(page, files);
    for (const {name, bytes: some} of files.filter((_, i) => i % 8 === 0)) {
      await open(page, name);
      assert.equal(await textOf(page, '#verdict'), torvio.check(some, {name}).verdict, name);
    }
  });

  withPage('what is no file of the suite is foreign', async (page) => {
    await drop(
      page, [{name: 'notes.txt', bytes: Buffer.from('Nests of 2009')}, {name: 'empty.sheet', bytes: Buffer.alloc(0)}]);
    await open(page, 'notes.txt');
    assert.equal(await textOf(page, '#verdict'), 'foreign');
    assert.equal(await page.locator('#tab-record').isVisible(), false);
    await open(page, 'empty.sheet');
    assert.equal(await textOf(page, '#verdict'), torvio.check(new Uint8Array(0), {name: 'empty.sheet'}).verdict);
  });
});

describe('texts of files', () => {
  const attacks = [
    '<img src=x onerror=alert(1)>', '</script><script>alert(2)</script>', '"onload="alert(3)',
    '&lt;svg onload=alert(4)&gt;', 'javascript:alert(5)', ']]><x>'
  ];
  withPage('markup and script stay text in every view', async (page) => {
    const files =
      attacks.map((text, i) => ({name: `attack${i}<img src=x onerror=alert(9)>.sheet`, bytes: sheetWithTexts(text)}));
    await drop(page, files);
    for (const [i, {name}] of files.entries()) {
      await open(page, name);
      await tab(page, 'picture');
      await picture(page);
      await page.click('.part-list button');
      await page.waitForSelector('.shape-list table');
      await tab(page, 'summary');
      await page.waitForSelector('#panel-summary .facts');
      assert.ok((await textOf(page, '#panel-summary')).includes(attacks[i]), attacks[i]);
      await tab(page, 'record');
      await page.fill('#panel-record input', attacks[i].slice(0, 12));
      await page.keyboard.press('Enter');
      await page.waitForSelector('.tree-row.picked');
      await tab(page, 'bytes');
      await page.waitForSelector('.fields .row');
      await tab(page, 'compare');
      await page.click('#panel-compare button');
      await page.waitForSelector('.sides');
    }
    // Elements of the page are those that it makes.
    assert.equal(await page.locator('img').count(), await page.locator('img.drawing').count());
    assert.equal(await page.evaluate(() => document.scripts.length), 3);
  });
});

describe('picture', () => {
  withPage('a placement under the pointer says its part, and a click lists its shapes', async (page) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await picture(page);
    await page.waitForSelector('.part-list button');
    // The labels in the picture are what the file says: each is in the middle of its part.
    const svg = torvio.draw(sample('nest_180.sheet'), {name: 'nest.sheet'});
    const labels = [
      ...svg.matchAll(
        /<g transform="translate\(([\d.]+) ([\d.]+)\)[^>]*>(?:<rect[^>]*>\s*)?<text [^>]*text-anchor="middle"[^>]*font-weight="bold">(\d+)(?:  [^<]*)?<\/text>/g)
    ];
    assert.ok(labels.length >= 50, `${labels.length} labels`);
    for (const [, x, y, number] of labels) {
      const at = await page.evaluate(([left, up]) => {
        const box = document.querySelector('.paper').getBoundingClientRect();
        return [
          box.left + left * box.width / document.querySelector('.paper').offsetWidth,
          box.top + up * box.height / document.querySelector('.paper').offsetHeight
        ];
      }, [Number(x), Number(y)]);
      await page.mouse.move(...at);
      assert.match(await page.locator('.hover-hint').innerText(), new RegExp(`^${number} `));
    }
    await page.mouse.down();
    await page.mouse.up();
    await page.waitForSelector('.shape-list table');
    const {record} = JSON.parse(torvio.toJson(sample('nest_180.sheet'), {name: 'nest.sheet'}));
    const part = record.partList.parts[Number(labels.at(-1)[3]) - 1];
    assert.equal(await page.locator('.shape-list tbody tr').count(), part.shapes.shapes.length);
    const cells = await page.locator('.shape-list tbody tr').nth(1).locator('td').allInnerTexts();
    assert.deepEqual(
      cells.slice(1, 4), [part.shapes.shapes[1].type, part.shapes.shapes[1].x, part.shapes.shapes[1].y].map(String));
  });

  withPage('wheel, keys and drag move the picture', async (page) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await picture(page);
    const place = () => page.locator('.paper').evaluate((one) => one.style.transform);
    const all = await place();
    await page.mouse.move(600, 500);
    await page.mouse.wheel(0, -400);
    await page.waitForFunction((old) => document.querySelector('.paper').style.transform !== old, all);
    const zoomed = await place();
    await page.mouse.down();
    await page.mouse.move(700, 600, {steps: 4});
    await page.mouse.up();
    assert.notEqual(await place(), zoomed);
    await page.locator('.lens').focus();
    await page.keyboard.press('0');
    assert.equal(await place(), all);
    await page.keyboard.press('+');
    await page.keyboard.press('ArrowLeft');
    assert.notEqual(await place(), all);
  });

  withPage('two fingers zoom the picture where they are, and a tap picks a part', async (page, {context}) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await picture(page);
    const box = await page.locator('.lens').boundingBox();
    const x = box.x + box.width / 2, y = box.y + box.height / 2;
    const touches = await context.newCDPSession(page);
    const touch = (type, ...points) =>
      touches.send('Input.dispatchTouchEvent', {type, touchPoints: points.map(([at, to], id) => ({x: at, y: to, id}))});
    // Where the picture is, in its own coordinates, under the middle of the lens; and its scale.
    const lens = () => page.evaluate(([atX, atY]) => {
      const paper = document.querySelector('.paper').getBoundingClientRect();
      const scale = paper.width / document.querySelector('.paper').offsetWidth;
      return {scale, x: (atX - paper.x) / scale, y: (atY - paper.y) / scale};
    }, [x, y]);
    const before = await lens();
    await touch('touchStart', [x - 50, y], [x + 50, y]);
    for (let apart = 60; apart <= 150; apart += 10) await touch('touchMove', [x - apart, y], [x + apart, y]);
    await touch('touchEnd');
    const after = await lens();
    assert.ok(Math.abs(after.scale / before.scale - 3) < 0.05, `from ${before.scale} to ${after.scale}`);
    assert.ok(Math.hypot(after.x - before.x, after.y - before.y) < 8, JSON.stringify([before, after]));
    assert.equal(await page.locator('.shape-list table').count(), 0, 'a pinch picks nothing');
    await page.locator('.lens').focus();
    await page.keyboard.press('0');
    // The middle of the first placement of the first part.
    const svg = torvio.draw(sample('nest_180.sheet'), {name: 'nest.sheet'});
    const outline = /<path d="M([\d.]+) ([\d.]+)L[\d.]+ [\d.]+L([\d.]+) ([\d.]+)[^>]* class="part1"/;
    const corners = outline.exec(svg).slice(1).map(Number);
    const whole = await lens();
    const at = [x + ((corners[0] + corners[2]) / 2 - whole.x) * whole.scale,
                y + ((corners[1] + corners[3]) / 2 - whole.y) * whole.scale];
    await touch('touchStart', at);
    await touch('touchEnd');
    await page.waitForSelector('.shape-list table');
    assert.match(await textOf(page, '.shape-list h3'), /^1 {1,2}BRACKET 01/);
  }, {hasTouch: true});
});

describe('record and bytes', () => {
  withPage('search finds a value, and its bytes are those of the field', async (page) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await tab(page, 'record');
    await page.waitForSelector('.tree-row');
    await page.fill('#panel-record input', 'bracket 07');
    await page.keyboard.press('Enter');
    await page.waitForSelector('.tree-row.picked');
    assert.equal(await textOf(page, '.detail .path'), 'partList.parts[6].partName');
    await page.click('#panel-record .detail button');
    await page.waitForSelector('.bytes .picked');
    assert.equal(await textOf(page, '#panel-bytes .detail .path'), 'partList.parts[6].partName');
    const line =
      JSON.parse(torvio.map(sample('nest_180.sheet'), {name: 'nest.sheet', find: 'partList.parts[6].partName'}).trim());
    assert.match(await textOf(page, '#panel-bytes .detail'),
      new RegExp(`${line.size} bytes at ${line.offset.toLocaleString('en')} `));
    await page.click('#panel-bytes .detail button');
    await page.waitForFunction(
      () => document.querySelector('#panel-record .detail .path')?.textContent === 'partList.parts[6].partName');
  });

  withPage('bytes and fields light up together', async (page) => {
    await drop(page, [{name: 'tab.mac', bytes: sample('tab.mac')}]);
    await tab(page, 'bytes');
    await page.waitForSelector('.fields .row');
    await page.hover('.fields .row >> nth=3');
    const offset = await textOf(page, '.fields .row.hot .at');
    assert.ok(await page.locator('.bytes .hot').count() >= 2, offset);
    await page.hover('.bytes .hex [data-field="1"]');
    // Rows are drawn with the next frame.
    await page.waitForSelector('.fields .row.hot[data-field="1"]');
    await page.click('.bytes .hex [data-field="1"]');
    await page.waitForSelector('.fields .row.picked[data-field="1"]');
    await page.locator('.pane.fields').focus();
    await page.keyboard.press('ArrowDown');
    await page.waitForSelector('.fields .row.picked[data-field="2"]');
    for (const look of ['hot', 'picked']) assert.ok(await page.locator(`.fields .row.${look}`).count() <= 1, look);
    // All bytes of the file are there, in order.
    const bytes = sample('tab.mac');
    const shown = (await page.locator('.bytes .hex').allInnerTexts()).join(' ').split(/\s+/).filter(Boolean);
    assert.deepEqual(
      shown.slice(0, 320), [...bytes.subarray(0, 320)].map((byte) => byte.toString(16).padStart(2, '0')));
  });
});

describe('new files', () => {
  withPage('JSON and SVG are those of the library', async (page) => {
    const bytes = sample('nest_180.sheet');
    await drop(page, [{name: 'nest.sheet', bytes}]);
    await tab(page, 'save');
    const json = await downloaded(page, () => page.click('button:text-is("Download JSON")'));
    assert.equal(json.name, 'nest.sheet.json');
    assert.equal(json.bytes.toString(), torvio.toJson(bytes, {name: 'nest.sheet'}));
    const svg = await downloaded(page, () => page.click('text=Download SVG'));
    assert.equal(svg.bytes.toString(), torvio.draw(bytes, {name: 'nest.sheet'}));
  });

  withPage('another version is saved only after its losses were shown', async (page) => {
    const bytes = sample('nest_180.sheet');
    await drop(page, [{name: 'nest.sheet', bytes}]);
    await tab(page, 'save');
    await page.selectOption('#save-version', '112');
    await page.click('text=See what it loses');
    await page.waitForSelector('.card table');
    assert.match(await textOf(page, '.card table'), /partList\.parts\[\]\.woNumber/);
    const file = await downloaded(page, () => page.click('text=with these losses'));
    assert.equal(file.name, 'nest-112.sheet');
    assert.deepEqual(file.bytes, Buffer.from(torvio.convert(bytes, 112, {allowLoss: true}).bytes));
    await page.selectOption('#save-version', '180');
    await page.click('text=See what it loses');
    await page.waitForSelector('text=Nothing is lost.');
  });

  withPage('a damaged file is recovered, with a report', async (page) => {
    const bytes = sample('copy.sheet');
    await drop(page, [{name: 'copy.sheet', bytes}]);
    await tab(page, 'save');
    await page.click('text=See what can be kept');
    await page.waitForSelector('text=partList.parts keeps 6 of 12 elements');
    const file = await downloaded(page, () => page.click('text=Download the recovered file'));
    assert.deepEqual(file.bytes, Buffer.from(torvio.recover(bytes, {name: 'copy.sheet'}).bytes));
    assert.equal(torvio.check(file.bytes, {name: 'x.sheet'}).verdict, 'sound');
  });

  withPage('two files are compared', async (page) => {
    const [a, b] = ['nest_180.sheet', 'nest_112.sheet'];
    await drop(page, [{name: a, bytes: sample(a)}, {name: b, bytes: sample(b)}]);
    await open(page, a);
    await tab(page, 'compare');
    await page.click('#panel-compare button');
    await page.waitForSelector('.diff');
    const {lines} = torvio.diff(sample(a), sample(b), {});
    const changes = lines.trim().split('\n').length - 1;
    assert.equal(await page.locator('.diff tbody tr').count(), changes);
    assert.match(await textOf(page, '.compare-result h3'), new RegExp(`^${changes} differences$`));
    assert.match(await textOf(page, '.diff'), /"WO-7001"/);
  });
});

describe('time', () => {
  withPage('a file that takes too long is stopped, and the page goes on', async (page) => {
    await page.click('#settings-button');
    await page.fill('#limit', '0.003');
    await page.setInputFiles('#choose', bigSheet(50));
    await page.waitForSelector('#stopped:not([hidden])', {timeout: 60000});
    assert.match(await textOf(page, '#stopped'), /sheet50\.sheet took too long and was stopped/);
    await page.waitForFunction(() => document.querySelector('#verdict').textContent === 'stopped');
    await page.fill('#limit', '30');
    await drop(page, [{name: 'tab.mac', bytes: sample('tab.mac')}]);
    await open(page, 'tab.mac');
    assert.equal(await textOf(page, '#verdict'), 'sound');
    await tab(page, 'record');
    await page.waitForSelector('.tree-row');
  });

  withPage('a sheet of 50 MB is drawn, searched and scrolled', async (page) => {
    page.setDefaultTimeout(180000);
    const path = bigSheet(50), bytes = readFileSync(path);
    await page.setInputFiles('#choose', path);
    await picture(page);
    assert.equal(await textOf(page, '#verdict'), 'sound');
    await tab(page, 'record');
    await page.waitForSelector('.tree-row');
    await page.fill('#panel-record input', 'BRACKET 12-100');
    await page.keyboard.press('Enter');
    await page.waitForSelector('.tree-row.picked');
    assert.equal(await textOf(page, '.detail .path'), `partList.parts[${12 * 100 + 11}].partName`);
    await tab(page, 'bytes');
    await page.waitForSelector('.bytes .row');
    await page.fill('#panel-bytes input', String(bytes.length - 100));
    await page.keyboard.press('Enter');
    const last = 16 * Math.floor((bytes.length - 100) / 16);
    await page.waitForFunction(
      (wanted) => [...document.querySelectorAll('.bytes .row')].some((row) => row.textContent.startsWith(wanted)),
      last.toString(16).padStart(8, '0'));
    await page.waitForSelector('.fields .row.picked');
    assert.ok(await page.locator('.bytes .row').count() < 80);
  });
});

describe('everybody', () => {
  withPage('works by keyboard', async (page) => {
    await drop(page, guideFiles());
    await page.locator('#file-list').focus();
    await page.keyboard.press('Home');
    const first = await textOf(page, '#file-name');
    await page.keyboard.press('ArrowDown');
    await page.waitForFunction((old) => document.querySelector('#file-name').textContent !== old, first);
    await page.keyboard.press('Enter');
    assert.equal(await page.evaluate(() => document.activeElement.getAttribute('role')), 'tab');
    await page.keyboard.press('ArrowRight');
    assert.equal(await page.evaluate(() => document.activeElement.id), 'tab-summary');
    await page.keyboard.press('ArrowRight');
    await page.waitForSelector('.tree-row');
    await page.locator('.tree').focus();
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('End');
    assert.ok(await page.locator('.tree-row.picked').count() === 1);
  });

  withPage('has names, roles and messages for screen readers', async (page) => {
    await drop(page, guideFiles());
    for (const role of ['banner', 'navigation', 'main', 'tablist', 'listbox'])
      assert.ok(await page.getByRole(role).count() > 0, role);
    assert.match(await textOf(page, '#live'), /files? checked|^$/);
    const nameless =
      await page.evaluate(() => [...document.querySelectorAll('button, input, select, [role="listbox"], [role="tree"]')]
                                  .filter((one) => one.checkVisibility() &&
                                      !(one.getAttribute('aria-label') || one.textContent.trim() || one.labels?.length))
                                  .map((one) => one.outerHTML));
    assert.deepEqual(nameless, []);
    const picked = await page.locator('#file-list').getAttribute('aria-activedescendant');
    assert.equal(await page.locator(`#${picked}`).getAttribute('aria-selected'), 'true');
  });

  for (const [width, height] of [[1600, 1000], [1024, 768], [390, 844]]) {
    withPage(`nothing is wider than a screen of ${width}`, async (page) => {
      await drop(page, guideFiles());
      await page.click('.file:has-text("nest_180.sheet")');
      for (const name of ['picture', 'summary', 'record', 'bytes', 'compare', 'save']) {
        await tab(page, name);
        assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), name);
      }
    }, {viewport: {width, height}});
  }

  withPage('prints the picture without the controls', async (page) => {
    await drop(page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
    await picture(page);
    await page.emulateMedia({media: 'print'});
    assert.equal(await page.locator('.top').isVisible(), false);
    assert.equal(await page.locator('.drawing').isVisible(), true);
    assert.ok((await page.pdf({format: 'A4'})).length > 10000);
  });
});

describe('unbundled', () => {
  test('works from a static server, and asks it for nothing else', async () => {
    const server = await serve(join(process.env.TORVIO_PAGE ?? join(top, 'build/web'), 'unbundled'));
    const opened = await openPage(browser, {url: server.url});
    try {
      await drop(opened.page, [{name: 'nest.sheet', bytes: sample('nest_180.sheet')}]);
      await picture(opened.page);
      assert.equal(await textOf(opened.page, '#verdict'), 'sound');
      const files = ['', 'page.css', 'page.js', 'torvio.wasm', 'worker.js'];
      await opened.checkQuiet(assert, files.map((file) => server.url + file));
    } finally {
      await opened.close();
      server.close();
    }
  });
});

test('the page is one file of at most 3 MB with a strict policy', () => {
  const path = join(process.env.TORVIO_PAGE ?? join(top, 'build/web'), 'torvio.html'),
        html = readFileSync(path, 'utf8');
  assert.ok(statSync(path).size <= 3e6);
  const [, policy] = /http-equiv="Content-Security-Policy" content="([^"]*)"/.exec(html);
  assert.match(policy, /default-src 'none'/);
  assert.match(policy, /connect-src 'none'/);
  assert.doesNotMatch(policy, /unsafe-inline|unsafe-eval'(?<!wasm-unsafe-eval')|\*|https?:/);
});
