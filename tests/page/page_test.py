#!/usr/bin/env python3
"""Tests the farm's page for administrators in a headless Chromium, through chromedriver (Debian: chromium-driver).

page_test.py [--pictures FOLDER] [PROGRAM]: starts the farm PROGRAM on a folder of its own.
"""
import argparse
import base64
import json
import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import time
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PATIENCE = 60  # s
HOSTILE = "<img src=x onerror=document.title='hit'>"
KEYS = {"tab": "\ue004", "enter": "\ue007", "escape": "\ue00c"}

# The contrast of each text with its background; AA demands 4.5.
CONTRAST = """
const parse = (color) => color.match(/[\\d.]+/g).map(Number);
const light = (color) => parse(color).slice(0, 3).map((part) => part / 255)
  .map((part) => part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)
  .reduce((sum, part, index) => sum + part * [0.2126, 0.7152, 0.0722][index], 0);
const ground = (element) => {
  for (; element; element = element.parentElement) {
    const color = getComputedStyle(element).backgroundColor;
    if ((parse(color)[3] ?? 1) > 0)
      return color;
  }
  return "rgb(255, 255, 255)";
};
const poor = [];
for (const element of document.querySelectorAll("h1, h2, p, th, td, label, button, pre, input")) {
  if (!element.checkVisibility() || !(element.textContent || element.value))
    continue;
  const [one, other] = [light(getComputedStyle(element).color), light(ground(element))].sort((a, b) => b - a);
  const contrast = (one + 0.05) / (other + 0.05);
  if (contrast < 4.5)
    poor.push(element.outerHTML.slice(0, 80) + " " + contrast.toFixed(2));
}
return poor;
"""


class Browser:
    def __init__(self, scheme):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            if "successfully on port" in line:
                self.root = "http://127.0.0.1:" + line.rsplit("port ", 1)[1].strip(" .\n")
                break
        options = ["--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1280,1000",
                   "--disable-dev-shm-usage"]
        if scheme == "dark":
            options += ["--force-dark-mode", "--blink-settings=preferredColorScheme=0"]
        session = self.ask("POST", "/session", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": {"args": options}, "goog:loggingPrefs": {"browser": "ALL"}}}})
        self.root += "/session/" + session["sessionId"]

    def ask(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.root + path, data, {"Content-Type": "application/json"}, method=method)
        with urllib.request.urlopen(request, timeout=PATIENCE) as answer:
            return json.load(answer)["value"]

    def open(self, url):
        self.ask("POST", "/url", {"url": url})

    def run(self, script):
        return self.ask("POST", "/execute/sync", {"script": script, "args": []})

    def text(self, selector):
        return self.run(f"return document.querySelector({json.dumps(selector)}).innerText")

    def focus(self):
        return self.run("return document.activeElement.id || document.activeElement.getAttribute('aria-label')")

    def type(self, *texts):
        actions = []
        for text in texts:
            for character in [KEYS[text]] if text in KEYS else text:
                actions += [{"type": "keyDown", "value": character}, {"type": "keyUp", "value": character}]
        self.ask("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def wait(self, what, condition):
        end = time.time() + PATIENCE
        while not condition():
            check(time.time() < end, f"in time: {what}; the page says: " + self.text("body"))
            time.sleep(0.1)

    def complaints(self):
        """What the console says, but for the refusals that the test asks for."""
        entries = self.ask("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in entries if "status of 40" not in entry["message"]]

    def picture(self, file):
        file.write_bytes(base64.b64decode(self.ask("GET", "/screenshot")))

    def close(self):
        self.ask("DELETE", "")
        self.driver.terminate()
        self.driver.wait()


class Farm:
    def __init__(self, program, folder, options=()):
        self.folder = folder
        start = [program, "--data", folder, "--bind", "127.0.0.1", "--job-types", self.job_types(), *options]
        environment = os.environ | {"PATH": folder + os.pathsep + os.environ["PATH"]}
        self.process = subprocess.Popen(start, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                        env=environment)
        self.url = self.process.stdout.readline().split()[-1]

    def job_types(self):
        # Frames take longer than the test.
        script = "echo step 1 of 4; sleep 3600"
        file = pathlib.Path(self.folder) / "types.json"
        file.write_text(json.dumps({"povray": {"program": "/bin/sh", "arguments": ["-c", script], "suffix": "png",
                                         "progress": "step ([0-9]+) of ([0-9]+)"}}))
        return str(file)

    def change(self, sql, *values):
        connection = sqlite3.connect(pathlib.Path(self.folder) / "farm.sqlite", timeout=30)
        with connection:
            connection.execute(sql, values)
        connection.close()

    def plant_failure(self):
        """Gives a finished job a failed frame, all of whose texts are hostile."""
        self.change("UPDATE jobs SET status = 7, message = ?, name = ?, ended_at = 2000000000 WHERE key = 3",
                    HOSTILE, HOSTILE)
        self.change("UPDATE frames SET finished_at = NULL, failures = 3, retry_at = 9223372036854775807 "
                    "WHERE job = 3 AND number = 1")
        self.change("UPDATE jobs SET id = 'hostile' WHERE key = 3")
        logs = pathlib.Path(self.folder) / "jobs" / "hostile" / "logs"
        logs.mkdir(parents=True)
        (logs / "frame_0001.txt").write_text(HOSTILE + "\n" * 3 + "the last line")

    def close(self):
        self.process.terminate()
        self.process.wait()


class Cluster:
    """Stands in for the commands of a cluster, which renders nothing and prints what it is told about its nodes."""

    def __init__(self, folder):
        self.commands = pathlib.Path(folder)
        for name in ("sbatch", "squeue", "scancel", "scontrol", "sinfo"):
            self.write(name, "exit 1")

    def write(self, name, script):
        file = self.commands / (name + ".new")
        file.write_text("#!/bin/sh\n" + script + "\n")
        file.chmod(0o755)
        file.rename(self.commands / name)

    def describe(self, *nodes):
        self.write("sinfo", "cat <<'END'\n" + "\n".join(nodes) + "\nEND")

    def fail(self, error):
        self.write("sinfo", f"echo '{error}' >&2; exit 1")


def check(is_right, what):
    if not is_right:
        raise AssertionError(what)


def sign_in(browser, name):
    browser.wait("the form", lambda: browser.focus() == "name")
    browser.type(name, "tab", name, "enter")


def test(browser, farm, pictures, scheme):
    browser.open(farm.url + "/")
    check(not browser.run(CONTRAST), "enough contrast: " + str(browser.run(CONTRAST)))
    sign_in(browser, "studio")
    browser.wait("the refusal of other accounts", lambda: "not an administrator" in browser.text("#refusal"))
    sign_in(browser, "demo")
    browser.wait("the overview", lambda: "demo" in browser.text("#queues"))
    browser.wait("the failure", lambda: "onerror" in browser.text("#failures"))
    check(browser.run("return document.title") == "QuillStar farm", "texts are no markup")
    browser.wait("the progress of a frame", lambda: "25 %" in browser.text("#working"))
    check("Reason" not in browser.text("#nodes"), "one machine has no states")
    check("are free" in browser.text("#disk-text"), "the disk")
    check(not browser.run(CONTRAST), "enough contrast: " + str(browser.run(CONTRAST)))
    if pictures:
        browser.picture(pictures / f"page-{scheme}.png")

    # The first tabs lead to the buttons; the focus stays where it is when the page is refreshed.
    for _ in range(10):
        browser.type("tab")
        if "Show the log" in (browser.focus() or ""):
            break
    focused = browser.focus()
    check("Show the log" in focused, "the log can be reached by keys, not " + str(focused))
    before = browser.text("#state")
    browser.wait("the next refresh", lambda: browser.text("#state") != before)
    check(browser.focus() == focused, "the focus stays")
    browser.type("enter")
    browser.wait("the log", lambda: browser.run("return document.querySelector('#log').open")
                 and "Loading" not in browser.text("#log-text"))
    check(HOSTILE in browser.text("#log-text") and "the last line" in browser.text("#log-text"), "the whole log")
    if pictures:
        browser.picture(pictures / f"page-log-{scheme}.png")
    browser.type("escape")
    check(not browser.run("return document.querySelector('#log').open"), "Escape closes the log")
    check(browser.focus() == focused, "the focus returns")

    farm.change("UPDATE accounts SET name = 'renamed' WHERE name = 'studio'")
    browser.wait("a change", lambda: "renamed" in browser.text("#queues"))
    farm.change("UPDATE accounts SET name = 'studio' WHERE name = 'renamed'")
    browser.run("document.querySelector('#sign-out').focus()")
    browser.type("enter")
    browser.wait("the form", lambda: browser.focus() == "name")
    check("demo" not in browser.text("body"), "nothing is left after signing out")
    check(not browser.complaints(), "no complaints: " + str(browser.complaints()))


def test_nodes(browser, farm, cluster, pictures, scheme):
    cluster.describe("n1|main*|mixed|none", "n2|main*|down*|fan " + HOSTILE, "n3|other|idle|none")
    browser.open(farm.url + "/")
    sign_in(browser, "demo")
    browser.wait("the nodes", lambda: "n2" in browser.text("#nodes"))
    nodes = browser.text("#nodes tbody").splitlines()
    check(nodes[0].split("\t")[:4] == ["n2", "0", "down, not responding", "fan " + HOSTILE], str(nodes))
    check(nodes[1].split("\t")[:3] == ["n1", "0", "partly allocated"], str(nodes))
    check(len(nodes) == 2, "only nodes that the farm uses")
    check(": 1 down, 1 partly allocated." in browser.text("#nodes-text"), browser.text("#nodes-text"))
    check(browser.run("return document.title") == "QuillStar farm", "texts are no markup")
    with urllib.request.urlopen(farm.url + "/metrics", timeout=PATIENCE) as figures:
        check(b'\nquillstar_nodes{state="partly allocated"} 1\n' in figures.read(), "the figures of the nodes")
    if pictures:
        browser.run("document.querySelector('#nodes').scrollIntoView()")
        browser.picture(pictures / f"page-nodes-{scheme}.png")
    cluster.fail("Unable to contact slurm controller")
    browser.wait("the fault", lambda: "slurmctld) does not answer" in browser.text("#nodes-text"))
    check("n2" in browser.text("#nodes") and "As of" in browser.text("#nodes-text"), "the last known states stay")
    check(not browser.run(CONTRAST), "enough contrast: " + str(browser.run(CONTRAST)))
    check(not browser.complaints(), "no complaints: " + str(browser.complaints()))


def in_both_schemes(test):
    for scheme in ("light", "dark"):
        browser = Browser(scheme)
        try:
            test(browser, scheme)
        finally:
            browser.close()
        print(f"the page works ({scheme})")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("program", nargs="?", default=str(ROOT / "build/release/bin/quillstar-farmd"))
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        farm = Farm(options.program, folder)
        try:
            farm.change("UPDATE accounts SET administrator = 1 WHERE name = 'demo'")
            farm.plant_failure()
            in_both_schemes(lambda browser, scheme: test(browser, farm, options.pictures, scheme))
        finally:
            farm.close()
    with tempfile.TemporaryDirectory() as folder:
        cluster = Cluster(folder)
        farm = Farm(options.program, folder, ["--executor", "slurm", "--slurm-interval", "1"])
        try:
            farm.change("UPDATE accounts SET administrator = 1 WHERE name = 'demo'")
            in_both_schemes(lambda browser, scheme: test_nodes(browser, farm, cluster, options.pictures, scheme))
        finally:
            farm.close()


if __name__ == "__main__":
    sys.exit(main())
