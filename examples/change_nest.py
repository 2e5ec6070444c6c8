"""Moves some parts of a nest to another work order and saves it: change_nest.py NEST NEW_NEST"""
import sys

import oldtorvio

nest: oldtorvio.OldSheet = oldtorvio.load(sys.argv[1], "sheet")
for part in nest.partList.parts:
    if part.woNumber == b"WO-7002":
        part.woNumber = b"WO-9000"
        print(oldtorvio.text(part, "partName"), part.width, "x", part.height)
oldtorvio.set_text(nest, "sheetLabel", "NEST 4712")
del nest.partList.parts[0]
oldtorvio.save(nest, sys.argv[2], 180)
