// Where the parts of a sheet are in its picture.

export interface Placements {
  corners: Float32Array; // x and y of four corners for each placement
  parts: Int32Array; // the number of its part, from 0
}

// The outline of a placement has the number of its part, from 1, as its class.
const outline =
  /<path d="M([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)Z"[^>]* class="part(\d+)"/g;

export function placementsOf(svg: string): Placements {
  const corners: number[] = [];
  const parts: number[] = [];
  for (const match of svg.matchAll(outline)) {
    corners.push(...match.slice(1, 9).map(Number));
    parts.push(Number(match[9]) - 1);
  }
  return {corners: Float32Array.from(corners), parts: Int32Array.from(parts)};
}

// The placement at a point; if there are several, the one drawn last. -1 if there is none.
export function placementAt({corners, parts}: Placements, x: number, y: number): number {
  for (let i = parts.length - 1; i >= 0; --i) {
    let side = 0;
    let isInside = true;
    for (let k = 0; k < 4 && isInside; ++k) {
      const from = 8 * i + 2 * k, to = 8 * i + 2 * ((k + 1) % 4);
      const cross = ((corners[to] as number) - (corners[from] as number)) * (y - (corners[from + 1] as number)) -
                    ((corners[to + 1] as number) - (corners[from + 1] as number)) * (x - (corners[from] as number));
      if (cross === 0) continue;
      if (side === 0) side = Math.sign(cross);
      isInside = Math.sign(cross) === side;
    }
    if (isInside) return i;
  }
  return -1;
}
