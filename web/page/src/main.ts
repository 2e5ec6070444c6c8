// The page: the list of files, the open file and its views.
import {BytesView} from './bytes.js';
import {CompareView} from './compare.js';
import {announce, append, byId, bytesText, h, number, plural, visible} from './dom.js';
import {Cancelled, Engine, TimedOut} from './engine.js';
import {PictureView} from './picture.js';
import type {Source} from './protocol.js';
import {RecordView} from './record.js';
import {SaveView} from './save.js';
import {SummaryView} from './summary.js';
import {baseName, type Context, type Entry, type View} from './view.js';
import {VirtualList} from './virtual_list.js';

declare const BUNDLED: boolean;

const entries: Entry[] = [];
let shown: Entry[] = [];
let opened: Entry | null = null;
let checker: Engine;
let viewer: Engine;
let nextId = 1;

const severity =
  ['unreadable', 'stopped', 'damaged', 'refused version', 'foreign', 'sound with losses', 'sound', 'waiting'];
const verdictOf = ({state, check}: Entry): string => (state === 'checked' ? check.verdict : state);
const lookOf = (verdict: string): string => ({
  'sound': 'good',
  'sound with losses': 'warn',
  'damaged': 'bad',
  'refused version': 'bad',
  'unreadable': 'bad',
  'stopped': 'bad',
})[verdict] ??
  'plain';
const marks: Record<string, string> = {good: '✓', warn: '!', bad: '✕', plain: '·'};

const encoding = (): string => byId<HTMLSelectElement>('encoding').value || 'cp1252';
const sourceOf = (entry: Entry): Source => ({
  key: entry.id,
  file: entry.file,
  name: entry.path,
  encoding: encoding(),
  ...(entry.kindChosen ? {kind: entry.kindChosen} : {}),
});

// ---- workers ----

async function moduleBytes(): Promise<ArrayBuffer> {
  if (!BUNDLED) return (await fetch('torvio.wasm')).arrayBuffer();
  const packed = Uint8Array.from(atob((byId('module').textContent ?? '').trim()), (c) => c.charCodeAt(0));
  return new Response(new Blob([packed]).stream().pipeThrough(new DecompressionStream('gzip'))).arrayBuffer();
}

// The only script that this page starts, whatever else asks for one.
function workerMaker(): () => Worker {
  const url = BUNDLED ? URL.createObjectURL(new Blob([byId('worker').textContent ?? ''], {type: 'text/javascript'}))
                      : 'worker.js';
  const types = (window as {
    trustedTypes?: {createPolicy(name: string, rules: object): {createScriptURL(url: string): string}}
  }).trustedTypes;
  const policy = types?.createPolicy('torvio-worker', {
    createScriptURL: (wanted: string) => {
      if (wanted !== url) throw new TypeError('not the worker of this page');
      return wanted;
    },
  });
  return () => new Worker(policy ? policy.createScriptURL(url) : url);
}

const limitOf = (size: number): number => {
  const seconds = Number(byId<HTMLInputElement>('limit').value);
  return 1000 * (seconds > 0 ? seconds : 30) * (1 + size / 1e7);
};

function whenStopped(name: string): void {
  const text = `${visible(baseName(name))} took too long and was stopped. The other files are not affected.`;
  byId('stopped').textContent = text;
  byId('stopped').hidden = false;
  announce(text);
}

// ---- the list ----

const listPane = byId('file-list');
const fileList = new VirtualList(listPane, () => 50, drawEntry);

function drawEntry(index: number): HTMLElement {
  const entry = shown[index] as Entry;
  const verdict = verdictOf(entry), look = lookOf(verdict);
  const {kind, version} = entry.check;
  const folder = entry.path.slice(0, entry.path.length - baseName(entry.path).length);
  return h('div', {
    id: `file-${entry.id}`,
    class: `file${entry === opened ? ' picked' : ''}`,
    role: 'option',
    'aria-selected': String(entry === opened),
    'aria-posinset': index + 1,
    'aria-setsize': shown.length,
    'data-id': entry.id,
    title: visible(entry.path),
  },
    h('span', {class: `mark ${look}`, 'aria-hidden': 'true'}, verdict === 'waiting' ? '…' : marks[look] as string),
    h('span', {class: 'file-name'}, h('span', {class: 'soft'}, visible(folder)),
      h('b', {}, visible(baseName(entry.path)))),
    h('span', {class: 'file-facts soft'},
      [verdict, kind ? `${kind} ${version ?? ''}` : '', bytesText(entry.file.size)].filter(Boolean).join(' · ')));
}

let isRefreshing = false;
function refresh(): void {
  if (isRefreshing) return;
  isRefreshing = true;
  requestAnimationFrame(() => {
    isRefreshing = false;
    const text = byId<HTMLInputElement>('filter').value.toLowerCase();
    const verdict = byId<HTMLSelectElement>('filter-verdict').value,
          kind = byId<HTMLSelectElement>('filter-kind').value;
    shown = entries.filter((entry) => (text === '' || entry.path.toLowerCase().includes(text)) &&
      (verdict === '' || verdictOf(entry) === verdict) && (kind === '' || (entry.check.kind ?? 'none') === kind));
    const by = byId<HTMLSelectElement>('sort').value;
    const sign = byId('sort-direction').getAttribute('aria-pressed') === 'true' ? -1 : 1;
    const names = new Intl.Collator('en', {numeric: true});
    const orders: Record<string, (a: Entry, b: Entry) => number> = {
      name: () => 0,
      verdict: (a, b) => severity.indexOf(verdictOf(a)) - severity.indexOf(verdictOf(b)),
      kind: (a, b) => names.compare(a.check.kind ?? '~', b.check.kind ?? '~'),
      version: (a, b) => (a.check.version ?? -1) - (b.check.version ?? -1),
      size: (a, b) => a.file.size - b.file.size,
      added: (a, b) => a.id - b.id,
    };
    const order = orders[by] as (a: Entry, b: Entry) => number;
    shown.sort((a, b) => sign * (order(a, b) || names.compare(a.path, b.path)) || a.id - b.id);
    const waiting = entries.filter(({state}) => state === 'waiting').length;
    document.body.dataset.checked = String(entries.length - waiting);
    byId('count').textContent = entries.length === 0
      ? ''
      : (shown.length === entries.length ? plural(entries.length, 'file')
                                         : `${number(shown.length)} of ${plural(entries.length, 'file')}`) +
        (waiting > 0 ? `, ${number(waiting)} to check` : '');
    byId('progress').hidden = waiting === 0;
    byId<HTMLProgressElement>('progress').value =
      entries.length === 0 ? 0 : (entries.length - waiting) / entries.length;
    options(byId('filter-verdict'), 'All verdicts',
      severity.map((one) => [one, entries.filter((entry) => verdictOf(entry) === one).length]));
    const kinds = new Map<string, number>();
    for (const entry of entries)
      kinds.set(entry.check.kind ?? 'none', (kinds.get(entry.check.kind ?? 'none') ?? 0) + 1);
    options(byId('filter-kind'), 'All kinds', [...kinds].sort());
    fileList.setCount(shown.length);
    const index = opened ? shown.indexOf(opened) : -1;
    if (index >= 0) listPane.setAttribute('aria-activedescendant', `file-${(opened as Entry).id}`);
    else listPane.removeAttribute('aria-activedescendant');
  });
}

// Updates once for many checked files, not for each of them.
let soon = 0;
function refreshSoon(): void {
  soon ||= window.setTimeout(() => {
    soon = 0;
    refresh();
  }, 150);
}

function options(select: HTMLElement, all: string, counts: [string, number][]): void {
  const list = select as HTMLSelectElement, value = list.value;
  const wanted = [
    ['', all], ...counts.filter(([, count]) => count > 0).map(([name, count]) => [name, `${name} (${number(count)})`])
  ];
  if (JSON.stringify(wanted) === list.dataset.made) return;
  list.dataset.made = JSON.stringify(wanted);
  list.replaceChildren(...wanted.map(([name, text]) => h('option', {value: name as string}, text as string)));
  list.value = value;
  if (list.selectedIndex < 0) list.value = '';
}

function addFiles(files: {file: File, path: string}[]): void {
  if (files.length === 0) return;
  document.body.classList.add('has-files');
  const added = files.map(({file, path}): Entry => ({
    id: nextId++, file, path, state: 'waiting', check: {verdict: 'waiting'}, kindChosen: '',
  }));
  entries.push(...added);
  refresh();
  if (files.length === 1 || opened === null) open(added[0] as Entry);
  Promise.all(added.map(check))
    .then(() => {
      const counts =
        severity.map((verdict) => [verdict, added.filter((entry) => verdictOf(entry) === verdict).length] as const)
          .filter(([, count]) => count > 0)
          .map(([verdict, count]) => `${number(count)} ${verdict}`);
      announce(`${plural(added.length, 'file')} checked: ${counts.join(', ')}`);
      refresh();
    })
    .catch(() => undefined);
}

async function check(entry: Entry): Promise<void> {
  try {
    entry.check = await checker.ask('check', sourceOf(entry));
    entry.state = 'checked';
  } catch (error) {
    entry.state = error instanceof TimedOut ? 'stopped' : 'checked';
    entry.check = {verdict: error instanceof TimedOut ? 'stopped' : 'unreadable', error: (error as Error).message};
  }
  refreshSoon();
  if (entry === opened) showHeader(entry);
}

interface FileEntry {
  isFile: boolean;
  isDirectory: boolean;
  fullPath: string;
  file(done: (file: File) => void, failed: (error: Error) => void): void;
  createReader(): {readEntries(done: (entries: FileEntry[]) => void, failed: (error: Error) => void): void}
}

async function filesIn(item: FileEntry): Promise<{file: File, path: string}[]> {
  if (item.isFile) {
    const file = await new Promise<File>((resolve, reject) => item.file(resolve, reject)).catch(() => null);
    return file ? [{file, path: item.fullPath.replace(/^\//, '')}] : [];
  }
  const reader = item.createReader(), files: {file: File, path: string}[] = [];
  for (;;) {
    const some =
      await new Promise<FileEntry[]>((resolve, reject) => reader.readEntries(resolve, reject)).catch(() => []);
    if (some.length === 0) return files;
    for (const one of some) files.push(...await filesIn(one));
  }
}

async function drop(transfer: DataTransfer): Promise<void> {
  const items = [...transfer.items].filter(({kind}) => kind === 'file');
  const named = [...transfer.files].map((file) => ({file, path: file.name}));
  const found = items.map((item) => (item.webkitGetAsEntry?.() ?? null) as FileEntry | null);
  if (found.length === 0 || found.some((one) => one === null)) return addFiles(named);
  const files: {file: File, path: string}[] = [];
  for (const one of found as FileEntry[]) files.push(...await filesIn(one));
  addFiles(files);
  if (files.length === 0) announce('There are no files in it');
}

// ---- the open file ----

const views = {
  picture: {label: 'Picture', make: () => new PictureView()},
  summary: {label: 'Summary', make: () => new SummaryView()},
  record: {label: 'Record', make: () => new RecordView()},
  bytes: {label: 'Bytes', make: () => new BytesView()},
  compare: {label: 'Compare', make: () => new CompareView()},
  save: {label: 'Save as', make: () => new SaveView()},
};
type ViewName = keyof typeof views;
let made = new Map<ViewName, View>();
let current: ViewName = 'picture';
let comparable = 0; // how many files there were when the comparison was opened

const isDrawable = (entry: Entry): boolean =>
  viewer.supported.kinds.find(({name}) => name === entry.check.kind)?.drawable ?? false;

function contextOf(entry: Entry): Context {
  return {
    engine: viewer,
    entry,
    source: sourceOf(entry),
    entries: () => entries,
    sourceOf,
    isDrawable: () => isDrawable(entry),
    showBytes: (offset, size) => {
      (show('bytes') as BytesView).reveal(offset, size).catch(() => undefined);
    },
    showRecord: (path) => {
      (show('record') as RecordView).reveal(path).catch(() => undefined);
    },
  };
}

function closeViews(): void {
  for (const view of made.values()) view.close();
  made = new Map();
  viewer.cancel();
  for (const name of Object.keys(views)) byId(`panel-${name}`).replaceChildren();
}

function open(entry: Entry): void {
  closeViews();
  opened = entry;
  document.body.classList.add('has-open');
  refresh();
  showHeader(entry);
  const index = shown.indexOf(entry);
  if (index >= 0) fileList.reveal(index);
  byId('panels').hidden = entry.state === 'waiting';
}

function showHeader(entry: Entry): void {
  const {check} = entry;
  const verdict = verdictOf(entry), look = lookOf(verdict);
  byId('file-name').textContent = visible(baseName(entry.path));
  document.title = `${visible(baseName(entry.path))} – torvio`;
  const badges = byId('badges');
  badges.replaceChildren(
    h('span', {class: `badge ${look}`, id: 'verdict'}, verdict === 'waiting' ? 'checking…' : verdict));
  if (check.kind) append(badges, h('span', {class: 'badge'}, `${check.kind}, version ${check.version ?? '?'}`));
  append(badges, h('span', {class: 'badge'}, bytesText(entry.file.size)));
  if (check.warnings?.length)
    append(badges, h('span', {class: 'badge warn'}, plural(check.warnings.length, 'warning')));
  byId('fault').textContent = check.fault ? `Breaks in ${visible(check.fault.field)}: ${visible(check.fault.reason)}`
                                          : visible(check.error ?? '');
  byId<HTMLSelectElement>('kind').value = entry.kindChosen;
  if (entry.state === 'waiting') return;
  const hasRecord = Boolean(check.kind) && entry.state === 'checked';
  const usable: Record<ViewName, boolean> = {
    picture: hasRecord && isDrawable(entry),
    summary: true,
    record: hasRecord,
    bytes: entry.file.size > 0 && verdict !== 'unreadable',
    compare: hasRecord,
    save: hasRecord,
  };
  for (const [name, isUsable] of Object.entries(usable)) byId(`tab-${name}`).hidden = !isUsable;
  byId('panels').hidden = false;
  show(usable[current] ? current : usable.picture ? 'picture' : 'summary');
}

function show(name: ViewName): View {
  current = name;
  for (const one of Object.keys(views) as ViewName[]) {
    const tab = byId(`tab-${one}`), isPicked = one === name;
    tab.setAttribute('aria-selected', String(isPicked));
    tab.tabIndex = isPicked ? 0 : -1;
    byId(`panel-${one}`).hidden = !isPicked;
  }
  // The files to compare with may have changed.
  const isFresh = !made.has(name) || (name === 'compare' && comparable !== entries.length);
  const view = isFresh ? views[name].make() : made.get(name) as View;
  if (isFresh) {
    if (name === 'compare') comparable = entries.length;
    made.set(name, view);
    byId(`panel-${name}`).replaceChildren(view.open(contextOf(opened as Entry)));
  }
  return view;
}

function makeTabs(): void {
  const names = Object.keys(views) as ViewName[];
  append(byId('tabs'),
    ...names.map((name) => h('button', {
      type: 'button',
      role: 'tab',
      id: `tab-${name}`,
      'aria-controls': `panel-${name}`,
      'aria-selected': 'false',
      tabindex: -1,
      click: () => show(name),
    },
                   views[name].label)));
  append(byId('panels'), ...names.map((name) => h('div', {
    id: `panel-${name}`, role: 'tabpanel', 'aria-labelledby': `tab-${name}`, hidden: true,
  })));
  byId('tabs').addEventListener('keydown', (event) => {
    const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (!step) return;
    event.preventDefault();
    const usable = names.filter((name) => !byId(`tab-${name}`).hidden);
    const next = usable[(usable.indexOf(current) + step + usable.length) % usable.length] as ViewName;
    show(next);
    byId(`tab-${next}`).focus();
  });
}

// ---- input ----

function listen(): void {
  const choose = byId<HTMLInputElement>('choose'), folder = byId<HTMLInputElement>('choose-folder');
  for (const input of [choose, folder]) {
    input.addEventListener('change', () => {
      addFiles([...(input.files ?? [])].map((file) => ({file, path: file.webkitRelativePath || file.name})));
      input.value = '';
    });
  }
  for (const button of document.querySelectorAll('[data-choose]')) {
    button.addEventListener('click', () => (button.getAttribute('data-choose') === 'folder' ? folder : choose).click());
  }
  let depth = 0;
  const over = (by: number): void => {
    depth = Math.max(0, depth + by);
    document.body.classList.toggle('dropping', depth > 0);
  };
  window.addEventListener('dragenter', (event) => { event.preventDefault(); over(1); });
  window.addEventListener('dragleave', () => over(-1));
  window.addEventListener('dragover', (event) => event.preventDefault());
  window.addEventListener('drop', (event) => {
    event.preventDefault();
    over(-depth);
    if (event.dataTransfer) drop(event.dataTransfer).catch(() => undefined);
  });
  for (const id of ['filter', 'filter-verdict', 'filter-kind', 'sort']) byId(id).addEventListener('input', refresh);
  byId('sort-direction').addEventListener('click', () => {
    const button = byId('sort-direction');
    button.setAttribute('aria-pressed', String(button.getAttribute('aria-pressed') !== 'true'));
    refresh();
  });
  listPane.addEventListener('click', (event) => {
    const id = Number((event.target as Element).closest<HTMLElement>('[data-id]')?.dataset.id ?? 0);
    const entry = entries.find((one) => one.id === id);
    if (entry) {
      open(entry);
      document.body.classList.add('viewing');
    }
  });
  listPane.addEventListener('keydown', (event) => {
    const index = opened ? shown.indexOf(opened) : -1;
    const to: Record<string, number> = {
      ArrowDown: index + 1,
      ArrowUp: index - 1,
      Home: 0,
      End: shown.length - 1,
      PageDown: index + fileList.visible,
      PageUp: index - fileList.visible,
    };
    if (event.key === 'Enter' && opened) {
      document.body.classList.add('viewing');
      byId(`tab-${current}`).focus();
      return;
    }
    if (event.key === 'Delete' && opened) {
      remove(opened);
      return;
    }
    const wanted = to[event.key];
    if (wanted === undefined || shown.length === 0) return;
    event.preventDefault();
    open(shown[Math.max(0, Math.min(shown.length - 1, wanted))] as Entry);
  });
  byId('back').addEventListener('click', () => {
    document.body.classList.remove('viewing');
    listPane.focus();
  });
  byId('clear').addEventListener('click', () => {
    checker.cancel();
    closeViews();
    entries.length = 0;
    opened = null;
    document.body.classList.remove('has-files', 'has-open', 'viewing');
    document.title = 'torvio';
    refresh();
  });
  byId('kind').addEventListener('change', () => {
    if (!opened) return;
    const entry = opened;
    entry.kindChosen = byId<HTMLSelectElement>('kind').value;
    closeViews();
    entry.state = 'waiting';
    check(entry).catch(() => undefined);
  });
  byId('encoding').addEventListener('change', () => { if (opened) open(opened); });
  byId('settings-button').addEventListener('click', () => {
    const isOpen = byId('settings').hidden;
    byId('settings').hidden = !isOpen;
    byId('settings-button').setAttribute('aria-expanded', String(isOpen));
  });
  document.addEventListener('keydown', (event) => {
    if (event.key === 'Escape' && !byId('settings').hidden) byId('settings-button').click();
  });
}

function remove(entry: Entry): void {
  const index = shown.indexOf(entry);
  entries.splice(entries.indexOf(entry), 1);
  closeViews();
  const next = shown[index + 1] ?? shown[index - 1];
  opened = null;
  if (next) open(next);
  else document.body.classList.remove('has-open', 'viewing');
  if (entries.length === 0) document.body.classList.remove('has-files');
  refresh();
}

async function start(): Promise<void> {
  makeTabs();
  const makeWorker = workerMaker();
  const module = await WebAssembly.compile(await moduleBytes());
  checker = new Engine(module, makeWorker, limitOf, whenStopped);
  viewer = new Engine(module, makeWorker, limitOf, whenStopped);
  await Promise.all([checker.start(), viewer.start()]);
  const {encodings, kinds, version} = viewer.supported;
  byId('encoding').replaceChildren(...encodings.map((name) => h('option', {value: name}, name)));
  byId<HTMLSelectElement>('encoding').value = 'cp1252';
  append(byId('kind'), ...kinds.map(({name}) => h('option', {value: name}, name)));
  byId('version').textContent = `torvio ${version}`;
  listen();
  document.body.dataset.ready = 'true';
}

start().catch((error: Error) => {
  if (error instanceof Cancelled) return;
  byId('failed').hidden = false;
  byId('failed').textContent = `This page does not work in this browser: ${error.message}`;
});
