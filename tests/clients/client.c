/* The chief header compiled as C, and every export called from C through the shared library. */
#include <stdio.h>
#include <string.h>

#include "OldTorvIO.h"

static int failures = 0;
#define EXPECT(holds) ((holds) ? (void)0 : (void)(printf("line %d: %s\n", __LINE__, #holds), ++failures))

int main(int argc, char** argv) {
  const uint32_t values[9] = {0};
  char path[1024], text[1024] = "unchanged";
  float a = 1, b = 2, c = 3, f = 4;
  uint32_t length = 5;
  int32_t number = 6;
  uint8_t late = 7;
  SheetPartList* list = CreateOldPartlistInfo();
  (void)snprintf(path, sizeof path, "%s/client_c.part", argc > 1 ? argv[1] : ".");

  EXPECT(list != NULL);
  InitTorvPart(1.5f, 2.5f, 0.25f, -1, NULL, NULL, NULL, NULL, NULL, NULL);
  EXPECT(SaveTorvPart(path, 180) == -2); /* no shape yet */
  EXPECT(AddPatternToTorvPart(1, 2, 3, 4, values, 5, 6, 7, 8, 9, 10, NULL, 11, 12, 13, 14) == 1);
  EXPECT(AddPatIntoGroupPat(1, 1, 2, 3, 0, values) == 2);
  EXPECT(AddPatIntoGroupPat(0, 1, 2, 3, 0, values) == 0);
  EXPECT(AddGroupPatIntoTorvPart(1, 2, 3, NULL) == -1);
  EXPECT(SaveTorvPart(path, 63) == -1);
  EXPECT(SaveTorvPart(path, 180) == 0);

  EXPECT(LoadOldPart(path, NULL) == -2);
  EXPECT(GetOldPartInfo(NULL, text, &a, &b, &c) == -2 && strcmp(text, "unchanged") == 0 && a == 1);
  EXPECT(GetOldPartInfo(path, text, &a, &b, &c) == 0 && text[0] == '\0' && a == 1.5f && b == 2.5f && c == 0.25f);
  EXPECT(GetOldPartInfo_v1(path, "thickness", text) == 0 && strcmp(text, "0.25") == 0);
  EXPECT(GetOldPartInfo_v1(path, NULL, text) == 1);
  EXPECT(GetOldPartTool(path, text, (int32_t)sizeof text, &length) == 0 && length == 0 && text[0] == '\0');
  EXPECT(GetOldSptFromPart(path, text) == 0 && text[0] == '\0');
  EXPECT(GetOldSptFromGroupPart(path, text, 1, &length) == 1);
  EXPECT(LoadGroupPart("/no/such/file", list) == -2);
  EXPECT(LoadOldSpecialTool(path, NULL) == -2);
  EXPECT(OpenSpecialToolFile("/no/such/file", &length, &f, &f, &f, &f, &f, &number, &f, &f, &f, &f, &f, &f, &number, &f,
                             &f, &f, &f, &f, &f, &f, &f, &late) == -2);
  EXPECT(length == 0 && f == 4 && number == 6 && late == 7);
  GetShapeAt(0, &number, &f, &f, &f, &f, &f, &f);
  EXPECT(number == 6 && f == 4);
  DeleteOldPartlistInfo(list);
  DeleteOldPartlistInfo(NULL);
  (void)remove(path);
  printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
