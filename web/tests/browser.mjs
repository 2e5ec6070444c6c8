// A browser with the page, which notes everything that the page must not do.
import {createServer} from 'node:http';
import {readFile} from 'node:fs/promises';
import {existsSync} from 'node:fs';
import {extname, join} from 'node:path';
import {pathToFileURL} from 'node:url';
import {chromium} from 'playwright-core';
import {top} from './files.mjs';

const executablePath = process.env.CHROMIUM ??
  ['/usr/bin/chromium', '/usr/bin/chromium-browser', '/usr/bin/google-chrome'].find((path) => existsSync(path));
const args = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
              '--disable-component-update', '--disable-sync'];
export const bundled = pathToFileURL(join(process.env.TORVIO_PAGE ?? join(top, 'build/web'), 'torvio.html')).href;

export const launch = () => chromium.launch({executablePath, args});

export async function openPage(browser, {url = bundled, ...options} = {}) {
  const context = await browser.newContext({viewport: {width: 1600, height: 1000}, acceptDownloads: true, ...options});
  const page = await context.newPage();
  const problems = [], requests = [];
  page.on('console', (message) => problems.push(`console ${message.type()}: ${message.text()}`));
  page.on('pageerror', (error) => problems.push(`error: ${error.message}`));
  page.on('dialog', (dialog) => {
    problems.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  context.on('request', (request) => requests.push(request.url()));
  await page.addInitScript(() => {
    window.violations = [];
    document.addEventListener(
      'securitypolicyviolation', (event) => window.violations.push(`${event.violatedDirective}: ${event.blockedURI}`));
  });
  await page.goto(url);
  await page.waitForSelector('body[data-ready]');
  // Fails for everything that the page did and must not do. `allowed`: requests besides those for blobs.
  const checkQuiet = async (assert, allowed = [url]) => {
    assert.deepEqual(problems, []);
    assert.deepEqual(await page.evaluate(() => window.violations), []);
    assert.deepEqual(
      requests.filter((one) => !one.startsWith('blob:') && !one.startsWith('data:') && !allowed.includes(one)), []);
  };
  return {page, context, checkQuiet, close: () => context.close()};
}

// Drops files as a user does: [{name, bytes}] or paths.
export async function drop(page, files) {
  const data = await Promise.all(files.map(async (file) => (typeof file === 'string'
    ? {name: file.slice(file.lastIndexOf('/') + 1), base64: (await readFile(file)).toString('base64')}
    : {name: file.name, base64: Buffer.from(file.bytes).toString('base64')})));
  const before = Number(await page.evaluate(() => document.body.dataset.checked ?? 0));
  await page.evaluate((list) => {
    const transfer = new DataTransfer();
    for (const {name, base64} of list)
      transfer.items.add(new File([Uint8Array.from(atob(base64), (c) => c.charCodeAt(0))], name));
    window.dispatchEvent(new DragEvent('drop', {dataTransfer: transfer, bubbles: true, cancelable: true}));
  }, data);
  await page.waitForFunction(
    (wanted) => Number(document.body.dataset.checked ?? 0) >= wanted, before + files.length, {timeout: 300000});
}

export const open = async (page, name) => {
  await page.fill('#filter', name);
  await page.click(`.file:has(b:text-is("${name}"))`);
  await page.fill('#filter', '');
  await page.waitForFunction((wanted) => document.querySelector('#file-name').textContent === wanted &&
                               document.querySelector('#verdict').textContent !== 'checking…', name);
};

// A static server, which notes what is asked for.
export async function serve(folder) {
  const types = {'.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm'};
  const server = createServer(async (request, response) => {
    const path = request.url === '/' ? '/index.html' : request.url;
    try {
      const text = await readFile(join(folder, path));
      response.writeHead(200, {'content-type': types[extname(path)] ?? 'application/octet-stream'}).end(text);
    } catch {
      response.writeHead(404).end();
    }
  });
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  return {url: `http://127.0.0.1:${server.address().port}/`, close: () => server.close()};
}
