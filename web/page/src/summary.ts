// The verdict with its reasons, and what a file contains at a glance.
import {append, bytesText, h, hex, number, plural, visible} from './dom.js';
import {Cancelled} from './engine.js';
import type {Info} from './protocol.js';
import type {Context, View} from './view.js';

const rowsAtFirst = 100, rowsAtATime = 1000;

// "materialType" as "Material type".
const label = (name: string): string => {
  const words = name.replace(/([a-z])([A-Z0-9])/g, '$1 $2').toLowerCase().replace(/\bnc\b/, 'NC');
  return words.charAt(0).toUpperCase() + words.slice(1);
};
const valueText = (value: unknown): string => {
  if (typeof value === 'string') return visible(value);
  return value === null ? '–' : JSON.stringify(value);
};

export class SummaryView implements View {
  open(context: Context): HTMLElement {
    const facts = h('div', {}, h('p', {class: 'wait', role: 'status'}, 'Reading…'));
    context.engine.ask('info', context.source)
      .then((info) => facts.replaceChildren(...this.facts(info)), (error: Error) => {
        if (!(error instanceof Cancelled)) facts.replaceChildren(h('p', {class: 'note'}, visible(error.message)));
      });
    return h('div', {class: 'summary'}, this.verdict(context), facts);
  }
  close(): void {}

  private verdict({entry: {check, file}, showBytes, showRecord}: Context): HTMLElement {
    const says: Record<string, string> = {
      'sound': 'The file loads, and a load reads every byte of it.',
      'sound with losses': 'The file loads; it has bytes that a load does not read.',
      'damaged': 'The file breaks before its end. What was read before the fault is shown.',
      'refused version': 'Files of this kind are not loaded in this version.',
      'foreign': 'This is not a file of the suite, or not recognisable as one.',
      'unreadable': 'The file could not be read.',
    };
    const where = (fault: {offset: number, field: string, reason: string}, title: string) =>
      h('div', {class: 'fault'}, h('h3', {}, title),
        h('p', {}, `${visible(fault.reason)}, in `, h('code', {}, visible(fault.field)),
          ` at byte ${number(fault.offset)} (0x${hex(fault.offset)})`),
        h('p', {class: 'actions'},
          h('button', {type: 'button', click: () => showBytes(fault.offset, 1)}, 'Show the bytes')));
    const warnings = check.warnings ?? [];
    const section = h('section', {class: 'verdict-section'}, h('h3', {}, 'Verdict'),
      h('p', {}, says[check.verdict] ?? visible(check.error ?? '')),
      check.error ? h('p', {class: 'note'}, visible(check.error)) : '');
    append(section, h('p', {class: 'soft'}, [
      check.status === undefined ? '' : `A load returns ${check.status}.`,
      check.walked === undefined
        ? ''
        : `Read: ${number(check.walked)} of ${plural(file.size, 'byte')} (${bytesText(file.size)}).`
    ].join(' ')));
    if (check.fault) section.append(where(check.fault, 'Where it breaks'));
    if (check.tolerated) section.append(where(check.tolerated, 'What a load tolerates'));
    if (warnings.length > 0) {
      append(section, h('h3', {}, plural(warnings.length, 'warning')),
        h('ul', {class: 'warnings'},
          ...warnings.slice(0, rowsAtFirst)
            .map(({code, field, text}) => h('li', {}, h('b', {}, visible(code)), ' ', visible(text), ' ',
                   field ? h('button', {type: 'button', class: 'link', click: () => showRecord(field)}, visible(field))
                         : ''))));
    }
    return section;
  }

  private facts(info: Info): Node[] {
    const known = new Set(['path', 'pathBytes', 'kind', 'version', 'verdict', 'remark']);
    const list = h('dl', {class: 'facts'});
    const tables: Node[] = [];
    for (const [name, value] of Object.entries(info)) {
      if (known.has(name)) continue;
      if (Array.isArray(value)) {
        if (value.length > 0) tables.push(...this.table(label(name), value as Record<string, unknown>[]));
      } else if (value !== '') {
        append(list, h('div', {}, h('dt', {}, label(name)), h('dd', {}, valueText(value))));
      }
    }
    const nothing = list.childElementCount === 0 && tables.length === 0;
    return [nothing ? h('p', {class: 'soft'}, 'Nothing else is known about this file.') : list, ...tables];
  }

  private table(title: string, rows: Record<string, unknown>[]): Node[] {
    const columns = Object.keys(rows[0] as object);
    const isNumber =
      columns.map((column) => rows.every((row) => typeof row[column] === 'number' || row[column] === null));
    const body = h('tbody', {});
    let shown = 0;
    const more = h('button', {type: 'button', click: () => add(rowsAtATime)});
    const add = (count: number): void => {
      append(body,
        ...rows.slice(shown, shown + count)
          .map(
            (row, i) => h('tr', {}, h('td', {class: 'soft number'}, String(shown + i + 1)),
              ...columns.map((column, c) => h('td', isNumber[c] ? {class: 'number'} : {}, valueText(row[column]))))));
      shown = Math.min(rows.length, shown + count);
      more.textContent = `Show ${plural(Math.min(rowsAtATime, rows.length - shown), 'more row')}`;
      more.hidden = shown === rows.length;
    };
    add(rowsAtFirst);
    return [
      h('h3', {}, `${title} (${number(rows.length)})`),
      h('div', {class: 'scroll', tabindex: 0, role: 'region', 'aria-label': title},
        h('table', {},
          h('thead', {},
            h('tr', {}, h('th', {scope: 'col'}, '#'),
              ...columns.map(
                (column, c) => h('th', {scope: 'col', ...(isNumber[c] ? {class: 'number'} : {})}, label(column))))),
          body)),
      h('p', {class: 'actions'}, more)
    ];
  }
}
