"""Accounts that work all day."""
import dataclasses
import hashlib
import http.client
import io
import json
import random
import socket
import threading
import time
import zipfile

PAGE_SIZE = 18
FINISHED, DELETED, FAILED, ARREARS = 4, 5, 7, (8, 9)
HELD = (2, FAILED, *ARREARS)
POVRAY_SCENE = "// {name}\ncamera {{location -3*z}} light_source {{9, 1}} sphere {{clock*x, 1 pigment {{rgb 1}}}}\n"
PNG_END = b"IEND\xae\x42\x60\x82"


class Day:
    """What all accounts share: the farm, the time when no more jobs are sent, and what went wrong."""

    def __init__(self, farm, evening):
        self.farm = farm
        self.evening = evening  # seconds since the epoch
        self.night = evening + 3600
        self.is_over = threading.Event()
        self.failures = []
        self.latencies = []  # of answered requests, in seconds

    def fail(self, text):
        self.failures.append(text)
        print("WRONG:", text, flush=True)


@dataclasses.dataclass
class Job:
    name: str
    type: str
    frames: list
    id: str = ""
    is_prerender: bool = False
    is_deleted: bool = False
    restarts: int = 0
    interruptions: list = dataclasses.field(default_factory=list)  # when the artist stopped, restarted or deleted it


class Client:
    """A session over HTTP that survives restarts of the farm."""

    def __init__(self, day, name):
        self.day, self.name, self.token = day, name, None

    def once(self, method, path, body=b"", headers=()):
        connection = http.client.HTTPConnection("127.0.0.1", self.day.farm.port, timeout=60)
        try:
            connection.request(method, "/api/v1" + path, body, dict(headers))
            answer = connection.getresponse()
            return answer.status, answer.read(), answer
        finally:
            connection.close()

    def ask(self, method, path, body=None, content=None):
        """@return the status and the content of the first answer that concerns the request itself."""
        data = content if content is not None else json.dumps(body or {}).encode() if method == "POST" else b""
        while time.time() < self.day.night and not self.day.failures:
            if not self.token and path != "/session":
                self._sign_in()
            try:
                start = time.monotonic()
                status, text, answer = self.once(method, path, data, {"Authorization": f"Bearer {self.token}"})
            except (OSError, http.client.HTTPException):
                self.day.is_over.wait(0.5)
                continue
            if status == 401 and path != "/session":
                self.token = None
            elif status in (429, 503):
                self.day.is_over.wait(float(answer.headers.get("Retry-After", 1)))
            else:
                self.day.latencies.append(time.monotonic() - start)
                return status, text
        raise TimeoutError(f"{method} {path}: no answer")

    def data(self, method, path, body=None):
        status, text = self.ask(method, path, body)
        if status != 200:
            raise RuntimeError(f"{method} {path}: {status} {text[:200]}")
        return json.loads(text)["data"]

    def _sign_in(self):
        status, text = self.ask("POST", "/session", {"username": self.name, "password": "secret-" + self.name})
        if status != 200:
            raise RuntimeError(f"{self.name} cannot sign in: {status}")
        self.token = json.loads(text)["data"]["token"]

    def upload(self, package, is_cut):
        """@param is_cut whether the connection breaks in the middle the first time."""
        checksum = hashlib.sha256(package).hexdigest()
        while True:
            upload = self.data("POST", "/uploads", {"checksum": checksum, "size": len(package)})
            path = "/uploads/" + upload["id"]
            if is_cut:
                is_cut = False
                self._break_off(path, package[upload["offset"]:])
                continue
            if upload["offset"] < len(package):
                status, _ = self.ask("PUT", f"{path}?offset={upload['offset']}", content=package[upload["offset"]:])
                if status != 200:
                    continue
            status, text = self.ask("POST", path + "/unpack")
            if status == 200:
                return
            if status not in (404, 409):
                raise RuntimeError(f"unpack: {status} {text}")

    def _break_off(self, path, rest):
        head = (f"PUT /api/v1{path}?offset=0 HTTP/1.1\r\nHost: farm\r\nAuthorization: Bearer {self.token}\r\n"
                f"Content-Length: {len(rest)}\r\n\r\n")
        try:
            with socket.create_connection(("127.0.0.1", self.day.farm.port), 5) as connection:
                connection.sendall(head.encode() + rest[:len(rest) // 2])
        except OSError:
            pass


class Artist(threading.Thread):
    """Sends jobs until the evening, works with them, and then waits for all their pictures."""

    def __init__(self, day, name, jobs):
        super().__init__(daemon=True, name=name)
        self.day, self.client = day, Client(day, name)
        self.random = random.Random(random.random())
        self.wanted = jobs
        self.jobs = []
        self.paid = 0.0
        day.farm.demand("account", "add", name, "--email", name + "@studio.example", answer=f"secret-{name}\n")
        self._pay(0.02 if self.random.random() < 0.1 else 1000)

    def run(self):
        try:
            self._work()
            self._wait_for_the_rest()
        except Exception as failure:  # whatever it is, it must be reported at the end
            self.day.fail(f"{self.name}: {failure!r}")

    def _pay(self, amount):
        self.day.farm.demand("pay", self.name, str(amount), "--note", "studio")
        self.paid += amount

    def _work(self):
        moments = sorted(self.random.uniform(time.time(), self.day.evening) for _ in range(self.wanted))
        while moments and not self.day.failures:
            if moments[0] <= time.time():
                moments.pop(0)
                self._submit(len(self.jobs))
            else:
                self._look_around()
                self.day.is_over.wait(min(max(moments[0] - time.time(), 0) if moments else 0, self.random.uniform(3, 9)))

    def _submit(self, number):
        name = f"{self.name}-{number}"
        is_povray = self.random.random() < 0.1
        last = 100 if self.random.random() < 0.005 else self.random.randint(1, 9)
        job = Job(name, "povray" if is_povray else "load", list(range(1, min(last, 3 if is_povray else last) + 1)))
        job.is_prerender = len(job.frames) > 3 and self.random.random() < 0.1
        loops = self.random.randint(20_000, 300_000)
        scene = (POVRAY_SCENE.format(name=name) if is_povray else f"{name} {loops}\n").encode()
        padding = self.random.randbytes(self.random.choice([10, 1000, 300_000]))
        package = io.BytesIO()
        with zipfile.ZipFile(package, "w") as archive:
            archive.writestr("scene.txt", scene)
            archive.writestr("texture.bin", padding)
        self.client.upload(package.getvalue(), self.random.random() < 0.1)
        files = [{"path": path, "checksum": hashlib.sha256(content).hexdigest()}
                 for path, content in (("scene.txt", scene), ("texture.bin", padding))]
        answer = self.client.data("POST", "/jobs", {
            "submission": name, "type": job.type, "name": name, "scene": "scene.txt", "files": files,
            "frames": [{"start": 1, "end": job.frames[-1]}], "width": 32, "height": 24, "prerender": job.is_prerender})
        job.id = answer["job_id"]
        self.jobs.append(job)

    def _look_around(self):
        records = self.client.data("GET", f"/jobs?page=1&pageSize={PAGE_SIZE}")["list"]
        self.client.data("GET", "/account")
        if any(record["job_status"] in ARREARS for record in records):
            self._pay(100)
        self._recover([record["job_id"] for record in records if record["job_status"] in HELD])
        if self.jobs and self.random.random() < 0.3:
            self._act_on(self.random.choice(self.jobs))

    def _recover(self, ids):
        if ids:
            self.client.data("POST", "/jobs/recover", {"ids": ids})

    def _act_on(self, job):
        action = self.random.choices(["stop", "priority", "delete", "restart", "frames", "files", "full-render"],
                                     [20, 10, 3, 3, 30, 30, 10])[0]
        if job.is_deleted or action == "restart" and job.restarts:
            return
        if action == "frames":
            self.client.data("GET", f"/jobs/{job.id}/frames")
        elif action == "files":
            self._download(job)
        elif action == "priority":
            self.client.data("POST", "/jobs/priority", {"ids": [job.id], "priority": self.random.randint(-5, 5)})
        elif action != "full-render" or job.is_prerender:
            job.interruptions.append(time.time())
            job.is_deleted |= action == "delete"
            # A restart whose answer is lost may be done twice.
            job.restarts += 9 if action == "restart" else 0
            self.client.data("POST", "/jobs/" + action, {"ids": [job.id]})
            job.interruptions.append(time.time())
            job.is_prerender &= action != "full-render"

    def _download(self, job):
        """@return the number of frames that were there and whole."""
        whole = 0
        for file in self.client.data("GET", f"/jobs/{job.id}/files")["list"]:
            status, content = self.client.ask("GET", f"/jobs/{job.id}/files/{file['name']}")
            if status == 404:  # restarted meanwhile
                continue
            frame = int(file["name"].split("_")[1].split(".")[0])
            is_whole = hashlib.sha256(content).hexdigest() == file["checksum"] and (
                content.endswith(PNG_END) if job.type == "povray" else content == f"{job.name} {frame}\n".encode())
            if not is_whole:
                self.day.fail(f"{job.name}: {file['name']} is not whole: {content[:80]}")
            whole += 1
        return whole

    def _wait_for_the_rest(self):
        while True:
            open_jobs = []
            for page in range(1, 1 + len(self.jobs) // PAGE_SIZE + 1):
                for record in self.client.data("GET", f"/jobs?page={page}&pageSize={PAGE_SIZE}")["list"]:
                    if record["job_status"] in ARREARS:
                        self._pay(100)
                    if record["job_status"] != FINISHED:
                        open_jobs.append(record)
            self._recover([record["job_id"] for record in open_jobs if record["job_status"] in HELD])
            if not open_jobs:
                break
            self.day.is_over.wait(self.random.uniform(5, 10))
        for job in self.jobs:
            wanted = min(3, len(job.frames)) if job.is_prerender else len(job.frames)
            if not job.is_deleted and self._download(job) != wanted:
                self.day.fail(f"{job.name}: pictures are missing")
