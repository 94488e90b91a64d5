"""Compares what the farm has recorded with what the renderer and the artists have."""
import collections
import sqlite3

CLOSE = 15  # s; an attempt may be unrecorded if something was killed or stopped within this time after its end
MILLIONTHS = 1_000_000


def verdict(day, artists, killer, journal, farm):
    """Prints the table of the day. @return whether everything was right."""
    with sqlite3.connect(f"file:{farm.data}/farm.sqlite?mode=ro", uri=True) as database:
        charges = collections.defaultdict(list)
        for name, frame, core, amount, price in database.execute(
                "SELECT name, frame, core_milliseconds, amount, price FROM charges JOIN jobs ON job = jobs.key "
                "ORDER BY charges.key"):
            charges[name, frame].append(core / 1000)
            if abs(amount - core * price / 1000) > 0.5:
                day.fail(f"{name}, frame {frame}: {core} ms at {price} are charged as {amount}")
        balances = dict(database.execute("SELECT name, balance FROM accounts"))
        spent = dict(database.execute("SELECT accounts.name, sum(amount) FROM charges JOIN accounts ON account = accounts.key "
                                      "GROUP BY account"))
    jobs = {job.name: job for artist in artists for job in artist.jobs}
    begun, attempts = journal.attempts()
    _compare_frames(day, jobs, charges)
    unrecorded, error = _compare_attempts(day, jobs, charges, attempts, killer.kills)
    for artist in artists:
        if balances[artist.name] != round(MILLIONTHS * artist.paid) - spent.get(artist.name, 0):
            day.fail(f"{artist.name}: the balance is not payments less charges")
    for words in (["ledger", "--check"], ["check"]):
        code, text = farm.command(*words)
        if code:
            day.fail(f"{' '.join(words)}: {text}")
    _print_table(day, jobs, killer, sum(map(len, charges.values())), begun, sum(map(len, attempts.values())), unrecorded, error,
                 sum(spent.values()) / MILLIONTHS)
    return not day.failures


def _compare_frames(day, jobs, charges):
    for job in jobs.values():
        frames = job.frames
        if job.is_prerender:
            frames = {frames[0], frames[(len(frames) - 1) // 2], frames[-1]}
        for frame in frames:
            count = len(charges[job.name, frame])
            if count > 1 + job.restarts or count == 0 and not job.is_deleted:
                day.fail(f"{job.name}, frame {frame} is charged {count} times")


def _compare_attempts(day, jobs, charges, attempts, kills):
    """@return the number of complete attempts without a charge, and the largest difference in processor time in seconds."""
    unrecorded, largest = 0, 0
    for (name, frame), costs in charges.items():
        ends = attempts.get((name, frame), [])
        if jobs[name].type == "load" and len(ends) < len(costs):
            day.fail(f"{name}, frame {frame}: {len(costs)} charges for {len(ends)} attempts")
    for (name, frame), ends in attempts.items():
        costs = charges.get((name, frame), [])
        extra = len(ends) - len(costs)
        unrecorded += max(extra, 0)
        moments = [moment for _, moment in kills] + jobs[name].interruptions
        excused = [end for end in ends if any(-CLOSE < moment - end.end < CLOSE for moment in moments)]
        if extra > len(excused):
            day.fail(f"{name}, frame {frame}: {len(ends)} complete attempts, {len(costs)} charges, nothing killed: {ends}")
        for cost in costs:
            difference = min(abs(cost - end.cpu) for end in ends) if ends else 0
            largest = max(largest, difference)
            if difference >= 1:
                day.fail(f"{name}, frame {frame}: {cost} s are charged, {ends} were used")
    return unrecorded, largest


def _print_table(day, jobs, killer, charges, begun, complete, unrecorded, error, spent):
    latencies = sorted(day.latencies) or [0]
    killed = collections.Counter(what for what, _ in killer.kills)
    rows = [("jobs sent", len(jobs)),
            ("deleted, restarted", f"{sum(job.is_deleted for job in jobs.values())}, "
                                   f"{sum(bool(job.restarts) for job in jobs.values())}"),
            ("charges", charges),
            ("attempts of the scripted renderer", f"{begun} begun, {complete} complete"),
            ("complete but never charged", unrecorded),
            ("largest difference in processor time", f"{error:.3f} s"),
            ("sum of all charges", f"{spent:.2f}"),
            ("kills", ", ".join(f"{what} {count}" for what, count in sorted(killed.items())) or "none"),
            ("requests answered", len(latencies)),
            ("median, 99 %, slowest", ", ".join(f"{1000 * latencies[int(part * (len(latencies) - 1))]:.0f} ms"
                                                for part in (0.5, 0.99, 1))),
            ("wrong", len(day.failures))]
    for title, value in rows:
        print(f"| {title} | {value} |")
    for failure in day.failures[:50]:
        print("WRONG:", failure)
