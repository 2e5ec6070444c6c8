// Measures the page against the native tool: from drop to picture, peak memory, frames while the bytes are scrolled.
//   node tests/measure.mjs
import {spawnSync} from 'node:child_process';
import {readdirSync, readFileSync, statSync} from 'node:fs';
import {join} from 'node:path';
import {chromium} from 'playwright-core';
import {bundled} from './browser.mjs';
import {bigSheet, top} from './files.mjs';

const native = join(process.env.TORVIO_BUILD ?? join(top, 'build/release'), 'bin/torvio');

// Of a process and those below it, in bytes; memory that several share is divided among them.
function memoryOf(root) {
  const parents = new Map();
  for (const pid of readdirSync('/proc').filter((name) => /^\d+$/.test(name))) {
    try {
      const stat = readFileSync(`/proc/${pid}/stat`, 'latin1');
      parents.set(Number(pid), Number(stat.slice(stat.lastIndexOf(')') + 2).split(' ')[1]));
    } catch { /* it has ended */ }
  }
  const below = (pid) => { for (let at = pid; at; at = parents.get(at)) if (at === root) return true; return false; };
  let sum = 0;
  for (const pid of parents.keys()) {
    if (!below(pid)) continue;
    try {
      sum += 1024 * Number(/^Pss: +(\d+)/m.exec(readFileSync(`/proc/${pid}/smaps_rollup`, 'latin1'))[1]);
    } catch { /* it has ended */ }
  }
  return sum;
}

const middle = (list) => [...list].sort((a, b) => a - b)[list.length >> 1];
const round = (value) => Number(value.toPrecision(3));

async function measured(path) {
  const server = await chromium.launchServer({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: [
      '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync'
    ]
  });
  const browser = await chromium.connect(server.wsEndpoint());
  const page = await browser.newPage({viewport: {width: 1600, height: 1000}});
  page.setDefaultTimeout(300000);
  await page.goto(bundled);
  await page.waitForSelector('body[data-ready]');
  const idle = memoryOf(server.process().pid);
  let peak = 0;
  const sampler = setInterval(() => { peak = Math.max(peak, memoryOf(server.process().pid)); }, 100);
  // From the moment when the page has the file.
  await page.evaluate(() => {
    window.addEventListener('change', (event) => {
      if (event.target.id === 'choose') window.startedAt = performance.now();
    }, true);
    new MutationObserver(() => {
      if (document.querySelector('[data-drawn]')) window.drawnAt ??= performance.now();
      const verdict = document.querySelector('#verdict')?.textContent;
      if (verdict && verdict !== 'checking…') window.checkedAt ??= performance.now();
    }).observe(document.body, {subtree: true, childList: true, attributes: true});
  });
  await page.setInputFiles('#choose', path);
  await page.waitForFunction(() => window.drawnAt);
  const times = await page.evaluate(
    () => ({toVerdict: window.checkedAt - window.startedAt, toPicture: window.drawnAt - window.startedAt}));
  const peakPicture = peak;
  const since = async (act) => {
    const start = performance.now();
    await act();
    return performance.now() - start;
  };
  const toRecord = await since(async () => {
    await page.click('#tab-record');
    await page.waitForSelector('.tree-row');
  });
  const peakRecord = peak;
  const toFields = await since(async () => {
    await page.click('#tab-bytes');
    await page.waitForSelector('.fields .row');
  });
  await page.mouse.move(500, 500);
  const frames = page.evaluate(() => new Promise((resolve) => {
    const times = [];
    let last = performance.now();
    const end = last + 6000;
    const next = (now) => {
      times.push(now - last);
      last = now;
      if (now < end) requestAnimationFrame(next);
      else resolve(times.slice(1));
    };
    requestAnimationFrame(next);
  }));
  const until = Date.now() + 6000;
  while (Date.now() < until) await page.mouse.wheel(0, 240);
  const frameTimes = await frames;
  const rows = await page.evaluate(() => parseInt(document.querySelector('.bytes .row .at').textContent, 16));
  clearInterval(sampler);
  await browser.close();
  await server.close();
  const sorted = [...frameTimes].sort((a, b) => a - b);
  return {
    ...times,
    toRecord,
    toFields,
    idle,
    peakPicture,
    peakRecord,
    peak,
    scrolledTo: rows,
    frames: sorted.length,
    frameMedian: middle(sorted),
    frame95: sorted[Math.floor(sorted.length * 0.95)],
    frameMost: sorted.at(-1)
  };
}

function nativeOf(path, ...command) {
  const times = [];
  let memory = 0;
  for (let i = 0; i < 5; ++i) {
    const start = performance.now();
    const {stderr} =
      spawnSync('/usr/bin/time', ['-f', '%M', native, ...command, path], {encoding: 'utf8', maxBuffer: 2 ** 30});
    times.push(performance.now() - start);
    memory = Math.max(memory, Number(stderr.trim().split('\n').at(-1)) * 1024);
  }
  return {milliseconds: round(middle(times)), megabytes: round(memory / 1e6)};
}

for (const size of [1, 50]) {
  const path = bigSheet(size);
  console.log(`${statSync(path).size} bytes`);
  for (const command of [['check'], ['draw', '-o', '/dev/null'], ['json', '-o', '/dev/null']])
    console.log(`  torvio ${command[0]}`, JSON.stringify(nativeOf(path, ...command)));
  const runs = [];
  for (let i = 0; i < (size > 10 ? 2 : 5); ++i) runs.push(await measured(path));
  for (const name of Object.keys(runs[0])) {
    const value = middle(runs.map((run) => run[name]));
    const isMemory = name.startsWith('peak') || name === 'idle';
    console.log(`  ${name}: ${isMemory ? `${round(value / 1e6)} MB` : round(value)}${
      / ^to | frame[M9] /.test(name) ? ' ms' : ''}`);
  }
}
