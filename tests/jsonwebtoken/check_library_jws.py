#!/usr/bin/python3
"""PyJWT checks the tokens the library signs: every algorithm, sorted and
unsorted claims, non-ASCII text, "aud" as string and array, with and without
a "kid" header. The tokens come from jws_sign_tool, which calls
jsonWebToken::sign; PyJWT must accept each with the public key alone and read
back exactly the claims and header that went in.

Usage: check_library_jws.py <jws_sign_tool> <jws_keys.json>
Exits 77, which CTest counts as skipped, when PyJWT or cryptography is missing.
"""

import json
import subprocess
import sys

try:
    import jwt
    from cryptography.hazmat.primitives import serialization
except ImportError as missing:
    print("skipped: %s" % missing)
    sys.exit(77)

NOW = 1700000000
CASES = [("HS256", "hs256"), ("HS384", "hs384"), ("HS512", "hs512"), ("RS256", "rsa"), ("RS384", "rsa"),
         ("RS512", "rsa"), ("PS256", "rsa"), ("PS384", "rsa"), ("PS512", "rsa-2"), ("ES256", "ec-p256"),
         ("ES384", "ec-p384"), ("ES512", "ec-p521"), ("EdDSA", "ed25519"), ("EdDSA", "ed448")]
PAYLOADS = [
    {"aud": "monitoring-api", "exp": NOW + 3600, "iat": NOW, "iss": "kvbase", "sub": "monitor-7"},
    {"sub": "G\u00f6teborg \u00c5s \U0001f600", "aud": ["archive", "dispatch"], "scope": "read write",
     "n": [1, 2.5, None, True, -7], "nested": {"b": 1, "a": "x\"\\/\n"}},
]
HEADERS = [{}, {"kid": "2024-05"}]


def main():
    tool, keys_path = sys.argv[1:3]
    with open(keys_path, encoding="utf-8") as f:
        keys = json.load(f)["keys"]
    requests, checks = [], []
    for alg, name in CASES:
        entry = keys[name]
        for payload in PAYLOADS:
            for header in HEADERS:
                request = {"alg": alg, "payload": payload, "header": header}
                if "secret" in entry:
                    request["secret"] = entry["secret"]
                    verify_key = jwt.utils.base64url_decode(entry["secret"])
                else:
                    # The traditional forms are read as well as PKCS #8.
                    request["pem"] = entry.get("pem-traditional" if alg in ("RS256", "ES256") else "pem-private")
                    verify_key = serialization.load_pem_public_key(entry["pem-public"].encode())
                requests.append(request)
                checks.append((alg, name, payload, header, verify_key))

    done = subprocess.run([tool], input=json.dumps(requests).encode(), capture_output=True, check=True)
    tokens = json.loads(done.stdout)
    failures = 0
    for (alg, name, payload, header, verify_key), token in zip(checks, tokens):
        what = "%s with %s, claims %s, header %s" % (alg, name, sorted(payload), header)
        try:
            if not isinstance(token, str):
                raise ValueError("the library did not sign: %s" % token)
            claims = jwt.decode(token, verify_key, algorithms=[alg], audience="dispatch"
                                if isinstance(payload["aud"], list) else payload["aud"],
                                options={"verify_exp": False, "verify_iat": False})
            if claims != payload:
                raise ValueError("claims read back as %s" % claims)
            if jwt.get_unverified_header(token) != {"alg": alg, "typ": "JWT", **header}:
                raise ValueError("header read back as %s" % jwt.get_unverified_header(token))
        except (ValueError, jwt.PyJWTError) as error:
            failures += 1
            print("FAIL %s: %s" % (what, error))
    print("PyJWT %s checked %d library tokens, %d failed" % (jwt.__version__, len(checks), failures))
    return 1 if failures or len(tokens) != len(checks) else 0


if __name__ == "__main__":
    sys.exit(main())
