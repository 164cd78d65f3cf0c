#!/usr/bin/python3
"""Interoperability fixtures for the token tests, made with PyJWT.

Run with Debian's python3 and python3-jwt (2.6):  ./make_fixtures.py

pyjwt_tokens.json  tokens PyJWT signs, each with the key, the algorithm and
                   time to verify with and the outcome expected here. PyJWT
                   always sorts the header; payloads are passed in sorted
                   order, so its compact JSON matches ours byte for byte,
                   except in the rows made to differ (unsorted members,
                   escaped non-ASCII text), which must fail.
library_tokens.json  tokens the library produced (the test parses each one,
                   checks it re-encodes to the same text and re-signs to the
                   same signature); this script
                   verifies them with PyJWT and records the outcome and the
                   claims PyJWT read in "pyjwt".
Keys are hex. Two are RFC 4231 test-case keys: 20 bytes of 0x0b and 131
bytes of 0xaa, the latter longer than every HMAC block size.
"""

import json
import os

import jwt

HERE = os.path.dirname(os.path.abspath(__file__))
NOW = 1700000000  # 2023-11-14T22:13:20Z

SECRET = b"secret"
KEY_4231_1 = b"\x0b" * 20
KEY_4231_6 = b"\xaa" * 131


class RawUnicodeEncoder(json.JSONEncoder):
    """Writes non-ASCII text as UTF-8, as QJsonDocument does."""

    def __init__(self, *args, **kwargs):
        kwargs["ensure_ascii"] = False
        super().__init__(*args, **kwargs)


def pyjwt_row(name, payload, key, alg, expect, verify_alg=None, now=None, headers=None, encoder=None,
              note=""):
    token = jwt.encode(payload, key, algorithm=alg, headers=headers, json_encoder=encoder)
    return {
        "name": name,
        "token": token,
        "key_hex": key.hex(),
        "verify_alg": verify_alg or alg,
        "now": now,
        "expect": expect,
        "note": note,
    }


def pyjwt_tokens():
    return [
        pyjwt_row("HS256 registered claims verify", {
            "exp": NOW + 3600, "iat": NOW, "iss": "kvbase-test", "nbf": NOW - 1000, "sub": "monitor-7"
        }, SECRET, "HS256", "NoError", now=NOW),
        pyjwt_row("HS384 audience list verifies", {
            "aud": ["dispatch", "archive"], "iss": "kvbase-test", "jti": "id-1"
        }, KEY_4231_1, "HS384", "NoError"),
        pyjwt_row("HS512 with a key longer than the block size verifies", {
            "exp": NOW + 60, "sub": "x"
        }, KEY_4231_6, "HS512", "NoError", now=NOW),
        pyjwt_row("HS256 with a key id in the header verifies", {"sub": "monitor-7"}, SECRET, "HS256",
                  "NoError", headers={"kid": "2024-1"}),
        pyjwt_row("HS256 nested objects and JSON literals verify", {
            "admin": True, "ctx": {"a": 1, "b": [1, 2, "x"]}, "nothing": None, "score": 0.25
        }, SECRET, "HS256", "NoError"),
        pyjwt_row("HS256 non-ASCII text written as UTF-8 verifies", {"sub": "J\u00f6rg \u00c5str\u00f6m"},
                  SECRET, "HS256", "NoError", encoder=RawUnicodeEncoder),
        pyjwt_row("HS256 non-ASCII text escaped as \\u fails", {"sub": "J\u00f6rg"}, SECRET, "HS256",
                  "SignatureInvalid", note="PyJWT escapes non-ASCII; the library re-encodes it as UTF-8"),
        pyjwt_row("HS256 unsorted payload fails", {"sub": "monitor-7", "iss": "kvbase-test"}, SECRET,
                  "HS256", "SignatureInvalid", note="the library re-encodes members in sorted order"),
        pyjwt_row("HS256 token checked as HS512 fails", {"sub": "monitor-7"}, SECRET, "HS256",
                  "SignatureInvalid", verify_alg="HS512"),
        pyjwt_row("HS256 expired token is reported expired", {"exp": NOW - 10, "sub": "x"}, SECRET,
                  "HS256", "TokenExpired", now=NOW),
        pyjwt_row("HS256 token expiring now is reported expired", {"exp": NOW, "sub": "x"}, SECRET,
                  "HS256", "TokenExpired", now=NOW),
        pyjwt_row("HS256 future token is reported not yet valid", {"nbf": NOW + 600, "sub": "x"}, SECRET,
                  "HS256", "TokenNotYetValid", now=NOW),
    ]


def check_with_pyjwt(row):
    key = bytes.fromhex(row["key_hex"])
    try:
        claims = jwt.decode(row["token"], key, algorithms=[row["alg"]],
                            options={"verify_exp": False, "verify_nbf": False, "verify_iat": False,
                                     "verify_aud": False})
    except jwt.PyJWTError as error:
        return {"result": type(error).__name__ + ": " + str(error)}
    return {"result": "valid", "claims": claims}


def main():
    with open(os.path.join(HERE, "pyjwt_tokens.json"), "w", encoding="utf-8") as out:
        json.dump(pyjwt_tokens(), out, indent=1, ensure_ascii=False)
        out.write("\n")

    path = os.path.join(HERE, "library_tokens.json")
    with open(path, encoding="utf-8") as f:
        rows = json.load(f)
    for row in rows:
        row["pyjwt"] = check_with_pyjwt(row)
    with open(path, "w", encoding="utf-8") as out:
        json.dump(rows, out, indent=1, ensure_ascii=False)
        out.write("\n")


if __name__ == "__main__":
    main()
