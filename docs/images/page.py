#!/usr/bin/env python3
"""Takes a picture of the farm's page for administrators while a demo farm renders.

page.py PICTURE [PROGRAM]: needs Debian's chromium-driver and povray.
"""
import pathlib
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/page"))

import page_test  # noqa: E402


class DemoFarm(page_test.Farm):
    def job_types(self):
        return str(ROOT / "farm/job_types.json")


def main():
    program = sys.argv[2] if len(sys.argv) > 2 else str(ROOT / "build/release/bin/quillstar-farmd")
    with tempfile.TemporaryDirectory() as folder:
        farm = DemoFarm(program, folder)
        browser = page_test.Browser("light")
        try:
            farm.change("UPDATE accounts SET administrator = 1 WHERE name = 'demo'")
            browser.open(farm.url + "/")
            page_test.sign_in(browser, "demo")
            browser.wait("a frame in work", lambda: " %" in browser.text("#working"))
            browser.picture(pathlib.Path(sys.argv[1]))
        finally:
            browser.close()
            farm.close()


if __name__ == "__main__":
    sys.exit(main())
