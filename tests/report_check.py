#!/usr/bin/python3
"""Opens a patient's report in headless Chromium, as a person would: no message on the console, the right
numbers of entries and images, the newest entry first, and a click that enlarges.

Usage: report_check.py OXCLASS FOLDER, the folder with the 18 films of TEST-FMX18
"""
import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.chrome.service import Service

OXCLASS, FILMS = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
PATIENT = "TEST-FMX18"


def oxclass(*arguments):
    done = subprocess.run([OXCLASS, "--json", *arguments], check=True, capture_output=True, text=True)
    return json.loads(done.stdout) if done.stdout.startswith(("{", "[")) else done.stdout


def browser(profile):
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update", "--disable-sync",
                     "--window-size=1200,900", f"--user-data-dir={profile}"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        place = Path(folder.name)
        os.environ["OXCLASS_DB"] = str(place / "clinic.db")
        oxclass("init", os.environ["OXCLASS_DB"], "--root", str(place / "images"))
        oxclass("import", str(FILMS))
        series = oxclass("series", "--patient", PATIENT)[0]["series"]
        oxclass("series", "save-as-card", str(series), "--name", "<b>Whole & \"mouth\"</b>")
        card = oxclass("card", "new", PATIENT, "Two films")["card"]
        oxclass("card", "add", card, "1", "2")
        oxclass("report", PATIENT, "-o", str(place / "report.html"))
        cls.entries = oxclass("cards", PATIENT)["entries"]
        cls.driver = browser(place / "profile")
        cls.addClassCleanup(cls.driver.quit)
        cls.driver.get((place / "report.html").as_uri())

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def test_lists_every_entry_newest_first(self):
        self.assertEqual([entry["key"] for entry in self.entries], [e.get_attribute("id") for e in self.all("article")])
        self.assertEqual([entry["name"] for entry in self.entries], [e.text for e in self.all("article h2")])

    def test_shows_every_image_as_a_picture_and_as_a_row(self):
        for entry in self.entries:
            self.assertEqual(entry["images"], len(self.all(f"#{entry['key']} svg image")))
            self.assertEqual(entry["images"], len(self.all(f"#{entry['key']} tr.image")))
        self.assertEqual(38, len(self.all("svg image")))

    def test_every_picture_is_a_picture_that_the_browser_can_decode(self):
        sizes = self.driver.execute_async_script("""
            const done = arguments[0];
            Promise.all([...document.querySelectorAll('svg image')].map(element => {
                const picture = new Image();
                picture.src = element.getAttribute('href');
                return picture.decode().then(() => picture.naturalWidth);
            })).then(done, failure => done(String(failure)));""")
        self.assertEqual(38, len(sizes))
        self.assertTrue(all(size > 100 for size in sizes), sizes)

    def test_tells_teeth_and_exposure_of_each_image(self):
        rows = [row.text for row in self.all("#" + self.entries[-1]["key"] + " tr.image")]
        for image in oxclass("images", "--patient", PATIENT):
            exposure = f"{image['kv']} kV, {image['ma']} mA, {image['ms']} ms"
            self.assertTrue(any(exposure in row and row.startswith(f"{image['frame']} ") for row in rows), image)

    def test_a_click_enlarges_and_escape_closes(self):
        button = self.all("button.enlarge")[0]
        small = button.find_element(By.TAG_NAME, "svg").rect["width"]
        button.click()
        large = self.all("dialog[open] svg")[0].rect["width"]
        self.assertGreater(large, small * 1.2)
        self.driver.switch_to.active_element.send_keys(Keys.ESCAPE)
        self.assertEqual([], self.all("dialog[open]"))

    def test_the_keyboard_alone_enlarges(self):
        self.all("button.enlarge")[0].send_keys(Keys.ENTER)
        self.assertEqual(1, len(self.all("dialog[open] svg")))
        self.driver.switch_to.active_element.send_keys(Keys.ENTER)
        self.assertEqual([], self.all("dialog[open]"))

    def test_a_screen_reader_finds_a_name_on_every_button_and_drawing(self):
        for element in self.all("button.enlarge, svg[role=img]"):
            self.assertTrue(element.get_attribute("aria-label").strip())
        self.assertEqual("en", self.driver.find_element(By.TAG_NAME, "html").get_attribute("lang"))
        self.assertEqual(1, len(self.all("h1")))

    def test_asks_for_nothing_from_outside(self):
        asked = self.driver.execute_script("return performance.getEntriesByType('resource').map(e => e.name)")
        self.assertEqual([], [name for name in asked if not name.startswith("data:")])

    @classmethod
    def tearDownClass(cls):
        messages = cls.driver.get_log("browser")
        assert messages == [], messages


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
