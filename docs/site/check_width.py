#!/usr/bin/env python3
"""Measures the pages of a static site in chromium: check_width.py FOLDER

No page is wider than the window of a phone. Without chromium the check is skipped.
"""

import functools
import http.server
import json
import pathlib
import re
import shutil
import subprocess
import sys
import threading

MISSING = 77  # what ctest takes for a skipped test
WIDTHS = (390,)
HARNESS = """<!DOCTYPE html><body><script>
const pages = %s, widths = %s, found = [];
const frame = document.body.appendChild(document.createElement("iframe"));
frame.style.height = "800px";
async function measure() {
  for (const width of widths) for (const page of pages) {
    frame.style.width = width + "px";
    frame.style.border = 0;
    const loaded = new Promise(done => frame.onload = done);
    frame.src = page;
    await loaded;
    const wide = frame.contentDocument.documentElement.scrollWidth;
    found.push([page, width, wide]);
  }
  const result = document.createElement("pre");
  result.textContent = "RESULT" + JSON.stringify(found) + "END";
  document.body.append(result);
  frame.remove();
}
measure();
</script>"""


class Handler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *arguments):
        pass


def measured(browser, root, pages):
    harness = root / "measure-width.html"
    harness.write_text(HARNESS % (json.dumps(pages), json.dumps(WIDTHS)))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=str(root)))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        shown = subprocess.run(
            [browser, "--headless", "--no-sandbox", "--disable-gpu", "--window-size=1400,1000",
             "--virtual-time-budget=600000", "--dump-dom",
             f"http://127.0.0.1:{server.server_port}/{harness.name}"],
            capture_output=True, text=True, timeout=280, check=True).stdout
    finally:
        server.shutdown()
        harness.unlink()
    result = re.search(r"<pre>RESULT(.*?)END</pre>", shown, re.DOTALL)
    if not result:
        sys.exit("chromium measured nothing")
    return json.loads(result[1].replace("&amp;", "&"))


def main():
    root = pathlib.Path(sys.argv[1])
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    if not browser:
        print("skipped: the browser chromium is missing")
        return MISSING
    # Doxygen also makes parts of pages, which no reader opens.
    pages = [str(page.relative_to(root)) for page in sorted(root.rglob("*.html")) if "search/" not in str(page)]
    found = measured(browser, root, pages)
    faults = [f"{page}: {wide} pixels wide in a window of {width}" for page, width, wide in found if wide > width]
    if len(found) != len(WIDTHS) * len(pages):
        faults.append(f"{len(found)} of {len(WIDTHS) * len(pages)} pages were measured")
    print("\n".join(faults) or f"{len(pages)} pages fit {WIDTHS[0]} pixels")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
