"""Signs in with a real browser, starts a call from a meeting, rates it, and looks for the rating on the server.
Then lets the browser extension begin a call and end it.

The server is the sandbox at its address that is not this machine's own, where everything asks for a token.
Expects the private surroundings that `run` brings up.
"""

import argparse
import json
import os
import stat
import subprocess
import sys
import time
import urllib.error
import urllib.request
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "tools/demo"))

from program import NotThere, Program, wait_for  # noqa: E402

from selenium import webdriver  # noqa: E402
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.chrome.options import Options  # noqa: E402
from selenium.webdriver.chrome.service import Service  # noqa: E402

USER = "sandra.weiss@fernhill.example"
COACH = "http://127.0.0.2:3001"
# Shorter calls leave no record.
KEPT_AFTER_SECONDS = 11


class Wrong(Exception):
    """Something is not as it has to be."""


def expect(what, seen, wanted):
    if seen != wanted:
        raise Wrong(f"{what}: {seen!r} instead of {wanted!r}")


class Account:
    def __init__(self, options):
        self.programs = Path(options.bin).resolve()
        self.output = Path(options.output).resolve()
        self.output.mkdir(parents=True, exist_ok=True)
        self.home = Path(os.environ["HOME"])
        self.asked_pages = self.output / "pages.txt"
        self.asked_pages.write_text("")
        self.sandbox = self.program = None

    # --- Steps that others are made of ---

    def give_the_desktop_a_browser(self):
        """One that writes down what it is asked to open."""
        browser = self.output / "browser"
        browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >>"{self.asked_pages}"\n')
        browser.chmod(0o755)
        entry = self.home / ".local/share/applications/test-browser.desktop"
        entry.parent.mkdir(parents=True, exist_ok=True)
        entry.write_text(f"[Desktop Entry]\nType=Application\nName=Test Browser\nExec={browser} %u\n"
                         "MimeType=x-scheme-handler/http;x-scheme-handler/https;\n")
        chosen = self.home / ".config/mimeapps.list"
        chosen.parent.mkdir(parents=True, exist_ok=True)
        chosen.write_text("[Default Applications]\nx-scheme-handler/http=test-browser.desktop\n"
                          "x-scheme-handler/https=test-browser.desktop\n")

    def start_sandbox(self):
        log = self.output / "sandbox.log"
        self.sandbox = Program([str(self.programs / "corvellan-sandbox"), "--user", USER], log)
        wait_for("the sandbox", 15, lambda: self.sandbox.is_running() and "\nready\n" in log.read_text())

    def start_program(self):
        settings = self.home / ".config/corvellan/bram.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text("[General]\nonboardingCompleted=true\n")
        self.program = Program([str(self.programs / "corvellan-bram-sandbox")], self.output / "program.log")
        self.wait_for_name("Login")

    def wait_for_name(self, name, seconds=20):
        wait_for(f'"{name}" on the screen', seconds, lambda: name in self.program.names(), every=0.2)

    def widget(self, name):
        return next((widget for widget in self.program.widgets() if widget.get_name() == name), None)

    def press(self, name):
        """Whatever it is: a button, a tab, a row."""
        widget = wait_for(f'"{name}"', 20, lambda: self.widget(name), every=0.2)
        if not widget.get_action_iface().do_action(0):
            raise NotThere(f'"{name}" refused to be pressed')

    def debug_log(self):
        path = self.home / "corvellan-debug.log"
        return path.read_text() if path.exists() else ""

    def tokens(self):
        return json.loads((self.home / ".config/corvellan/auth.json").read_text())

    def ask_server(self, path, token=None):
        headers = {"Authorization": f"Bearer {token}"} if token else {}
        with urllib.request.urlopen(urllib.request.Request(COACH + path, headers=headers), timeout=10) as answer:
            return json.load(answer)

    # --- What has to hold ---

    def nobody_is_signed_in(self):
        names = self.program.names()
        for tab in ("Calendar", "History"):
            if tab in names:
                raise Wrong(f"the sidebar shows {tab} to nobody")
        try:
            self.ask_server("/calls")
            raise Wrong("the server answers without a token")
        except urllib.error.HTTPError as refusal:
            expect("the server's answer without a token", refusal.code, 401)

    def sign_in_through_the_browser(self):
        self.press("Login")
        page = wait_for("the page to sign in on", 20, lambda: self.asked_pages.read_text().strip())
        expect("pages that were opened", len(page.splitlines()), 1)
        options = Options()
        # Whatever it would ask of the network beside the page stays off.
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--disable-quic",
                         "--no-first-run", "--disable-background-networking", "--disable-component-update",
                         "--disable-sync"):
            options.add_argument(argument)
        browser = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        try:
            browser.set_page_load_timeout(60)
            browser.get(page)
            expect("the page's heading", browser.find_element(By.TAG_NAME, "h1").text, "Sign in")
            expect("the chosen account", browser.find_element(By.ID, "user").get_attribute("value"), USER)
            browser.find_element(By.XPATH, "//button[text()='Sign in']").click()
            wait_for("the page that says it is done", 20, lambda: "Authenticated!" in browser.page_source)
        finally:
            browser.quit()
        self.wait_for_name(f"Sign out {USER.split('@')[0]}")
        mode = stat.S_IMODE((self.home / ".config/corvellan/auth.json").stat().st_mode)
        expect("the token file's mode", oct(mode), "0o600")

    def meetings_are_listed(self):
        self.press("Calendar")
        wait_for("a meeting", 20, self.meeting, every=0.2)

    def meeting(self):
        prefix = "Start call: "
        return next((name[len(prefix):] for name in self.program.names() if name.startswith(prefix)), None)

    def a_call_starts_from_one(self):
        meeting = self.meeting()
        self.press(f"Start call: {meeting}")
        wait_for("the pipeline", 20, lambda: "Pipeline ready" in self.debug_log())
        time.sleep(KEPT_AFTER_SECONDS)
        self.press("End Session")

    def the_history_shows_it_and_takes_a_rating(self):
        wait_for("the record", 20, lambda: (self.program.counters_or_none() or {}).get("records_stored", 0) >= 1)
        self.open_the_newest_call()
        self.press("Helpful")

    def open_the_newest_call(self):
        if self.widget("Helpful"):
            return
        self.press("History")
        row = wait_for("the call in the history", 20, self.history_row, every=0.2)
        row.get_action_iface().do_action(0)
        self.wait_for_name("Helpful")

    def history_row(self):
        return next((widget for widget in self.program.widgets()
                     if widget.get_role_name() == "list item" and widget.get_action_iface()), None)

    def the_rating_is_on_the_server(self):
        token = self.tokens()["access_token"]
        calls = self.ask_server("/calls", token)
        calls = calls["calls"] if isinstance(calls, dict) else calls
        expect("calls on the server", len(calls), 1)
        number = calls[0].get("call_id") or calls[0].get("id")
        wait_for("the rating", 20, lambda: self.ratings(number, token))
        expect("the ratings", self.ratings(number, token), [1])

    def ratings(self, number, token):
        return [entry["rating"] for entry in self.ask_server(f"/calls/{number}", token).get("feedback", [])]

    def extension(self, *words):
        done = subprocess.run([str(self.programs / "corvellan-sandbox"), "extension", *words], capture_output=True,
                              text=True, timeout=20)
        expect(f"the extension's {words[0]}: {done.stderr.strip()}", done.returncode, 0)

    def the_extension_begins_a_call_and_ends_it(self):
        self.extension("call-start", "--company", "Halden Freight")
        # The program waits three seconds for somebody who says no.
        wait_for("the call", 20, lambda: self.program.button("End Session"), every=0.2)
        wait_for("the pipeline", 20, lambda: self.debug_log().count("Pipeline ready") == 2)
        self.extension("call-end")
        wait_for("the end of the call", 20, lambda: not self.program.button("End Session"), every=0.2)

    def run(self):
        steps = [
            self.give_the_desktop_a_browser,
            self.start_sandbox,
            self.start_program,
            self.nobody_is_signed_in,
            self.sign_in_through_the_browser,
            self.meetings_are_listed,
            self.a_call_starts_from_one,
            self.the_history_shows_it_and_takes_a_rating,
            self.the_rating_is_on_the_server,
            self.the_extension_begins_a_call_and_ends_it,
        ]
        try:
            for step in steps:
                print(f"==> {step.__name__.replace('_', ' ')}", flush=True)
                step()
            print("Everything holds", flush=True)
            return 0
        except (Wrong, NotThere) as problem:
            print(f"FAILED: {problem}", flush=True)
            if self.program:
                print("\n".join(self.program.names()), flush=True)
                self.program.screenshot(self.output / "failed.png", whole_screen=True)
            return 1
        finally:
            for program in (self.program, self.sandbox):
                if program:
                    program.end()


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", required=True)
    parser.add_argument("--output", required=True)
    sys.exit(Account(parser.parse_args()).run())
