// Builds the page: build/web/torvio.html, which is complete and works from a disk, and build/web/unbundled/ for a
// server.
//   node page/build.mjs [torvio.wasm]
import {build} from 'esbuild';
import {createHash} from 'node:crypto';
import {copyFile, mkdir, readFile, rm, writeFile} from 'node:fs/promises';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {gzipSync} from 'node:zlib';

const page = dirname(fileURLToPath(import.meta.url)), top = join(page, '../..');
const out = join(top, 'build/web'), unbundled = join(out, 'unbundled');
const wasm = process.argv[2] ?? join(top, 'build/wasm/torvio.wasm');

const script = async (name, bundled) => {
  const {outputFiles} = await build({
    entryPoints: [join(page, 'src', name)],
    bundle: true,
    write: false,
    minify: true,
    format: 'iife',
    target: 'es2022',
    charset: 'ascii',
    legalComments: 'none',
    define: {BUNDLED: String(bundled), 'import.meta.url': '""'},
    logLevel: 'warning',
    external: ['node:*'],  // of the package, for Node only
  });
  return outputFiles[0].text.trim();
};
const hash = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
// What holds for both.
const common = ["default-src 'none'", 'img-src blob: data:', "base-uri 'none'", "form-action 'none'",
                "require-trusted-types-for 'script'", 'trusted-types torvio-worker'];
// A function, so that "$&" in a script is nothing special.
const filled = (text, values) => text.replace(/@([A-Z]+)@/g, (_, name) => values[name]);

const template = await readFile(join(page, 'index.html'), 'utf8');
const style = (await build({entryPoints: [join(page, 'page.css')], write: false, minify: true, logLevel: 'warning'}))
                .outputFiles[0]
                .text.trim();
const module = await readFile(wasm).catch(() => {
  console.error(`${wasm} is missing: ./dev wasm builds it`);
  process.exit(1);
});
await rm(out, {recursive: true, force: true});
await mkdir(unbundled, {recursive: true});

{
  const main = await script('main.ts', true), worker = await script('worker.ts', true);
  for (const text of [main, worker]) {
    if (/<\/script|<!--/i.test(text)) throw new Error('a script would end its element');
  }
  const packed = gzipSync(module, {level: 9}).toString('base64');
  const policy = [
    ...common, `script-src ${hash(main)} 'wasm-unsafe-eval'`, `style-src ${hash(style)}`,
    'worker-src blob:', "connect-src 'none'"
  ];
  const html = filled(template, {
    POLICY: policy.join('; '),
    STYLE: `<style>${style}</style>`,
    SCRIPTS: `<script id="module" type="text/plain">${packed}</script>\n<script id="worker" type="text/plain">${
      worker}</script>\n<script>${main}</script>`,
  });
  if (html.length > 3e6) throw new Error(`torvio.html has ${html.length} bytes, more than 3 MB`);
  await writeFile(join(out, 'torvio.html'), html);
  console.log(`torvio.html: ${html.length} bytes, of which the module ${packed.length}, the scripts ${
    main.length + worker.length}`);
}
{
  const policy =
    [...common, "script-src 'self' 'wasm-unsafe-eval'", "style-src 'self'", "worker-src 'self'", "connect-src 'self'"];
  await writeFile(join(unbundled, 'index.html'), filled(template, {
    POLICY: policy.join('; '),
    STYLE: '<link rel="stylesheet" href="page.css">',
    SCRIPTS: '<script src="page.js" defer></script>',
  }));
  await writeFile(join(unbundled, 'page.css'), style);
  await writeFile(join(unbundled, 'page.js'), await script('main.ts', false));
  await writeFile(join(unbundled, 'worker.js'), await script('worker.ts', false));
  await copyFile(wasm, join(unbundled, 'torvio.wasm'));
}
