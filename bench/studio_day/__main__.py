"""Puts a studio's day on a farm, kills everything now and then, and checks that nothing is lost, doubled or wrong.

Fifty accounts send a thousand jobs, list, stop, recover, restart, delete and download them, while the farm, renderers
and (with --cluster) nodes are killed. The renderer keeps a journal outside the farm's data, with which frames and charges
are compared at the end. Run it by hand: python3 bench/studio_day [--minutes 60] [--cluster].
"""
import argparse
import pathlib
import random
import sys
import tempfile
import threading
import time

from artist import Artist, Day
from journal import Journal
from machine_room import Cluster, Farm, Killer
from verdict import verdict

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def read_options():
    parser = argparse.ArgumentParser(prog="studio_day", description=__doc__.splitlines()[0])
    parser.add_argument("--programs", type=pathlib.Path, default=ROOT / "build/release/bin", metavar="FOLDER")
    parser.add_argument("--minutes", type=float, default=60, help="how long jobs are sent (60)")
    parser.add_argument("--accounts", type=int, default=50, metavar="NUMBER")
    parser.add_argument("--jobs", type=int, default=1000, metavar="NUMBER")
    parser.add_argument("--slots", type=int, default=2, metavar="NUMBER", help="frames at a time (2)")
    parser.add_argument("--seed", type=int, default=1, metavar="NUMBER")
    parser.add_argument("--cluster", action="store_true", help="render on a Slurm cluster of two nodes; as root only")
    parser.add_argument("--folder", type=pathlib.Path, help="a new folder for everything, which stays")
    return parser.parse_args()


def run(options, folder):
    random.seed(options.seed)
    journal = Journal(folder / "journal")
    cluster = Cluster(ROOT / "tests/cluster/run-cluster.sh", folder / "cluster") if options.cluster else None
    farm = Farm(options.programs.resolve(), folder, journal.job_types(ROOT / "farm/job_types.json"), options.slots, cluster)
    farm.start()
    day = Day(farm, time.time() + 60 * options.minutes)
    artists = [Artist(day, f"artist{number:02}", options.jobs // options.accounts) for number in range(options.accounts)]
    killer = Killer(farm, cluster, day)
    print(f"{len(artists)} accounts begin to send {options.jobs // options.accounts} jobs each", flush=True)
    for thread in [*artists, killer]:
        thread.start()
    while any(artist.is_alive() for artist in artists) and not day.failures:
        time.sleep(60 if time.time() + 60 < day.evening else 5)
        sent = sum(len(artist.jobs) for artist in artists)
        at_work = sum(artist.is_alive() for artist in artists)
        print(f"{time.strftime('%H:%M:%S')} {sent} jobs sent, {at_work} accounts at work, {len(killer.kills)} kills", flush=True)
    day.is_over.set()
    for thread in [*artists, killer]:
        thread.join(120)
    farm.stop()
    passed = verdict(day, artists, killer, journal, farm)
    if cluster:
        cluster.stop()
    return passed


def main():
    options = read_options()
    if options.folder:
        options.folder.mkdir()
        return 0 if run(options, options.folder.resolve()) else 1
    with tempfile.TemporaryDirectory(prefix="studio-day-") as folder:
        return 0 if run(options, pathlib.Path(folder)) else 1


threading.excepthook = lambda failure: (sys.excepthook(*failure[:3]), sys.stderr.flush())
sys.exit(main())
