// Two files side by side: where their records differ.
import {append, h, number, plural, save, visible} from './dom.js';
import {Cancelled} from './engine.js';
import {type Context, type Entry, stem, type View} from './view.js';

interface Line {
  change?: string;
  fieldInA?: string;
  fieldInB?: string;
  a?: unknown;
  b?: unknown;
  name?: string;
  notStoredIn?: string;
  summary?: {differences: number, notStored: number, a: Side, b: Side};
}
interface Side {
  kind: string;
  version: number;
  place?: string;
  part?: string;
  fault?: {field: string, reason: string};
  unread?: number;
}

const mostLines = 2000, longest = 300;

const written = (value: unknown): string => {
  if (value === undefined) return '';
  const text = visible(JSON.stringify(value));
  return text.length > longest ? `${text.slice(0, longest)}…` : text;
};

export class CompareView implements View {
  open(context: Context): HTMLElement {
    const others = context.entries().filter((entry) => entry !== context.entry);
    if (others.length === 0)
      return h('div', {class: 'compare'}, h('p', {class: 'note'}, 'Add a second file to compare this one with.'));
    // Files of the same name or kind are the most likely choices.
    const {check} = context.entry;
    const rank = (entry: Entry): number => (entry.check.kind === check.kind ? 0 : 1);
    others.sort((a, b) => rank(a) - rank(b) || a.path.localeCompare(b.path));
    const other =
      h('select', {id: 'compare-with'}, ...others.map((entry) => h('option', {value: entry.id}, visible(entry.path))));
    const part = h('input', {id: 'compare-part', type: 'text', placeholder: 'all'});
    const tolerance = h('input', {id: 'compare-tolerance', type: 'number', min: 0, step: 'any', value: 0});
    const common = h('input', {id: 'compare-common', type: 'checkbox'});
    const result = h('div', {class: 'compare-result', role: 'status'});
    const field = (label: string, input: HTMLElement, hint = ''): HTMLElement =>
      h('div', {class: 'field'}, h('label', {for: input.id}, label), input, hint ? h('span', {class: 'soft'}, hint) : '');
    const run = (): void => {
      const entry = others.find(({id}) => id === Number(other.value)) as Entry;
      result.replaceChildren(h('p', {class: 'wait'}, 'Comparing…'));
      context.engine
        .ask('diff', {
          ...context.source,
          other: context.sourceOf(entry),
          part: part.value.trim(),
          tolerance: Math.max(0, Number(tolerance.value) || 0),
          common: common.checked,
          most: mostLines,
        })
        .then(
          ({same, lines, total, all}) => {
            result.replaceChildren(
              ...this.result(context.entry, entry, same, lines.map((line) => JSON.parse(line) as Line), total, all));
          },
          (error: Error) => {
            if (!(error instanceof Cancelled)) result.replaceChildren(h('p', {class: 'note'}, visible(error.message)));
          });
    };
    return h('div', {class: 'compare'}, h('form', {class: 'form', submit: (event: SubmitEvent) => {
      event.preventDefault();
      run();
    }}, field('Compare with', other), field('Part', part, 'name or number, of sheets'), field('Tolerance', tolerance),
      h('div', {class: 'field check'}, common, h('label', {for: common.id}, 'Only what both versions store')),
      h('button', {type: 'submit', class: 'primary'}, 'Compare')), result);
  }
  close(): void {}

  private result(a: Entry, b: Entry, same: boolean, lines: Line[], total: number, all: Blob): Node[] {
    const summary = lines[lines.length - 1]?.summary;
    const shown = lines.filter((line) => line.change);
    const side = (name: string, entry: Entry, of?: Side): HTMLElement =>
      h('div', {class: 'side'}, h('b', {}, name), ' ', visible(entry.path),
        h('span', {class: 'soft'},
          of ? ` ${of.kind}, version ${of.version}${of.part ? `, part ${visible(of.part)}` : ''}` : ''),
        of?.fault
          ? h('p', {class: 'note'},
              `Damaged: ${visible(of.fault.reason)}, in ${visible(of.fault.field)}; what was read before is compared`)
          : '');
    const nodes: Node[] = [h('div', {class: 'sides'}, side('A', a, summary?.a), side('B', b, summary?.b)),
      h('h3', {}, same ? 'No difference' : plural(summary?.differences ?? total, 'difference'))];
    if (summary?.notStored)
      nodes.push(h('p', {class: 'soft'},
        `${number(summary.notStored)} of them in members that one of the versions does not store`));
    if (shown.length === 0) return nodes;
    const words:
      Record<string, string> = {changed: 'changed', onlyInA: 'only in A', onlyInB: 'only in B', moved: 'moved'};
    const body = h('tbody', {}, ...shown.map((line) => {
      const path = line.fieldInA ?? line.fieldInB ?? '';
      return h('tr', {class: `change-${line.change}`}, h('td', {}, words[line.change ?? ''] ?? ''),
        h('td', {}, h('code', {}, visible(path)),
          line.fieldInA && line.fieldInB && line.fieldInA !== line.fieldInB
            ? h('code', {}, ` → ${visible(line.fieldInB)}`)
            : '',
          line.name ? h('span', {class: 'soft'}, ` ${visible(line.name)}`) : ''),
        h('td', {class: 'in-a'}, line.notStoredIn === 'a' ? h('i', {class: 'soft'}, 'not stored') : written(line.a)),
        h('td', {class: 'in-b'}, line.notStoredIn === 'b' ? h('i', {class: 'soft'}, 'not stored') : written(line.b)));
    }));
    nodes.push(h('div', {class: 'scroll', tabindex: 0, role: 'region', 'aria-label': 'Differences'},
      h('table', {class: 'diff'},
        h('thead', {}, h('tr', {}, ...['Change', 'Field', 'A', 'B'].map((head) => h('th', {scope: 'col'}, head)))),
        body)));
    const foot = h('p', {class: 'actions'},
      h('button', {type: 'button', click: () => save(all, `${stem(a.path)}-${stem(b.path)}.diff.ndjson`)},
        'Download as JSON lines'));
    if (total > shown.length)
      append(foot,
        h('span', {class: 'soft'},
          `The first ${number(shown.length)} are listed; the download has all ${number(total)}.`));
    nodes.push(foot);
    return nodes;
  }
}
