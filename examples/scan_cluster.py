"""Makes a catalogue of an archive with the workers of a Dask cluster: scan_cluster.py SCHEDULER ARCHIVE CATALOGUE"""
import sys

from distributed import Client

from oldtorvio import archive

scheduler, folder, catalogue = sys.argv[1:]


def show(so_far: archive.Summary) -> None:
    print(f"\r{so_far.files} files", end="", file=sys.stderr)


with Client(scheduler) as client:
    totals = archive.scan(folder, client, out=catalogue, ext={".nst": "sheet"}, progress=show)
print(file=sys.stderr)
for verdict, files in sorted(totals.verdicts.items()):
    print(f"{files:8} {verdict}")
