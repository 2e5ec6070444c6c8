// A JSON text as a tree, without parsing all of it: the record of a file of 50 MB is a text of 180 MB, whose objects
// would take several times as much. Nodes are places in the text, and only what is shown is read.

export interface JsonNode {
  key: string | number;
  start: number;
  end: number;
  kind: 'object' | 'array' | 'group' | 'value';
  count: number; // how many elements an array or group has, otherwise 0
  first: number; // of a group: its first element
  array: number; // of an array or group: where the array begins
  preview: string;
}

export const groupSize = 100; // elements in the smallest group, and between two marks of an array
const previewSize = 120;
const largeSize = 1 << 16; // for smaller arrays, finding marks again is faster than storing them
const [quote, backslash, comma, openBrace, closeBrace, openBracket, closeBracket] =
    [...'"\\,{}[]'].map((c) => c.charCodeAt(0));

interface Marks {
  positions: number[]; // where elements 0, 100, 200, ... begin
  count: number;
}

export class JsonText {
  private readonly marks = new Map<number, Marks>();
  private readonly ends = new Map<number, number>(); // of large objects and arrays

  constructor(readonly text: string) {}

  root(): JsonNode { return this.node('', this.skipSpace(0)); }

  // The members of an object; the elements of an array or group, or groups of them if there are many.
  children(parent: JsonNode): JsonNode[] {
    if (parent.kind === 'object') return this.members(parent.start);
    if (parent.kind === 'value') return [];
    const from = parent.first;
    const marks = this.marksOf(parent.array);
    if (parent.count <= 2 * groupSize) return this.elements(marks, from, parent.count);
    let size = groupSize;
    while (parent.count / size > groupSize) size *= groupSize;
    const groups: JsonNode[] = [];
    for (let first = from; first < from + parent.count; first += size) {
      const count = Math.min(size, from + parent.count - first);
      const start = marks.positions[first / groupSize] as number;
      const after = marks.positions[(first + count) / groupSize];
      groups.push({
        key: `${first} to ${first + count - 1}`,
        start,
        end: after ?? parent.end,
        kind: 'group',
        count,
        first,
        array: parent.array,
        preview: ''
      });
    }
    return groups;
  }

  // The node at ["record", "partList", "parts", 3], or null.
  at(path: (string | number)[]): JsonNode | null {
    let node: JsonNode | null = this.root();
    for (const key of path) {
      if (node.kind === 'array' && typeof key === 'number') {
        const parent: JsonNode = node;
        const marks = this.marksOf(parent.start);
        node = key < marks.count ? (this.elements(marks, key, 1)[0] ?? null) : null;
      } else {
        node = node.kind === 'object' ? (this.members(node.start).find((one) => one.key === key) ?? null) : null;
      }
      if (node === null) return null;
    }
    return node;
  }

  value(node: {start: number, end: number}): unknown { return JSON.parse(this.text.slice(node.start, node.end)); }

  elements(marks: Marks, from: number, count: number): JsonNode[] {
    const nodes: JsonNode[] = [];
    let at = marks.positions[Math.floor(from / groupSize)] as number;
    for (let i = from - from % groupSize; i < from + count && i < marks.count; ++i) {
      if (i >= from) {
        const node = this.node(i, at);
        nodes.push(node);
        at = node.end;
      } else {
        at = this.skip(at);
      }
      at = this.skipSpace(this.skipSpace(at) + 1);
    }
    return nodes;
  }

  marksOf(start: number): Marks {
    const known = this.marks.get(start);
    if (known) return known;
    const marks: Marks = {positions: [], count: 0};
    let at = this.skipSpace(start + 1);
    while (this.text.charCodeAt(at) !== closeBracket && at < this.text.length) {
      if (marks.count % groupSize === 0) marks.positions.push(at);
      ++marks.count;
      at = this.skipSpace(this.skip(at));
      if (this.text.charCodeAt(at) === comma) at = this.skipSpace(at + 1);
    }
    if (at + 1 - start > largeSize) {
      this.marks.set(start, marks);
      this.ends.set(start, at + 1);
    }
    return marks;
  }

  private members(start: number): JsonNode[] {
    const nodes: JsonNode[] = [];
    let at = this.skipSpace(start + 1);
    while (this.text.charCodeAt(at) === quote) {
      const keyEnd = this.skipString(at);
      const key = JSON.parse(this.text.slice(at, keyEnd)) as string;
      const node = this.node(key, this.skipSpace(this.skipSpace(keyEnd) + 1));
      nodes.push(node);
      at = this.skipSpace(node.end);
      if (this.text.charCodeAt(at) === comma) at = this.skipSpace(at + 1);
    }
    return nodes;
  }

  private node(key: string | number, start: number): JsonNode {
    const first = this.text.charCodeAt(start);
    const kind = first === openBrace ? 'object' : first === openBracket ? 'array' : 'value';
    const count = kind === 'array' ? this.marksOf(start).count : 0;
    const end = this.skip(start);
    const preview = this.text.slice(start, Math.min(end, start + previewSize)) + (end - start > previewSize ? '…' : '');
    return {key, start, end, kind, count, first: 0, array: start, preview};
  }

  private skipSpace(at: number): number {
    while (this.text.charCodeAt(at) <= 0x20) ++at;
    return at;
  }

  private skipString(at: number): number {
    for (let end = this.text.indexOf('"', at + 1); end >= 0; end = this.text.indexOf('"', end + 1)) {
      let slashes = 0;
      while (this.text.charCodeAt(end - 1 - slashes) === backslash) ++slashes;
      if (slashes % 2 === 0) return end + 1;
    }
    return this.text.length;
  }

  // The end of the value that begins at `at`.
  private skip(at: number): number {
    const known = this.ends.get(at);
    if (known !== undefined) return known;
    const {text} = this;
    const first = text.charCodeAt(at);
    if (first === quote) return this.skipString(at);
    let i = at;
    if (first !== openBrace && first !== openBracket) {
      for (; i < text.length; ++i) {
        const c = text.charCodeAt(i);
        if (c === comma || c === closeBrace || c === closeBracket || c <= 0x20) break;
      }
      return i;
    }
    for (let depth = 0; i < text.length; ++i) {
      const c = text.charCodeAt(i);
      if (c === quote) {
        i = this.skipString(i) - 1;
      } else if (c === openBrace || c === openBracket) {
        ++depth;
      } else if (c === closeBrace || c === closeBracket) {
        if (--depth === 0) break;
      }
    }
    if (i + 1 - at > largeSize) this.ends.set(at, i + 1);
    return i + 1;
  }

  // Where a text occurs in names and values, whatever its case: at most `most` places.
  find(query: string, most: number): number[] {
    // As it is written in strings. The text has no escapes except those of JSON.stringify and \u007f to \u009f.
    const written = JSON.stringify(query).slice(1, -1);
    const pattern = new RegExp(written.replace(/[.*+?^${}()|[\]\\]/g, '\\$&'), 'gi');
    const places: number[] = [];
    for (const match of this.text.matchAll(pattern)) {
      places.push(match.index);
      if (places.length === most) break;
    }
    return places;
  }
}
