"""Signs in at the sandbox as a browser would, and leaves the tokens where the program looks for them."""

import base64
import hashlib
import json
import os
import re
import secrets
import time
import urllib.error
import urllib.parse
import urllib.request

from program import NotThere

CLIENT = "corvellan-tui"
RETURN_ADDRESS = "http://127.0.0.1:9876/callback"


class _StayHere(urllib.request.HTTPRedirectHandler):
    """The way back leads to the program, which does not listen yet; what matters stands in the address."""

    def redirect_request(self, *_):
        return None


def _ask(url, form=None):
    body = urllib.parse.urlencode(form).encode() if form is not None else None
    try:
        with urllib.request.build_opener(_StayHere).open(url, body, timeout=10) as answer:
            return answer.read().decode(), answer.headers
    except urllib.error.HTTPError as error:
        if error.code in (302, 303):
            return "", error.headers
        raise NotThere(f"a sign-in: {url} answered {error.code}") from error


def sign_in(chat, token_file):
    """As the first user of the page; gives the address."""
    verifier = secrets.token_urlsafe(48)
    challenge = base64.urlsafe_b64encode(hashlib.sha256(verifier.encode()).digest()).rstrip(b"=").decode()
    question = {
        "response_type": "code",
        "client_id": CLIENT,
        "redirect_uri": RETURN_ADDRESS,
        "code_challenge": challenge,
        "code_challenge_method": "S256",
        "scope": "openid email profile",
    }
    page, _ = _ask(f"{chat}/api/oauth/authorize?{urllib.parse.urlencode(question)}")
    ticket = re.search(r'name="ticket" value="([^"]+)"', page)
    user = re.search(r"<option>([^<]+)</option>", page)
    if not ticket or not user:
        raise NotThere("a sign-in page with a form")
    _, headers = _ask(f"{chat}/api/oauth/authorize", {"ticket": ticket[1], "user": user[1], "decision": "allow"})
    back = urllib.parse.parse_qs(urllib.parse.urlsplit(headers.get("Location", "")).query)
    if "code" not in back:
        raise NotThere("a code from the sign-in")
    exchange = {
        "grant_type": "authorization_code",
        "client_id": CLIENT,
        "redirect_uri": RETURN_ADDRESS,
        "code": back["code"][0],
        "code_verifier": verifier,
    }
    tokens = json.loads(_ask(f"{chat}/api/oauth/token", exchange)[0])
    kept = {name: tokens[name] for name in ("access_token", "refresh_token") if name in tokens}
    if "expires_in" in tokens:
        kept["expires_at"] = int(time.time()) + int(tokens["expires_in"])
    token_file.parent.mkdir(parents=True, exist_ok=True)
    with os.fdopen(os.open(token_file, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "w") as file:
        json.dump(kept, file)
    return user[1]
