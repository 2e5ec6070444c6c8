// What can be made from a file: JSON, its picture, another version, a file without the damage.
import {append, bytesText, h, number, plural, save, visible} from './dom.js';
import {Cancelled} from './engine.js';
import type {Report} from './protocol.js';
import {baseName, type Context, stem, type View} from './view.js';

const mostPretty = 8e6, newest = 180;

export class SaveView implements View {
  open(context: Context): HTMLElement {
    const {entry, engine, source} = context;
    const {check} = entry;
    const panel = h('div', {class: 'save'});
    if (!check.kind)
      return append(panel, h('p', {class: 'note'}, 'Nothing can be made from a file of unknown kind.')), panel;
    const busy = async (into: HTMLElement, work: () => Promise<void>): Promise<void> => {
      into.replaceChildren(h('p', {class: 'wait', role: 'status'}, 'Working…'));
      try {
        await work();
      } catch (error) {
        if (!(error instanceof Cancelled))
          into.replaceChildren(h('p', {class: 'note', role: 'alert'}, visible((error as Error).message)));
      }
    };
    const card = (title: string, text: string, ...children: (Node | string)[]): HTMLElement =>
      h('section', {class: 'card'}, h('h3', {}, title), h('p', {class: 'soft'}, text), ...children);

    const jsonDone = h('div', {});
    const json = (pretty: boolean) => busy(jsonDone, async () => {
      const blob = await engine.ask('json', {...source, pretty});
      save(blob, `${baseName(entry.path)}.json`);
      jsonDone.replaceChildren(h('p', {role: 'status'}, `Saved, ${bytesText(blob.size)}`));
    });
    append(panel,
      card('JSON', 'The complete record. torvio from-json makes a file from it again.',
        h('p', {class: 'actions'}, h('button', {type: 'button', click: () => json(false)}, 'Download JSON'),
          entry.file.size <= mostPretty
            ? h('button', {type: 'button', click: () => json(true)}, 'Download JSON, indented')
            : ''),
        jsonDone));

    if (context.isDrawable()) {
      const done = h('div', {});
      append(panel,
        card('Picture', 'To scale, as SVG.',
          h('p', {class: 'actions'},
            h('button', {
              type: 'button',
              click: () => busy(done,
                async () => {
                  const {svg} = await engine.ask('draw', source);
                  save(svg, `${baseName(entry.path)}.svg`);
                  done.replaceChildren(h('p', {role: 'status'}, `Saved, ${bytesText(svg.size)}`));
                })
            },
              'Download SVG')),
          done));
    }

    const isDamaged = check.verdict === 'damaged';
    if (isDamaged) {
      const done = h('div', {});
      append(panel,
        card('File without the damage',
          'Keeps everything before the fault. What follows gets the values of a new record: check the report before ' +
            'you use the file.',
          h('p', {class: 'actions'},
            h('button', {
              type: 'button',
              click: () => busy(done,
                async () => {
                  const {blob, report, error} = await engine.ask('recover', source);
                  done.replaceChildren(...this.report(report, error),
                    blob ? h('p', {class: 'actions'},
                             h('button', {
                               type: 'button',
                               class: 'primary',
                               click: () => save(blob, `recovered-${baseName(entry.path)}`)
                             },
                               `Download the recovered file, ${bytesText(blob.size)}`))
                         : '');
                })
            },
              'See what can be kept')),
          done));
    }

    const kind = engine.supported.kinds.find(({name}) => name === check.kind);
    const versions: number[] = [];
    for (const [first, last] of kind?.versions ?? [])
      for (let v = last; v >= first; --v)
        if (v <= newest) versions.push(v);
    versions.sort((a, b) => b - a);
    const version = h('select', {id: 'save-version'}, ...versions.map((v) => h('option', {value: v}, String(v))));
    if (check.version !== undefined && versions.includes(check.version)) version.value = String(check.version);
    const done = h('div', {});
    const convert = () => busy(done, async () => {
      const to = Number(version.value);
      const {blob, report, error} = await engine.ask('convert', {...source, version: to, allowLoss: false});
      const nodes: (Node | string)[] = this.report(report, blob ? '' : error);
      const losses = (report?.losses?.length ?? 0) + (report?.leftOut?.length ?? 0);
      const name = `${stem(entry.path)}-${to}${baseName(entry.path).slice(stem(entry.path).length)}`;
      if (blob) {
        nodes.push(h('p', {class: 'actions'},
          h('button', {type: 'button', class: 'primary', click: () => save(blob, name)},
            `Download version ${to}, ${bytesText(blob.size)}`)));
      } else if (losses > 0 && (report?.newSize ?? 0) > 0) {
        const button = h('button', {type: 'button', class: 'danger', click: async () => {
          button.disabled = true;
          try {
            const allowed = await engine.ask('convert', {...source, version: to, allowLoss: true});
            if (allowed.blob) save(allowed.blob, name);
            else done.append(h('p', {class: 'note', role: 'alert'}, visible(allowed.error)));
          } catch (failure) {
            if (!(failure instanceof Cancelled))
              done.append(h('p', {class: 'note', role: 'alert'}, visible((failure as Error).message)));
          }
          button.disabled = false;
        }}, `Download version ${to} with these losses`);
        nodes.push(h('p', {class: 'actions'}, button));
      }
      done.replaceChildren(...nodes);
    });
    version.addEventListener('change', () => done.replaceChildren());
    append(panel,
      card('Another version', 'Saves the record in another version. What that version cannot store is shown first.',
        h('p', {class: 'actions'}, h('label', {for: 'save-version'
        }, 'Version'), version, h('button', {type: 'button', click: convert}, 'See what it loses')), done));
    return panel;
  }
  close(): void {}

  private report(report: Report | null, error: string): Node[] {
    const nodes: Node[] = [];
    if (report === null) return error ? [h('p', {class: 'note', role: 'alert'}, visible(error))] : nodes;
    const {losses = [], leftOut = [], fixed = [], shorter = [], defaults = [], notes = [], fault} = report;
    // If something is lost, the list itself says so.
    if (error && losses.length + leftOut.length === 0)
      nodes.push(h('p', {class: 'note', role: 'alert'}, visible(error)));
    const isClean = losses.length + leftOut.length + shorter.length + defaults.length === 0;
    if (!error && isClean) nodes.push(h('p', {class: 'good', role: 'status'}, 'Nothing is lost.'));
    if (fault) nodes.push(h('p', {}, `The file breaks in ${visible(fault.field)}: ${visible(fault.reason)}.`));
    if (losses.length > 0) {
      nodes.push(h('p', {role: 'status'}, `${plural(losses.length, 'member')} would be lost or changed:`),
        h('div', {class: 'scroll', tabindex: 0, role: 'region', 'aria-label': 'Losses'},
          h('table', {},
            h('thead', {},
              h('tr', {},
                ...['', 'Member', 'Times', 'First', 'Value', 'Becomes'].map((head) => h('th', {scope: 'col'}, head)))),
            h('tbody', {},
              ...losses.slice(0, 500).map(
                (loss) =>
                  h('tr', {}, h('td', {}, visible(loss.effect)), h('td', {}, h('code', {}, visible(loss.member))),
                    h('td', {class: 'number'}, number(loss.count)), h('td', {}, h('code', {}, visible(loss.first))),
                    h('td', {}, visible(loss.before)), h('td', {}, visible(loss.after))))))));
    }
    const lines = [
      ...leftOut.map(
        ({offset, size, reason}) => `Left out: ${plural(size, 'byte')} from ${number(offset)} on: ${reason}`),
      ...shorter.map(
        ({list, kept, stored, brokenAt}) =>
          `${list} keeps ${number(kept)} of ${number(stored)} elements; the next one breaks in ${brokenAt}`),
      ...fixed.map((text) => `Fixed: ${typeof text === 'string' ? text : JSON.stringify(text)}`), ...notes
    ];
    if (defaults.length > 0)
      lines.push(`Not read; these have the defaults of a new record: ${defaults.join(', ')}`);
    if (lines.length > 0) nodes.push(h('ul', {}, ...lines.map((line) => h('li', {}, visible(line)))));
    return nodes;
  }
}
