#!/usr/bin/python3
"""Makes the reference data of the kvtool tests.

Positions: what GeographicLib's GeoConvert writes for positions.txt, as MGRS
(-m -p 0) and as UTM/UPS (-u, with the zone's band letter taken from the MGRS
text in place of GeoConvert's hemisphere letter, which is how kvtool writes
UTM). Lines GeoConvert cannot read stay empty; comments and blank lines pass.

Tokens: test-only keys made with OpenSSL, a JWKS of their public halves and
tokens signed by PyJWT. Run from this folder with Debian's python3,
python3-jwt and python3-cryptography; it rewrites every file it makes.
"""
import json
import subprocess

import jwt
from cryptography.hazmat.primitives import serialization
from jwt.algorithms import ECAlgorithm, RSAAlgorithm


def geoconvert(flags, line):
    out = subprocess.run(["GeoConvert", *flags], input=line + "\n", capture_output=True, text=True).stdout
    out = out.strip()
    return "" if out.startswith("ERROR") else out


def positions():
    mgrs_lines, utm_lines = [], []
    for line in open("positions.txt", encoding="utf-8").read().splitlines():
        if not line.strip() or line.strip().startswith("#"):
            mgrs_lines.append(line)
            utm_lines.append(line)
            continue
        mgrs = geoconvert(["-m", "-p", "0"], line)
        utm = geoconvert(["-u"], line)
        mgrs_lines.append(mgrs)
        if not utm:
            utm_lines.append("")
            continue
        zone, easting, northing = utm.split()
        digits = zone[:-1]
        band = mgrs[len(digits)] if digits else mgrs[0]
        utm_lines.append(f"{int(digits):02d}{band} {easting} {northing}" if digits else f"{band} {easting} {northing}")
    open("positions.mgrs", "w", encoding="utf-8").write("\n".join(mgrs_lines) + "\n")
    open("positions.utm", "w", encoding="utf-8").write("\n".join(utm_lines) + "\n")


def openssl_key(name, *algorithm):
    subprocess.run(["openssl", "genpkey", *algorithm, "-out", f"{name}.pem"], check=True)
    subprocess.run(["openssl", "pkey", "-in", f"{name}.pem", "-pubout", "-out", f"{name}.pub.pem"], check=True)


def tokens():
    openssl_key("rsa", "-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048")
    openssl_key("rsa_other", "-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048")
    openssl_key("ec256", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256")
    openssl_key("ed25519", "-algorithm", "ed25519")
    open("secret.txt", "w").write("kvtool test secret, forty bytes long....\n")
    open("other_secret.txt", "w").write("another test secret of forty bytes.....\n")
    secret = open("secret.txt", "rb").read().rstrip(b"\n")

    def public(name):
        return serialization.load_pem_public_key(open(f"{name}.pub.pem", "rb").read())

    rsa_jwk = json.loads(RSAAlgorithm.to_jwk(public("rsa")))
    rsa_jwk["kid"] = "rsa-1"
    ec_jwk = json.loads(ECAlgorithm.to_jwk(public("ec256")))
    ec_jwk["kid"] = "ec-1"
    json.dump({"keys": [rsa_jwk, ec_jwk]}, open("jwks.json", "w"), indent=2)
    ec_private = serialization.load_pem_private_key(open("ec256.pem", "rb").read(), None)
    ec_private_jwk = json.loads(ECAlgorithm.to_jwk(ec_private))
    ec_private_jwk["kid"] = "ec-1"
    json.dump(ec_private_jwk, open("ec256.jwk.json", "w"), indent=2)
    json.dump({"iss": "dispatch", "scope": ["read", "write"], "n": 1.5}, open("claims.json", "w"))

    # Members in sorted order, so the library's compact JSON is byte for byte the same.
    hs256 = jwt.encode({"iss": "dispatch", "n": 5, "sub": "alice"}, secret, "HS256")
    open("pyjwt_hs256.jwt", "w").write(hs256 + "\n")
    es256 = jwt.encode({"iss": "dispatch", "aud": ["radio", "ops"], "exp": 2000000000, "sub": "Göteborg"},
                       ec_private, "ES256", headers={"kid": "ec-1"})
    open("pyjwt_es256.jwt", "w").write(es256 + "\n")
    open("pyjwt_none.jwt", "w").write(jwt.encode({"sub": "alice"}, None, "none") + "\n")


positions()
tokens()
