"""Looks at a page in a browser: check_page.py PAGE [CHECK...], with the checks of page_checks.js.

The checks get into a copy of the page, whose content security policy names them beside the page's own script. What
they find is printed, and what stands on the browser's console. Without a browser the exit code is 77.
--policy checks, without a browser, that the policy names what the page has and no more.
"""
import base64
import hashlib
import html
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

BROWSERS = ["chromium", "chromium-browser", "google-chrome", "google-chrome-stable"]


def source_of(text):
    return "'sha256-%s'" % base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


def check_policy(page):
    policies = re.findall(r'<meta http-equiv="Content-Security-Policy" content="([^"]*)">', page)
    scripts = re.findall(r"<script>(.*?)</script>", page, re.DOTALL)
    styles = re.findall(r"<style>(.*?)</style>", page, re.DOTALL)
    wanted = "default-src 'none'; script-src %s; style-src %s; base-uri 'none'; form-action 'none'" % (
        " ".join(map(source_of, scripts)), " ".join(map(source_of, styles)))
    print("the policy names one script and one style" if policies == [wanted] and len(scripts) == len(styles) == 1
          else "%s is not %s" % (policies, wanted))


def with_checks(page, checks):
    with open(os.path.join(os.path.dirname(__file__), "page_checks.js"), encoding="utf-8") as file:
        script = "const wantedChecks = %s;\n%s" % (json.dumps(checks), file.read())
    page = page.replace("script-src ", "script-src %s " % source_of(script), 1)
    at = page.rindex("</body>")
    return page[:at] + "<script>" + script + "</script>" + page[at:]


def look_at(browser, page):
    with tempfile.TemporaryDirectory() as directory:
        path = os.path.join(directory, "page.html")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(page)
        options = ["--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1280,1000", "--enable-logging=stderr",
                   "--user-data-dir=" + os.path.join(directory, "profile"), "--dump-dom", "file://" + path]
        result = subprocess.run([browser] + options, capture_output=True, text=True, errors="replace", timeout=400)
    found = re.search(r'<pre id="checks">(.*?)</pre>', result.stdout, re.DOTALL)
    print(html.unescape(found.group(1)) if found else "the checks did not run: exit code %d, %d bytes\n%s\n" % (
        result.returncode, len(result.stdout), result.stderr[-2000:]), end="")
    for line in re.findall(r"CONSOLE.*", result.stderr):
        print(re.sub(r"^\S* ", "console: ", line))


def main():
    with open(sys.argv[1], encoding="utf-8", newline="") as file:
        page = file.read()
    if sys.argv[2:] == ["--policy"]:
        check_policy(page)
        return 0
    browser = next(filter(None, map(shutil.which, BROWSERS)), None)
    if browser is None:
        return 77
    look_at(browser, with_checks(page, sys.argv[2:]))
    return 0


sys.exit(main())
