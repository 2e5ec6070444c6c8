#include <stdio.h>

#include "OldTorvIO.h"

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "plate.part";
  const uint32_t values[9] = {0x3F000000}; /* a radius of 0.5, as bits */
  char material[257];
  float width, height, thickness;

  InitTorvPart(24.0f, 12.0f, 0.06f, 1, "PLATE", NULL, "STEEL", NULL, NULL, NULL);
  AddPatternToTorvPart(6.0f, 6.0f, 1, 0, values, 0, 0, 0, 0, 0, 0, NULL, 0, 0, 0, 0);
  if (SaveTorvPart(path, 180) != 0) return 1;

  if (GetOldPartInfo(path, material, &width, &height, &thickness) != 0) return 1;
  printf("%g x %g x %g\n", width, height, thickness);
  return 0;
}
