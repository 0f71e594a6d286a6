"""A walk that signs in with a real browser, at the sandbox's address that is not this machine's own: there
everything asks for a token."""

import json
import stat
import urllib.request

from walk import Walk, expect, wait_for

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

USER = "sandra.weiss@fernhill.example"
SIGN_OUT = f"Sign out {USER.split('@')[0]}"
SIGNED_IN = f"Signed in as {USER}"
COACH = "http://127.0.0.2:3001"


class SignedIn(Walk):
    def __init__(self, options):
        super().__init__(options)
        self.asked_pages = self.output / "pages.txt"
        self.asked_pages.write_text("")

    def start_sandbox(self):
        self.start_sandbox_with("--user", USER)

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
        # In the sidebar, or before that in the onboarding.
        wait_for("the user on the screen", 20, lambda: {SIGN_OUT, SIGNED_IN} & set(self.program.names()), every=0.2)
        mode = stat.S_IMODE((self.home / ".config/corvellan/auth.json").stat().st_mode)
        expect("the token file's mode", oct(mode), "0o600")

    def tokens(self):
        return json.loads((self.home / ".config/corvellan/auth.json").read_text())

    def ask_server(self, path, token=None):
        headers = {"Authorization": f"Bearer {token}"} if token else {}
        with urllib.request.urlopen(urllib.request.Request(COACH + path, headers=headers), timeout=10) as answer:
            return json.load(answer)
