"""Looks at pages in a browser: check_page.py PAGE [STEP...] [-- PAGE [STEP...]]...

A step is a check of page_checks.js, whose findings are printed behind its name, or one of these:
  width=N        the window is that wide from here on; 1280 at first
  dark           the system is dark from here on; light at first
  open=#VIEW     the page is opened anew, at that address
  print          how many pages it has on paper
The browser is started once for all pages; "==" stands before what is found of each, and what stands on its console comes
behind that. Without a browser the exit code is 77.
--policy PAGE checks, without a browser, that the content security policy names what the page has and no more.
"""
import base64
import fcntl
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

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


class Browser:
    """A browser with one tab, told what to do over a pair of pipes: messages are JSON, each ended by a zero."""

    def __init__(self, program, directory):
        to_browser, self.commands = os.pipe()
        self.answers, from_browser = os.pipe()
        ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (to_browser, from_browser)]

        def take_ends():  # the browser looks for them at 3 and 4
            os.dup2(ends[0], 3)
            os.dup2(ends[1], 4)

        options = ["--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run", "--remote-debugging-pipe",
                   "--user-data-dir=" + os.path.join(directory, "profile"), "about:blank"]
        self.process = subprocess.Popen([program] + options, preexec_fn=take_ends, pass_fds=(3, 4),
                                        stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        for end in ends + [to_browser, from_browser]:
            os.close(end)
        self.read, self.count, self.session, self.console = b"", 0, None, []
        tab = next(target for target in self.ask("Target.getTargets")["targetInfos"] if target["type"] == "page")
        self.session = self.ask("Target.attachToTarget", targetId=tab["targetId"], flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.ask(domain + ".enable")

    def receive(self):
        while b"\0" not in self.read:
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise EOFError("the browser has gone")
            self.read += piece
        message, self.read = self.read.split(b"\0", 1)
        message = json.loads(message)
        event, values = message.get("method"), message.get("params", {})
        if event == "Runtime.exceptionThrown":
            details = values["exceptionDetails"]
            self.console.append(details.get("exception", {}).get("description", details["text"]).split("\n")[0])
        elif event == "Log.entryAdded":
            text = values["entry"]["text"]
            self.console.append("refused by the policy" if "Content Security Policy" in text else text)
        elif event == "Runtime.consoleAPICalled":
            self.console.append(" ".join(str(value.get("value")) for value in values["args"]))
        return message

    def ask(self, method, **values):
        self.count += 1
        message = {"id": self.count, "method": method, "params": values}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.count:
                return answer.get("result", answer)

    def open(self, url):
        self.ask("Page.navigate", url="about:blank")
        self.ask("Page.navigate", url=url)
        self.evaluate("new Promise(done => document.readyState === 'complete' ? done() : addEventListener('load', done))")
        self.evaluate("new Promise(done => requestAnimationFrame(() => setTimeout(done)))")  # what comes behind the first picture
        self.evaluate(CHECKS)

    def evaluate(self, script):
        answer = self.ask("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in answer:
            return "fails: " + answer["exceptionDetails"].get("exception", {}).get("description", "?").split("\n")[0]
        return answer.get("result", {}).get("value")

    def resize(self, width):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=1000, deviceScaleFactor=1, mobile=False)

    def close(self):
        self.ask("Browser.close")
        self.process.wait(30)


with open(os.path.join(os.path.dirname(__file__), "page_checks.js"), encoding="utf-8") as file:
    CHECKS = file.read()


def look_at(browser, page, steps):
    print("==")
    url = "file://" + os.path.realpath(page)
    browser.resize(1280)
    browser.ask("Emulation.setEmulatedMedia", features=[])
    if "speed" in steps:
        time.sleep(5)  # a browser is busy with itself once it has been started
    browser.open(url)
    for step in steps:
        name, _, value = step.partition("=")
        if name == "width":
            browser.resize(int(value))
            browser.evaluate("new Promise(requestAnimationFrame)")
        elif name == "dark":
            browser.ask("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark"}])
        elif name == "open":
            browser.open(url + value)
        elif name == "print":
            paper = base64.b64decode(browser.ask("Page.printToPDF", preferCSSPageSize=True, paperWidth=8.27, paperHeight=11.7)["data"])
            print("print: %d pages" % len(re.findall(rb"/Type\s*/Page\b", paper)))
        else:
            print("%s: %s" % (name, browser.evaluate("checks.%s()" % name) or "good"))
    for line in browser.console:
        print("console: " + line)
    browser.console.clear()


def main():
    if sys.argv[1] == "--policy":
        with open(sys.argv[2], encoding="utf-8", newline="") as page:
            check_policy(page.read())
        return 0
    program = next(filter(None, map(shutil.which, BROWSERS)), None)
    if program is None:
        return 77
    pages = [[]]
    for word in sys.argv[1:]:
        if word == "--":
            pages.append([])
        else:
            pages[-1].append(word)
    with tempfile.TemporaryDirectory() as directory:
        browser = Browser(program, directory)
        for page, *steps in pages:
            look_at(browser, page, steps)
        browser.close()
    return 0


sys.exit(main())
