"""Records, arrays and lists as attributes."""
import copy
import gc
import keyword
import math
import pickle
import struct
import sys
import weakref
from collections.abc import MutableSequence, Sequence

import pytest

import oldtorvio
from oldtorvio import MarkEntry, OldSheet, OldToolInventory, Pattern, Shape, TorvPart


def part_with_marks(*words):
    part = TorvPart()
    for word in words:
        part.marks.add(markWord1=word)
    return part


def words(part):
    return [mark.markWord1 for mark in part.marks]


# ---- what there is ----

def test_every_file_kind_has_a_record():
    kinds = {kind for _, kind, _ in oldtorvio._core._records() if kind}
    assert kinds == {kind["name"] for kind in oldtorvio.supported()["kinds"]}


def test_attributes_are_the_members_and_no_keywords():
    for name, _, members in oldtorvio._core._records():
        record_class = getattr(oldtorvio, name)
        assert issubclass(record_class, oldtorvio.Record)
        for member, _, _ in members:
            assert not keyword.iskeyword(member)
            assert hasattr(record_class, member)
        assert oldtorvio.fields(record_class) == oldtorvio.fields(record_class())


def test_every_member_can_be_read_and_assigned_its_own_value():
    for name, _, members in oldtorvio._core._records():
        record = getattr(oldtorvio, name)()
        before = copy.copy(record)
        for member, _, _ in members:
            setattr(record, member, getattr(record, member))
        assert record == before, name


def test_every_member_survives_a_python_copy_of_its_value():
    for name, _, members in oldtorvio._core._records():
        record, other = getattr(oldtorvio, name)(), getattr(oldtorvio, name)()
        for member, form, _ in members:
            value = getattr(record, member)
            setattr(other, member, value.tolist() if form[0] in ("array", "list", "lazyArray") else value)
        assert record == other, name


def test_defaults_are_those_of_the_library():
    sheet = OldSheet()
    assert (sheet.width, sheet.height) == (60, 45)
    assert math.isclose(sheet.thickness, 0.048, rel_tol=1e-6)
    assert TorvPart().partName == b"NEW PART"


def test_records_are_made_with_their_members():
    shape = Shape(type=3, x=1.5, y=-2, values=[1, 2, 3, 4, 5, 6, 7, 8, 9])
    assert (shape.type, shape.x, shape.y, list(shape.values)) == (3, 1.5, -2, [1, 2, 3, 4, 5, 6, 7, 8, 9])
    with pytest.raises(TypeError, match="by name"):
        Shape(3)
    with pytest.raises(AttributeError):
        Shape(tpye=3)
    with pytest.raises(TypeError):
        oldtorvio.Record()
    with pytest.raises(TypeError):
        oldtorvio.List()


def test_a_misspelt_attribute_is_an_error():
    with pytest.raises(AttributeError):
        Shape().tpye = 3
    with pytest.raises(AttributeError, match="cannot be deleted"):
        del Shape().type


# ---- numbers ----

def test_integers_have_the_range_of_their_member():
    shape = Shape()
    shape.type = -128
    assert shape.type == -128
    for value in (-129, 128, 2**70):
        with pytest.raises(OverflowError, match=r"Shape\.type is out of range: int8 is from -128 to 127"):
            shape.type = value
    assert shape.type == -128
    shape.flags = 2**32 - 1
    assert shape.flags == 2**32 - 1
    for value in (1.5, "1", None):
        with pytest.raises(TypeError, match=r"Shape\.type"):
            shape.type = value


def test_reals_are_rounded_to_their_size_once():
    shape = Shape(x=0.1)
    assert shape.x == struct.unpack("f", struct.pack("f", 0.1))[0]
    shape.x = math.inf
    assert shape.x == math.inf
    shape.x = math.nan
    assert math.isnan(shape.x)
    with pytest.raises(OverflowError, match=r"Shape\.x is out of range"):
        shape.x = 1e39
    with pytest.raises(TypeError, match=r"Shape\.x"):
        shape.x = "1"
    sheet = OldSheet(lateValue=0.1)
    assert sheet.lateValue == 0.1


# ---- texts ----

def test_fixed_texts_end_at_their_first_nul():
    part = TorvPart(partName=b"BRACKET")
    assert part.partName == b"BRACKET"
    raw = oldtorvio.raw(part, "partName")
    assert raw == b"BRACKET" + bytes(249)
    oldtorvio.set_raw(part, "partName", b"A\0B" + bytes(253))
    assert part.partName == b"A"
    assert oldtorvio.raw(part, "partName")[:4] == b"A\0B\0"
    part.partName = b"C"
    assert oldtorvio.raw(part, "partName") == b"C" + bytes(255)
    part.partName = b"x" * 256
    assert part.partName == b"x" * 256


@pytest.mark.parametrize("value, error", [(b"x" * 257, ValueError), (b"A\0B", ValueError), ("text", TypeError),
                                          (None, TypeError), (7, TypeError)])
def test_what_fixed_texts_refuse(value, error):
    part = TorvPart(partName=b"BEFORE")
    with pytest.raises(error, match=r"TorvPart\.partName"):
        part.partName = value
    assert part.partName == b"BEFORE"


def test_what_raw_refuses():
    part = TorvPart()
    with pytest.raises(ValueError, match="256 bytes, not 3"):
        oldtorvio.set_raw(part, "partName", b"abc")
    with pytest.raises(TypeError):
        oldtorvio.raw(part, "width")
    with pytest.raises(AttributeError):
        oldtorvio.raw(part, "partname")
    with pytest.raises(TypeError):
        oldtorvio.raw(7, "partName")


def test_elements_have_raw_bytes_too():
    sheet = OldSheet()
    oldtorvio.set_raw(sheet.partTexts, 2, b"A\0B" + bytes(253))
    assert sheet.partTexts[2] == b"A"
    assert oldtorvio.raw(sheet.partTexts, 2)[:3] == b"A\0B"
    with pytest.raises(IndexError):
        oldtorvio.raw(sheet.partTexts, 5)
    inventory = OldToolInventory(specialToolFiles=[b"one", b"two"])
    assert oldtorvio.raw(inventory.specialToolFiles, 1) == b"two" + bytes(253)
    with pytest.raises(IndexError):
        oldtorvio.raw(inventory.specialToolFiles, 2)


def test_texts_in_a_code_page():
    part = TorvPart()
    oldtorvio.set_text(part, "partName", "Träger")
    assert part.partName == b"Tr\xe4ger"
    assert oldtorvio.text(part, "partName") == "Träger"
    assert oldtorvio.text(part, "partName", "cp437") == "TrΣger"
    with pytest.raises(ValueError, match="cp1252 lacks"):
        oldtorvio.set_text(part, "partName", "日本")
    with pytest.raises(LookupError):
        oldtorvio.decode(b"", "utf-8")
    for encoding in oldtorvio.supported()["encodings"]:
        every = bytes(range(256))
        assert oldtorvio.encode(oldtorvio.decode(every, encoding), encoding) == every


def test_texts_without_a_size_keep_all_bytes():
    shape = Shape()
    [field] = [field for field in oldtorvio.fields(Shape) if field.form == ("text",)][:1]
    setattr(shape, field.name, b"a\0b")
    assert getattr(shape, field.name) == b"a\0b"


def test_blocks_are_bytes_filled_with_zeros():
    name, block, size = next((name, member, form[1]) for name, _, members in oldtorvio._core._records()
                             for member, form, _ in members if form[0] == "bytes")
    record = getattr(oldtorvio, name)()
    setattr(record, block, b"\1\2")
    assert getattr(record, block) == b"\1\2" + bytes(size - 2)
    with pytest.raises(ValueError, match=f"has room for {size} bytes"):
        setattr(record, block, bytes(size + 1))


def test_pairs_are_tuples():
    pattern = Pattern(bindFirst=[(1, 2), [3, 4]])
    assert list(pattern.bindFirst) == [(1, 2), (3, 4)]
    pattern.bindFirst[0] = (5, 6)
    assert pattern.bindFirst[0] == (5, 6)
    with pytest.raises(ValueError, match="needs 2 elements, not 3"):
        pattern.bindFirst.append((1, 2, 3))
    with pytest.raises(OverflowError):
        pattern.bindFirst.append((1, -1))
    assert len(pattern.bindFirst) == 2


# ---- arrays ----

def test_arrays_are_sequences_of_a_fixed_length():
    shape = Shape()
    values = shape.values
    assert isinstance(values, Sequence) and not isinstance(values, MutableSequence)
    assert len(values) == 9
    values[0], values[-1] = 1, 9
    assert values == [1, 0, 0, 0, 0, 0, 0, 0, 9] and values != [1] and values != (1,) * 9
    values[1:3] = [2, 3]
    assert values[:4] == [1, 2, 3, 0] and values[::4] == [1, 0, 9]
    assert values.index(9) == 8 and values.count(0) == 5 and 3 in values and 7 not in values
    assert list(reversed(values))[0] == 9
    assert values.tolist() == list(values)
    with pytest.raises(IndexError):
        values[9]
    with pytest.raises(IndexError):
        values[-10] = 1
    with pytest.raises(TypeError, match="fixed length"):
        del values[0]
    with pytest.raises(ValueError, match="cannot assign 2 elements to 3"):
        values[:3] = [1, 2]
    with pytest.raises(TypeError, match=r"Shape\.values\[4\]"):
        values[4] = "x"
    with pytest.raises(ValueError, match=r"Shape\.values needs 9 elements, not 1"):
        shape.values = [1]
    assert not hasattr(values, "append")


def test_arrays_of_arrays():
    sheet = OldSheet()
    assert [list(row) for row in sheet.transform] == [[1, 0, 0], [0, 1, 0], [0, 0, 1]]
    sheet.transform[1][2] = 5
    assert sheet.transform.tolist() == [[1, 0, 0], [0, 1, 5], [0, 0, 1]]
    sheet.transform = [[1, 2, 3], [4, 5, 6], [7, 8, 9]]
    sheet.transform[0] = [0, 0, 0]
    assert sheet.transform == [[0, 0, 0], [4, 5, 6], [7, 8, 9]]
    with pytest.raises(ValueError, match="needs 3 elements, not 2"):
        sheet.transform[0] = [1, 2]


def test_a_failed_assignment_changes_nothing():
    shape = Shape(values=range(9))
    with pytest.raises(TypeError):
        shape.values = [9, 8, 7, 6, 5, 4, 3, 2, "one"]
    assert list(shape.values) == list(range(9))
    part = part_with_marks(1, 2)
    with pytest.raises(TypeError, match="needs MarkEntry, not Shape"):
        part.marks = [MarkEntry(markWord1=3), Shape()]
    with pytest.raises(TypeError):
        part.marks[0:1] = [MarkEntry(), None]
    with pytest.raises(TypeError):
        part.marks.extend([MarkEntry(), 3])
    assert words(part) == [1, 2]


def test_lazy_arrays_are_arrays():
    part = TorvPart()
    slots = part.processSlots
    assert len(slots) == 250
    assert slots[200].slotWord1 == TorvPart().processSlots[0].slotWord1
    reference = sys.getsizeof(pickle.dumps(part))
    for slot in slots:
        assert slot.slotKind is not None
    assert sys.getsizeof(pickle.dumps(part)) == reference  # reading takes no memory for elements
    kept = slots[7]
    kept.slotWord1 = 70
    assert slots[7].slotWord1 == 70 and kept is slots[7]
    other = TorvPart(processSlots=[oldtorvio.ProcessSlot(slotWord1=1)])
    assert other.processSlots[0].slotWord1 == 1 and other.processSlots[249] == TorvPart().processSlots[249]
    part.processSlots = other.processSlots
    assert part.processSlots == other.processSlots
    assert kept.slotWord1 == TorvPart().processSlots[7].slotWord1  # a place of the array
    with pytest.raises(ValueError, match="at most 250"):
        part.processSlots = [oldtorvio.ProcessSlot()] * 251


# ---- lists ----

def test_lists_change_like_lists():
    part = TorvPart()
    marks = part.marks
    assert isinstance(marks, MutableSequence) and len(marks) == 0 and not marks
    marks.append(MarkEntry(markWord1=1))
    added = marks.add(markWord1=3)
    assert added is marks[1]
    marks.insert(1, MarkEntry(markWord1=2))
    marks += [MarkEntry(markWord1=4), MarkEntry(markWord1=5)]
    assert words(part) == [1, 2, 3, 4, 5]
    assert marks.pop().markWord1 == 5 and marks.pop(0).markWord1 == 1
    marks.remove(MarkEntry(markWord1=3))
    assert words(part) == [2, 4]
    marks[0] = MarkEntry(markWord1=20)
    marks[2:] = [MarkEntry(markWord1=word) for word in (5, 6, 7)]
    assert words(part) == [20, 4, 5, 6, 7]
    del marks[1]
    del marks[::2]
    assert words(part) == [5, 7]
    marks.reverse()
    assert words(part) == [7, 5]
    marks[:] = sorted(marks, key=lambda mark: mark.markWord1)
    assert words(part) == [5, 7]
    marks.insert(-100, MarkEntry(markWord1=1))
    marks.insert(100, MarkEntry(markWord1=9))
    assert words(part) == [1, 5, 7, 9]
    marks.clear()
    assert words(part) == []
    for wrong in (lambda: marks.pop(), lambda: marks[0], lambda: marks.__delitem__(0)):
        with pytest.raises(IndexError):
            wrong()
    with pytest.raises(ValueError):
        marks.remove(MarkEntry())
    with pytest.raises(TypeError, match="needs MarkEntry, not int"):
        marks.append(3)


def test_lists_of_numbers():
    pattern = Pattern(bindThird=[3, 1, 2])
    numbers = pattern.bindThird
    numbers.append(2**32 - 1)
    assert list(numbers) == [3, 1, 2, 2**32 - 1]
    with pytest.raises(OverflowError):
        numbers.append(-1)
    with pytest.raises(TypeError, match="append"):
        numbers.add()
    numbers[:] = sorted(numbers)
    numbers.remove(2)
    assert numbers == [1, 3, 2**32 - 1] and numbers.pop() == 2**32 - 1


def test_a_list_holds_copies():
    mark = MarkEntry(markWord1=1)
    part = TorvPart(marks=[mark])
    part.marks.append(mark)
    mark.markWord1 = 2
    assert words(part) == [1, 1]


def test_a_list_can_be_put_into_itself():
    part = part_with_marks(1, 2)
    part.marks.extend(part.marks)
    part.marks.append(part.marks[0])
    part.marks[1] = part.marks[0]
    part.marks[0] = part.marks[0]
    assert words(part) == [1, 1, 1, 2, 1]
    part.marks = part.marks
    part.marks[:] = part.marks
    part.marks[1:3] = part.marks
    assert words(part) == [1, 1, 1, 1, 2, 1, 2, 1]


# ---- views ----

def test_there_is_one_view_of_a_place():
    part = part_with_marks(1, 2)
    assert part.marks is part.marks and part.marks[1] is part.marks[-1]
    assert part.setupList is part.setupList
    assert part.marks[0] is not part.marks[1]


def test_views_keep_their_record_alive():
    marks = part_with_marks(1, 2).marks
    gc.collect()
    assert marks[1].markWord1 == 2
    mark = part_with_marks(5).marks[0]
    gc.collect()
    mark.markWord1 += 1
    assert mark.markWord1 == 6


def test_a_record_ends_with_its_last_view():
    part = part_with_marks(1)
    gone = weakref.ref(part)
    mark = part.marks[0]
    del part
    assert gone() is not None
    del mark
    assert gone() is None


def test_views_of_elements_survive_growth():
    part = part_with_marks(0)
    first = part.marks[0]
    for word in range(1, 2000):
        part.marks.add(markWord1=word)
    first.markWord1 = 77
    assert words(part)[:2] == [77, 1]


def test_views_move_with_their_elements():
    part = part_with_marks(0, 1, 2, 3)
    views = list(part.marks)
    part.marks.insert(0, MarkEntry(markWord1=9))
    del part.marks[2]
    assert [view.markWord1 for view in views] == [0, 1, 2, 3]
    views[3].markWord1 = 33
    views[1].markWord1 = 11  # removed: a record of its own
    assert words(part) == [9, 0, 2, 33]
    part.marks.reverse()
    views[3].markWord1 = 333
    assert words(part) == [333, 2, 0, 9]
    assert views[1].markWord1 == 11


def test_a_removed_element_is_a_record_of_its_own():
    part = TorvPart()
    pattern = part.patterns.add(items=[oldtorvio.PatternItem(toolNumber=5)])
    item = pattern.items[0]
    part.patterns.clear()
    assert len(part.patterns) == 0
    assert pattern.items[0] is item and item.toolNumber == 5
    item.toolNumber = 6
    assert pattern.items[0].toolNumber == 6


def test_a_replaced_element_keeps_its_value():
    part = part_with_marks(1, 2)
    old = part.marks[0]
    part.marks[0] = MarkEntry(markWord1=10)
    assert old.markWord1 == 1 and words(part) == [10, 2] and old is not part.marks[0]
    second = part.marks[1]
    part.marks = [MarkEntry(markWord1=3)]
    assert second.markWord1 == 2 and words(part) == [3]


def test_an_assigned_record_keeps_its_place():
    sheet = OldSheet()
    machine = sheet.machine
    stations = machine.stationsA.stations
    old = stations.add(stationNumber=5)
    sheet.machine = oldtorvio.OldMachine()
    assert sheet.machine is machine and len(stations) == 0
    assert old.stationNumber == 5  # of a list that is gone
    stations.add(stationNumber=6)
    assert sheet.machine.stationsA.stations[0].stationNumber == 6


def test_python_code_may_change_the_list_in_the_middle_of_an_assignment():
    part = part_with_marks(*range(100))

    class Evil:
        def __index__(self):
            part.marks.clear()
            return 5

    mark = part.marks[50]
    mark.markWord1 = Evil()
    assert mark.markWord1 == 5 and len(part.marks) == 0
    pattern = Pattern(bindThird=range(100))

    class Shrinks:
        def __index__(self):
            pattern.bindThird.clear()
            return 1

    with pytest.raises(IndexError):
        pattern.bindThird[99] = Shrinks()
    pattern.bindThird[:] = range(10)
    pattern.bindThird[2:5] = [1]
    assert len(pattern.bindThird) == 8


def test_a_list_that_shrinks_while_it_is_iterated():
    part = part_with_marks(*range(10))
    seen = []
    for mark in part.marks:
        seen.append(mark.markWord1)
        del part.marks[-1]
    assert seen == [0, 1, 2, 3, 4]


def test_the_end_of_a_view_may_run_python_code():
    part = part_with_marks(1, 2, 3)
    found = []
    mark = part.marks[1]
    watch = weakref.ref(mark, lambda _: found.append(part.marks[1]))
    del mark
    assert watch() is None and found[0].markWord1 == 2 and part.marks[1] is found[0]

    pattern = part.patterns.add(items=[oldtorvio.PatternItem(toolNumber=5)])
    item = pattern.items[0]
    items = weakref.ref(pattern.items, lambda _: part.patterns.clear())
    pattern.items = [oldtorvio.PatternItem(toolNumber=6)]  # the view of the list ends with this
    assert items() is None and len(part.patterns) == 0
    assert item.toolNumber == 5 and pattern.items[0].toolNumber == 6


def test_a_view_keeps_its_class():
    with pytest.raises(TypeError):
        Shape().__class__ = MarkEntry
    with pytest.raises(TypeError):
        Shape.type = 3
    with pytest.raises(TypeError):
        type("Other", (Shape,), {})
    with pytest.raises(TypeError):
        type("Other", (oldtorvio.Record,), {})()
    with pytest.raises(TypeError):
        Shape.type.__get__(MarkEntry())
    with pytest.raises(TypeError):
        oldtorvio.List.append(Shape().values, 1)


# ---- records as values ----

def test_records_are_equal_if_all_their_members_are():
    assert Shape() == Shape() and Shape(x=1) != Shape()
    assert Shape(x=math.nan) == Shape(x=math.nan)
    assert Shape(x=0.0) != Shape(x=-0.0)
    assert Shape() != MarkEntry() and Shape() != 3
    part = part_with_marks(1)
    assert part.marks == [MarkEntry(markWord1=1)] and part.marks == part_with_marks(1).marks
    assert part.marks != part_with_marks(2).marks
    with pytest.raises(TypeError):
        hash(part)
    with pytest.raises(TypeError):
        part < part


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, lambda one: pickle.loads(pickle.dumps(one))])
def test_copies_are_equal_and_independent(duplicate):
    part = part_with_marks(1, 2)
    part.processSlots[9].slotWord1 = 4
    part.patterns.add(bindFirst=[(1, 2)], items=[oldtorvio.PatternItem()])
    oldtorvio.set_raw(part, "partName", bytes(range(1, 128)) + b"\0" + bytes(range(128, 256)))
    shapes = part.shapes.shapes
    shapes.add(x=math.nan)
    other = duplicate(part)
    assert other == part and other is not part
    other.marks[0].markWord1 = 5
    assert words(part) == [1, 2] and other != part
    element = duplicate(part.marks[1])
    part.marks[1].markWord1 = 8
    assert element.markWord1 == 2
    assert duplicate(shapes) == shapes or duplicate is copy.copy
    assert duplicate(part.marks[0]) == part.marks[0]


def test_copies_of_lists_are_python_lists():
    part = part_with_marks(1, 2)
    assert copy.copy(part.marks) == [part.marks[0], part.marks[1]]
    deep = copy.deepcopy(part.marks)
    assert type(deep) is list and deep[0] == part.marks[0] and deep[0] is not part.marks[0]
    assert type(pickle.loads(pickle.dumps(part.marks))) is list


@pytest.mark.parametrize("change", [lambda data: data[:-1], lambda data: data + b"x", lambda data: b"",
                                    lambda data: bytes(8) + data[8:], lambda data: data[:40] + b"\xff" * 200])
def test_damaged_pickles_are_refused(change):
    part = part_with_marks(1, 2, 3)
    _, (name, data) = part.__reduce__()
    with pytest.raises((ValueError, MemoryError)):
        oldtorvio._core._restore(name, change(data))
    with pytest.raises(ValueError, match="no record"):
        oldtorvio._core._restore("Nothing", data)


def test_no_damaged_pickle_does_harm():
    part = part_with_marks(1)
    part.patterns.add(bindFirst=[(1, 2)])
    _, (name, data) = part.__reduce__()
    for at in range(8, len(data), 7):
        try:
            oldtorvio._core._restore(name, data[:at] + b"\xff" * 8 + data[at + 8:])
        except ValueError:
            pass
        with pytest.raises(ValueError):
            oldtorvio._core._restore(name, data[:at])


def test_repr_shows_what_is_not_as_in_a_new_record():
    assert repr(Shape()) == "Shape()"
    assert repr(Shape(type=3, x=1.5)) == "Shape(type=3, x=1.5)"
    part = part_with_marks(1, 2)
    part.partName = b"BRACKET\n\x1b[31m"
    text = repr(part)
    assert text == r"TorvPart(partName=b'BRACKET\n\x1b[31m', marks=[2 MarkEntry])"
    assert repr(part.marks) == "List([MarkEntry(markWord1=1), MarkEntry(markWord1=2)])"
    assert repr(Shape().values) == "Array([0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0])"
    many = part_with_marks(*range(1, 101))
    assert repr(many.marks).endswith("MarkEntry(markWord1=4), ... 100 in all])")
    every = Shape(**{field.name: 1 for field in oldtorvio.fields(Shape) if field.form[0].startswith(("int", "uint"))})
    assert "more)" in repr(every)


def test_as_dict():
    plain = oldtorvio.as_dict(part_with_marks(4))
    assert plain["marks"] == [{"markWord1": 4, "markShort": 0, "markWord2": 0, "markWord3": 0}]
    assert plain["partName"] == b"NEW PART" and len(plain["processSlots"]) == 250
    with pytest.raises(TypeError):
        oldtorvio.as_dict(3)
