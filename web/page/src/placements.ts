// Where the parts of a sheet are in its picture.

export interface Placements {
  corners: Float32Array; // x and y of four corners for each placement
  parts: Int32Array; // the number of its part, from 0
}

// A placement is the only path with this opacity and four corners; placements come in the order of the parts.
const outline =
  /<path d="M([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)L([\d.-]+) ([\d.-]+)Z" fill="(#[0-9a-f]{6})" fill-opacity="0\.9"/g;

// `colours` are those of the picture in the order in which parts take turns with them, `sizes` the widths and heights
// of the parts. A placement is of the next part that has its colour and its shape.
export function placementsOf(svg: string, colours: string[], sizes: [number, number][]): Placements {
  const corners: number[] = [];
  const parts: number[] = [];
  let scale = 0; // coordinates for a length unit
  let part = 0;
  const fits = (candidate: number, width: number, height: number): boolean => {
    const size = sizes[candidate];
    if (!size) return false;
    const [wanted, wantedHeight] = size;
    // Coordinates have two digits after the point.
    if (scale === 0) return Math.abs(width * wantedHeight - height * wanted) <= 0.02 * (wanted + wantedHeight);
    return Math.abs(width - wanted * scale) <= 0.03 + wanted * scale * 1e-3 &&
           Math.abs(height - wantedHeight * scale) <= 0.03 + wantedHeight * scale * 1e-3;
  };
  for (const match of svg.matchAll(outline)) {
    const at = match.slice(1, 9).map(Number) as [number, number, number, number, number, number, number, number];
    const colour = colours.indexOf(match[9] as string);
    const width = Math.hypot(at[2] - at[0], at[3] - at[1]);
    const height = Math.hypot(at[6] - at[0], at[7] - at[1]);
    let found = -1;
    for (let i = part; i < sizes.length && found < 0; ++i) {
      if (i % colours.length === colour && fits(i, width, height)) found = i;
    }
    if (found < 0) continue;
    part = found;
    if (scale === 0 && width > 20) scale = width / (sizes[part] as [number, number])[0];
    corners.push(...at);
    parts.push(part);
  }
  return {corners: Float32Array.from(corners), parts: Int32Array.from(parts)};
}

// The placement at a point; of several the one drawn last. -1 if there is none.
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
