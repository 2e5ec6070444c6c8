"""Files are read and written without the GIL, and no thread changes a record in the middle of a save."""
import threading
import time

import pytest

import oldtorvio
from oldtorvio import MarkEntry, TorvPart


@pytest.fixture(scope="module")
def large():
    """A part of some 30 MB."""
    part = TorvPart()
    part.patterns.add()
    part.marks = [MarkEntry(markWord1=word) for word in range(1000)]
    for _ in range(11):
        part.marks.extend(part.marks)
    return part


def test_other_threads_run_during_a_load(large):
    data = oldtorvio.dumps(large, 180)
    assert len(data) > 20_000_000
    done = threading.Event()
    loaded = []

    def load():
        loaded.append(oldtorvio.loads(data, "part"))
        done.set()

    started = time.monotonic()
    thread = threading.Thread(target=load)
    thread.start()
    longest, last, turns = 0.0, time.monotonic(), 0
    while not done.is_set():
        time.sleep(0.0005)
        now = time.monotonic()
        longest, last, turns = max(longest, now - last), now, turns + 1
    thread.join()
    # A load that kept the GIL would be one long pause.
    assert turns > 3 and longest < 0.9 * (time.monotonic() - started)
    loaded[0].version = large.version
    assert loaded[0] == large


def test_a_record_does_not_change_while_it_is_saved(large):
    before = large.marks[0].markWord1
    results = []
    stop = threading.Event()

    def save():
        while not stop.is_set():
            results.append(oldtorvio.dumps(large, 180))

    thread = threading.Thread(target=save)
    thread.start()
    mark = large.marks[0]
    for turn in range(30):
        # Each save has both changes or none.
        large.marks[-1].markWord1 = mark.markWord1 = turn
        large.marks.add(markWord1=turn)
        assert large.marks.pop().markWord1 == turn
        if len(results) > 8:
            break
    stop.set()
    thread.join()
    assert results
    for data in results[:5]:
        assert len(oldtorvio.loads(data, "part").marks) >= 2_048_000
    mark.markWord1 = before


def test_two_threads_save_one_record(large):
    saved = []
    threads = [threading.Thread(target=lambda: saved.append(oldtorvio.dumps(large, 180))) for _ in range(3)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(saved) == 3 and len(set(saved)) == 1


def test_questions_at_the_same_time(shop):
    from oldtorvio import questions
    wanted = questions.LoadOldMachineInformation(shop / "archive/machines/punch.mch")
    tool = questions.OpenSpecialToolFile(shop / "archive/tools/Corner Punch.spt")
    failed = []

    def ask():
        for _ in range(50):
            if questions.LoadOldMachineInformation(shop / "archive/machines/punch.mch") != wanted:
                failed.append("machine")
            if questions.OpenSpecialToolFile(shop / "archive/tools/Corner Punch.spt") != tool:
                failed.append("tool")
    threads = [threading.Thread(target=ask) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failed
