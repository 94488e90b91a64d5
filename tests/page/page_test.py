#!/usr/bin/env python3
"""Tests the farm's page for administrators in a headless Chromium, through chromedriver (Debian: chromium-driver).

page_test.py [--pictures FOLDER] [PROGRAM]: starts the farm PROGRAM on a folder of its own.
"""
import argparse
import base64
import json
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

# The contrast of each text with what it stands on; AA demands 4.5.
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
    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.start = [program, "--data", folder, "--bind", "127.0.0.1", "--job-types", self.job_types()]
        self.process = subprocess.Popen(self.start, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
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
            for scheme in ("light", "dark"):
                browser = Browser(scheme)
                try:
                    test(browser, farm, options.pictures, scheme)
                finally:
                    browser.close()
                print(f"the page works ({scheme})")
        finally:
            farm.close()


if __name__ == "__main__":
    sys.exit(main())
