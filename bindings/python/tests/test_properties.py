"""Lists behave as Python lists of the same elements, whatever is done to them, and views stay with their elements."""
import copy
import math
import pickle

from hypothesis import given, settings, strategies as st
from hypothesis.stateful import RuleBasedStateMachine, initialize, invariant, rule

import oldtorvio
from oldtorvio import MarkEntry, Pattern, Shape, TorvPart

numbers = st.integers(0, 2**32 - 1)
indices = st.integers(-8, 8)
slices = st.builds(slice, st.none() | indices, st.none() | indices, st.none() | st.sampled_from([-3, -1, 1, 2]))


class ListOfRecords(RuleBasedStateMachine):
    """The model is a list of cells [word]; views are compared with the cell of their element."""

    @initialize()
    def begin(self):
        self.part = TorvPart()
        self.model = []
        self.views = []

    @staticmethod
    def mark(word):
        return MarkEntry(markWord1=word)

    def both(self, change):
        """The same change to both, with the same kind of exception."""
        outcomes = []
        for target, make in ((self.part.marks, self.mark), (self.model, lambda word: [word])):
            try:
                change(target, make)
                outcomes.append(None)
            except (IndexError, ValueError) as error:
                outcomes.append(type(error))
        assert outcomes[0] == outcomes[1]

    @rule(word=numbers)
    def append(self, word):
        self.both(lambda target, make: target.append(make(word)))

    @rule(at=indices, word=numbers)
    def insert(self, at, word):
        self.both(lambda target, make: target.insert(at, make(word)))

    @rule(words=st.lists(numbers, max_size=5))
    def extend(self, words):
        self.both(lambda target, make: target.extend([make(word) for word in words]))

    @rule(at=indices)
    def delete(self, at):
        self.both(lambda target, make: target.__delitem__(at))

    @rule(where=slices)
    def delete_slice(self, where):
        self.both(lambda target, make: target.__delitem__(where))

    @rule(at=indices, word=numbers)
    def replace(self, at, word):
        self.both(lambda target, make: target.__setitem__(at, make(word)))

    @rule(where=slices, words=st.lists(numbers, max_size=5))
    def replace_slice(self, where, words):
        self.both(lambda target, make: target.__setitem__(where, [make(word) for word in words]))

    @rule(at=indices)
    def pop(self, at):
        self.both(lambda target, make: target.pop(at))

    @rule()
    def reverse(self):
        self.both(lambda target, make: target.reverse())

    @rule(words=st.lists(numbers, max_size=5))
    def assign(self, words):
        self.part.marks = [self.mark(word) for word in words]
        self.model = [[word] for word in words]

    @rule(at=indices)
    def view(self, at):
        if -len(self.model) <= at < len(self.model):
            self.views.append((self.part.marks[at], self.model[at]))

    @rule(which=st.integers(0, 50), word=numbers)
    def change_view(self, which, word):
        if self.views:
            view, cell = self.views[which % len(self.views)]
            view.markWord1 = cell[0] = word

    @rule(which=st.integers(0, 50))
    def forget_view(self, which):
        if self.views:
            del self.views[which % len(self.views)]

    @invariant()
    def is_the_model(self):
        assert [mark.markWord1 for mark in self.part.marks] == [cell[0] for cell in self.model]
        for view, cell in self.views:
            assert view.markWord1 == cell[0]
        for i, cell in enumerate(self.model):
            for view, other in self.views:
                assert (self.part.marks[i] is view) == (cell is other)


ListOfRecords.TestCase.settings = settings(max_examples=150, stateful_step_count=40, deadline=None)
TestListOfRecords = ListOfRecords.TestCase


@given(st.lists(numbers), slices, st.lists(numbers, max_size=6))
def test_lists_of_numbers_are_sliced_as_lists(words, where, values):
    pattern = Pattern(bindThird=words)
    assert pattern.bindThird[where] == words[where]
    outcomes = []
    for target in (pattern.bindThird, words):
        try:
            target[where] = values
            outcomes.append(None)
        except ValueError:
            outcomes.append(ValueError)
    assert outcomes[0] == outcomes[1] and list(pattern.bindThird) == words


reals = st.floats(width=32)


@given(st.integers(-128, 127), numbers, reals, st.lists(reals, min_size=9, max_size=9), st.binary(max_size=64))
def test_records_return_what_they_were_given(kind, flags, x, values, note):
    shape = Shape(type=kind, flags=flags, x=x, values=values, note=note)
    assert (shape.type, shape.flags, shape.note) == (kind, flags, note)
    for found, given_value in zip([shape.x, *shape.values], [x, *values]):
        assert found == given_value or (math.isnan(found) and math.isnan(given_value))
    for other in (copy.deepcopy(shape), pickle.loads(pickle.dumps(shape))):
        assert other == shape
    part = TorvPart(shapes=oldtorvio.ShapeList(shapes=[shape]))
    assert part.shapes.shapes[0] == shape


@given(st.binary(max_size=256))
def test_fixed_texts(text):
    part = TorvPart()
    if b"\0" not in text:
        part.partName = text
        assert part.partName == text
    oldtorvio.set_raw(part, "partName", text.ljust(256, b"\xff"))
    assert part.partName == text.ljust(256, b"\xff").split(b"\0")[0]
    assert oldtorvio.encode(oldtorvio.text(part, "partName")) == part.partName


@settings(deadline=None, max_examples=60)
@given(st.lists(st.tuples(st.integers(0, 6), reals), max_size=5), st.lists(numbers, max_size=9))
def test_parts_survive_a_file(shapes, words):
    part = TorvPart(marks=[MarkEntry(markWord1=word) for word in words],
                    patterns=[Pattern()],
                    shapes=oldtorvio.ShapeList(shapes=[Shape(type=kind, x=x) for kind, x in shapes]))
    again = oldtorvio.loads(oldtorvio.dumps(part, 180), "part")
    assert [(shape.type, repr(shape.x)) for shape in again.shapes.shapes] == [(kind, repr(x)) for kind, x in shapes]
    assert [mark.markWord1 for mark in again.marks] == words


@settings(deadline=None)
@given(st.binary(max_size=400), st.sampled_from([kind["name"] for kind in oldtorvio.supported()["kinds"]]),
       st.sampled_from([2, 52, 54, 60, 80, 112, 152, 180]))
def test_no_bytes_do_harm(data, kind, version):
    data = version.to_bytes(2, "little") + data
    try:
        record = oldtorvio.loads(data, kind)
    except oldtorvio.Error as error:
        assert error.status in (1, -1)
        record = error.record
    repr(record)
    assert copy.copy(record) == record
    oldtorvio.check(data, kind)
