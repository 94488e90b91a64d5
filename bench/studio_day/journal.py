"""The renderer of the day, and the journal that it keeps of each attempt at a frame."""
import collections
import json
import re

# Reads the job's name and the work to do from the scene. The attempt's file is complete when it ends with a time.
SCRIPT = """read name loops < {scene}; attempt=@journal@/$name.{frame}.$$.$(date +%s%N); echo > $attempt
i=0; while [ $i -lt $loops ]; do i=$((i+1)); done
echo "$name {frame}" > {output}; times >> $attempt; date +%s.%N >> $attempt"""

Attempt = collections.namedtuple("Attempt", "end cpu")  # seconds


class Journal:
    def __init__(self, folder):
        self.folder = folder
        folder.mkdir()

    def job_types(self, installed):
        """@return the farm's job types with the day's own, which is named "load"."""
        povray = json.loads(installed.read_text())["povray"]
        load = {"program": "/bin/sh", "arguments": ["-c", SCRIPT.replace("@journal@", str(self.folder))], "suffix": "txt",
                "frame_time_limit": 600, "confined": False, "writable": [str(self.folder)], "memory_mib": 300}
        return {"povray": {**povray, "memory_mib": 300}, "load": load}

    def attempts(self):
        """@return the number of attempts that began, and the complete ones by name of the job and number of the frame."""
        complete = collections.defaultdict(list)
        begun = 0
        for file in self.folder.iterdir():
            begun += 1
            name, frame = file.name.split(".")[:2]
            lines = file.read_text().splitlines()
            if len(lines) == 4:
                minutes_and_seconds = re.findall(r"(\d+)m([\d.]+)s", lines[1] + lines[2])
                cpu = sum(60 * int(minutes) + float(seconds) for minutes, seconds in minutes_and_seconds)
                complete[name, int(frame)].append(Attempt(float(lines[3]), cpu))
        for attempts in complete.values():
            attempts.sort()
        return begun, complete
