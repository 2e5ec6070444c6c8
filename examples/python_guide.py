"""What docs/python.md shows, in the folder of examples/guide_files.sh: python_guide.py"""
import copy
import pickle
from typing import List

import oldtorvio
from oldtorvio import MarkEntry, OldSheet, PartBuilder, Shape, questions

# ---- files
nest: OldSheet = oldtorvio.load("archive/nests/nest_180.sheet")
print(nest.width, nest.height, nest.sheetLabel)
oldtorvio.save(nest, "copy.sheet", 180)

data = oldtorvio.dumps(nest, 180)
assert oldtorvio.loads(data) == nest

try:
    oldtorvio.load("archive/nests/copy.sheet")
except oldtorvio.Error as error:
    print(error.status, error.offset, error.field)
    rest = error.record
print(len(rest.partList.parts), "parts were read")

# ---- values
part = nest.partList.parts[0]
part.width = 4.75
part.partName = b"BRACKET 1"
oldtorvio.set_text(part, "partName", "Träger 1")
assert part.partName == b"Tr\xe4ger 1"
assert oldtorvio.text(part, "partName") == "Träger 1"
assert len(oldtorvio.raw(part, "partName")) == 256

shape = Shape(type=3, x=1.5, y=2.5, values=[1, 2, 3, 4, 5, 6, 7, 8, 9])
shape.values[0] = 10
shape.values[1:3] = [20, 30]
print(shape)

# ---- lists
marks = part.marks
marks.append(MarkEntry(markWord1=1))
marks.add(markWord1=2)
marks[:] = sorted(marks, key=lambda mark: -mark.markWord1)
print(len(marks), marks[0].markWord1)
narrow = [one for one in nest.partList.parts if one.width < 6]

first, second = marks[0], marks[1]
del marks[0]
assert second is marks[0]
first.markWord1 = 5
marks.insert(0, first)
assert marks[0] == first and marks[0] is not first

# ---- copies
other = copy.copy(part)
assert other == part
assert pickle.loads(pickle.dumps(part)) == part

# ---- parts
builder = PartBuilder(8, 4, 0.125, partName="PLATE", materialName="DC01")
builder.add_pattern(1, 1, 3, [0.5])
builder.add_pattern(7, 3, 3, [0.5])
builder.save("plate.part", 180)
print(questions.GetOldPartInfo("plate.part"))

# ---- what torvio does
print(oldtorvio.check("archive/nests/copy.sheet")["verdict"])
print(oldtorvio.info("archive/machines/punch.mch")["kind"])
picture = oldtorvio.draw("archive/nests/nest_180.sheet")
fields = oldtorvio.map("archive/nests/nest_180.sheet", find="partList.parts[*].partName")
found = oldtorvio.diff("archive/nests/nest_180.sheet", "copy.sheet")
print(found.same, len(found.differences))
old = oldtorvio.convert("archive/nests/nest_180.sheet", 112, allow_loss=True)
sound = oldtorvio.recover("archive/nests/copy.sheet").data

document = oldtorvio.to_json("archive/nests/nest_180.sheet")
document["record"]["width"] = 120
wide: OldSheet = oldtorvio.loads(oldtorvio.from_json(document))
print(wide.width)

# ---- many files
def names(path: str) -> List[str]:
    sheet: OldSheet = oldtorvio.load(path)
    return [oldtorvio.text(one, "partName") for one in sheet.partList.parts]


from concurrent.futures import ThreadPoolExecutor

with ThreadPoolExecutor() as pool:
    for found_names in pool.map(names, ["archive/nests/nest_180.sheet", "archive/nests/nest_112.sheet"]):
        print(found_names[:2])

# ---- whole archives
totals = oldtorvio.archive.scan("archive", out="archive.sqlite")
print(totals.files, totals.unchanged, totals.verdicts["damaged"])
totals = oldtorvio.archive.scan("archive", out="archive.sqlite")
print(totals.files, totals.unchanged, totals.verdicts["damaged"])

for row in oldtorvio.archive.rows("archive", ext={".nst": "sheet"}):
    if row["verdict"] == "damaged":
        print(row["path"], row["fault"]["offset"], row["fault"]["field"])
