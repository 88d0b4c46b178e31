"""How many frames a second a page of 20 trends of 5,000 points gets, in headless Chromium.

    python3 bench/live_page.py build/gcc
"""

import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from selenium import webdriver

FILLING = 35  # seconds, until the trends have all their points
COUNTING = 10
FLAGS = (
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--window-size=1280,1600",
)  # fmt: skip


def main(build: Path) -> None:
    page = build / "python" / "zmhost" / "page"
    served = subprocess.Popen(
        [build / "bin" / "zm_live_bench", "page", page, str(FILLING + COUNTING + 20)], stdout=subprocess.PIPE, text=True
    )
    assert served.stdout is not None
    url = served.stdout.readline().strip()
    with tempfile.TemporaryDirectory() as folder:
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium") or ""
        for flag in (*FLAGS, f"--user-data-dir={folder}"):
            options.add_argument(flag)
        driver = webdriver.Chrome(options=options)
        driver.get(url)
        time.sleep(FILLING)
        frames = "return Number(document.documentElement.dataset.frames)"
        first, begin = driver.execute_script(frames), time.monotonic()
        time.sleep(COUNTING)
        count, seconds = driver.execute_script(frames) - first, time.monotonic() - begin
        trends = len(driver.find_elements("css selector", ".trend canvas"))
        driver.quit()
    served.terminate()
    served.wait()
    print(f"page       {trends} trends of 5,000 points: {count / seconds:.1f} frames a second")


if __name__ == "__main__":
    main(Path(sys.argv[1]))
