"""Prints a table of all sheets of a folder, with pandas: sheets_table.py FOLDER"""
import pathlib
import sys

import oldtorvio
import pandas

folder = pathlib.Path(sys.argv[1])
rows = []
for path in sorted(folder.rglob("*.sheet")):
    try:
        sheet = oldtorvio.load(path)
    except oldtorvio.Error as error:
        print(error, file=sys.stderr)
        continue
    rows.append({"file": path.name, "version": sheet.version, "width": sheet.width, "height": sheet.height,
                 "material": oldtorvio.text(sheet, "materialType"), "parts": len(sheet.partList.parts)})
print(pandas.DataFrame(rows).to_string(index=False))
