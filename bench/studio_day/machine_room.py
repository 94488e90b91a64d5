"""The programs of the day: the farm, the cluster, and what kills them."""
import json
import os
import pathlib
import random
import signal
import socket
import subprocess
import threading
import time

PATIENCE = 60  # s


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Cluster:
    """A Slurm cluster of a controller and the nodes n1 and n2 on this machine."""

    def __init__(self, script, folder):
        self.configuration = folder / "slurm.conf"
        self.program = subprocess.Popen([script, folder], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        answer = self.program.stdout.readline().strip()
        if answer != "ready":
            raise SystemExit(answer)

    def order(self, verb, name):
        self.program.stdin.write(f"{verb} {name}\n")
        self.program.stdin.flush()
        self.program.stdout.readline()

    def stop(self):
        self.program.stdin.close()
        self.program.wait()


class Farm:
    def __init__(self, programs, folder, job_types, slots, cluster):
        self.program = programs / "quillstar-farmd"
        self.data = folder / "data" / "farm"
        self.data.mkdir(parents=True)
        self.log = open(folder / "farm.log", "wb")
        self.port = free_port()
        types = folder / "job_types.json"
        types.write_text(json.dumps(job_types))
        self.options = ["--no-demo", "--port", str(self.port), "--job-types", types, "--log-level", "info"]
        self.environment = dict(os.environ)
        if cluster:
            self.options += ["--executor", "slurm", "--slurm-partition", "main", "--slurm-interval", "2",
                             "--slurm-file-delay", "20"]
            self.environment["SLURM_CONF"] = str(cluster.configuration)
        else:
            self.options += ["--slots", str(slots)]
        self.process = None

    def start(self):
        self.process = subprocess.Popen([self.program, "--data", self.data, *self.options], stdout=subprocess.PIPE,
                                        stderr=self.log, env=self.environment, text=True)
        line = self.process.stdout.readline()
        if not line.startswith("listening on "):
            raise RuntimeError("the farm does not start; see farm.log")

    def kill(self):
        self.process.kill()
        self.process.wait()

    def stop(self):
        self.process.terminate()
        self.process.wait(PATIENCE)

    def command(self, *words, answer=None):
        """Runs an administration command, even while the farm runs. @return its exit code and its whole output."""
        done = subprocess.run([self.program, "--data", self.data, *words], input=answer, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=PATIENCE)
        return done.returncode, done.stdout

    def demand(self, *words, answer=None):
        code, text = self.command(*words, answer=answer)
        if code:
            raise RuntimeError(f"{' '.join(words)}: {text}")
        return text

    def renderers(self):
        """@return the processes that render on this machine, and those that watch over them."""
        found = []
        for folder in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                words = (folder / "cmdline").read_bytes()
            except OSError:
                continue
            if str(self.data).encode() in words and b"quillstar-run-frame" in words:
                found.append(int(folder.name))
        children = [int(child) for parent in found for child in self._children(parent)]
        return found + children

    @staticmethod
    def _children(process):
        try:
            return pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
        except OSError:
            return []


class Killer(threading.Thread):
    """Kills the farm, renderers and nodes until the evening, and starts them again."""

    def __init__(self, farm, cluster, day):
        super().__init__(daemon=True)
        self.farm, self.cluster, self.day = farm, cluster, day
        self.random = random.Random(random.random())
        self.kills = []  # (what, when)

    def run(self):
        while not self.day.is_over.wait(self.random.uniform(5, 20)) and time.time() < self.day.evening:
            ways = [self._kill_renderer] * 6 + [self._kill_farm] * 2 + ([self._kill_machine] if self.cluster else [])
            self.random.choice(ways)()

    def _note(self, what):
        self.kills.append((what, time.time()))

    def _kill_farm(self):
        self.farm.kill()
        self._note("farm")
        self.day.is_over.wait(self.random.choice([0, 0, 1, 5]))
        self.farm.start()

    def _kill_renderer(self):
        renderers = self.farm.renderers()
        if renderers:
            try:
                os.kill(self.random.choice(renderers), signal.SIGKILL)
                self._note("renderer")
            except ProcessLookupError:
                pass

    def _kill_machine(self):
        name = self.random.choice(["n1", "n2", "controller"])
        self.cluster.order("kill", name)
        self._note(name)
        self.day.is_over.wait(self.random.uniform(1, 15))
        self.cluster.order("start", name)
