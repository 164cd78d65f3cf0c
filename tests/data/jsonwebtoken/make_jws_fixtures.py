#!/usr/bin/python3
"""Reference data for the JWS tests (tst_jws), made with PyJWT and cryptography.

Run with Debian's python3, python3-jwt (2.6) and python3-cryptography (38):
    ./make_jws_fixtures.py
Every run makes new keys and new tokens (ECDSA and PSS signatures are random),
so commit the three files together.

jws_keys.json    Keys for every algorithm in every form the library reads:
                 PKCS #8, SubjectPublicKeyInfo and traditional PEM, public
                 and private JWK (coordinates at full curve width), HMAC
                 secrets as base64url; the published keys of RFC 7515
                 appendix A and RFC 8037 appendix A; "jwks" is a key set as
                 an identity provider publishes it, with entries the library
                 must skip ("usable" and "skipped" say how many).
jws_tokens.json  Tokens and how to verify them ("allow" lists algorithm, key
                 name and key form), with the outcome expected. Every token
                 was signed by PyJWT (jwt.encode, or its algorithm objects for
                 hand-made headers and payloads), or is an RFC example checked
                 here with cryptography first. "sign" rows were made with a
                 deterministic algorithm, so the library signing the same
                 claims with the same key must produce the very same token.
                 "tamper" rows must fail once any segment changes.
jws_key_cases.json  PEM texts and JWKs the library must read, or refuse
                 with a message naming the fault.

check_library_jws.py does the other direction: PyJWT checks tokens the
library signs.
"""

import base64
import hashlib
import hmac
import json
import os

import jwt
from cryptography.exceptions import InvalidSignature
from cryptography.hazmat.primitives import hashes, serialization
from cryptography.hazmat.primitives.asymmetric import dsa, ec, ed448, ed25519, rsa, utils, x25519
from jwt.algorithms import get_default_algorithms

HERE = os.path.dirname(os.path.abspath(__file__))
NOW = 1700000000  # 2023-11-14T22:13:20Z
ALGORITHMS = get_default_algorithms()


def b64(data):
    return base64.urlsafe_b64encode(data).rstrip(b"=").decode()


def unb64(text):
    return base64.urlsafe_b64decode(text + "=" * (-len(text) % 4))


def uint(value, width=None):
    if width is None:
        width = max(1, (value.bit_length() + 7) // 8)
    return b64(value.to_bytes(width, "big"))


# --- Keys ---------------------------------------------------------------------------------------

CURVES = {"P-256": (ec.SECP256R1, 32), "P-384": (ec.SECP384R1, 48), "P-521": (ec.SECP521R1, 66)}


def pem(key, private, fmt=serialization.PrivateFormat.PKCS8):
    if private:
        return key.private_bytes(serialization.Encoding.PEM, fmt, serialization.NoEncryption()).decode()
    return key.public_bytes(serialization.Encoding.PEM,
                            serialization.PublicFormat.SubjectPublicKeyInfo).decode()


def jwk_of(key, kid=None, alg=None):
    """Public and private JWK, written out here (PyJWT 2.6 drops leading zero bytes of EC coordinates)."""
    extra = {k: v for k, v in (("kid", kid), ("alg", alg)) if v}
    if isinstance(key, rsa.RSAPrivateKey):
        n = key.private_numbers()
        public = {"kty": "RSA", "n": uint(n.public_numbers.n), "e": uint(n.public_numbers.e), **extra}
        private = dict(public, d=uint(n.d), p=uint(n.p), q=uint(n.q), dp=uint(n.dmp1), dq=uint(n.dmq1),
                       qi=uint(n.iqmp))
    elif isinstance(key, ec.EllipticCurvePrivateKey):
        crv = {"secp256r1": "P-256", "secp384r1": "P-384", "secp521r1": "P-521"}[key.curve.name]
        width = CURVES[crv][1]
        n = key.private_numbers()
        public = {"kty": "EC", "crv": crv, "x": uint(n.public_numbers.x, width),
                  "y": uint(n.public_numbers.y, width), **extra}
        private = dict(public, d=uint(n.private_value, width))
    else:
        crv = "Ed25519" if isinstance(key, ed25519.Ed25519PrivateKey) else "Ed448"
        raw = serialization.Encoding.Raw
        x = key.public_key().public_bytes(raw, serialization.PublicFormat.Raw)
        d = key.private_bytes(raw, serialization.PrivateFormat.Raw, serialization.NoEncryption())
        public = {"kty": "OKP", "crv": crv, "x": b64(x), **extra}
        private = dict(public, d=b64(d))
    return public, private


def key_entry(key, kid=None, alg=None, traditional=False):
    public, private = jwk_of(key, kid, alg)
    entry = {"pem-private": pem(key, True), "pem-public": pem(key.public_key(), False),
             "jwk-public": public, "jwk-private": private}
    if traditional:
        entry["pem-traditional"] = pem(key, True, serialization.PrivateFormat.TraditionalOpenSSL)
    return entry


def make_keys():
    keys = {
        "rsa": rsa.generate_private_key(65537, 2048),
        "rsa-2": rsa.generate_private_key(65537, 2048),
        "ec-p256": ec.generate_private_key(ec.SECP256R1()),
        "ec-p384": ec.generate_private_key(ec.SECP384R1()),
        "ec-p521": ec.generate_private_key(ec.SECP521R1()),
        "ed25519": ed25519.Ed25519PrivateKey.generate(),
        "ed448": ed448.Ed448PrivateKey.generate(),
    }
    secrets = {"hs256": os.urandom(32), "hs384": os.urandom(48), "hs512": os.urandom(64),
               "hs-other": os.urandom(32), "short": b"secret", "hs512-short": os.urandom(40)}
    return keys, secrets


# RFC 7515 appendix A.1 to A.4 and RFC 8037 appendix A.1/A.4/A.5, copied from the RFCs.
RFC_KEYS = {
    "rfc7515-a1": {"kty": "oct",
                   "k": "AyM1SysPpbyDfgZld3umj1qzKObwVMkoqQ-EstJQLr_T-1qS0gZH75aKtMN3Yj0iPS4hcgUuTwjAzZr1Z9CAow"},
    "rfc7515-a2": {
        "kty": "RSA",
        "n": "ofgWCuLjybRlzo0tZWJjNiuSfb4p4fAkd_wWJcyQoTbji9k0l8W26mPddxHmfHQp-Vaw-4qPCJrcS2mJPMEzP1Pt0Bm4d4QlL"
             "-yRT-SFd2lZS-pCgNMsD1W_YpRPEwOWvG6b32690r2jZ47soMZo9wGzjb_7OMg0LOL-bSf63kpaSHSXndS5z5rexMdbBYUsLA9e"
             "-KXBdQOS-UTo7WTBEMa2R2CapHg665xsmtdVMTBQY4uDZlxvb3qCo5ZwKh9kG4LT6_I5IhlJH7aGhyxXFvUK-DWNmoudF8NAco9_h9"
             "iaGNj8q2ethFkMLs91kzk2PAcDTW9gb54h4FRWyuXpoQ",
        "e": "AQAB",
        "d": "Eq5xpGnNCivDflJsRQBXHx1hdR1k6Ulwe2JZD50LpXyWPEAeP88vLNO97IjlA7_GQ5sLKMgvfTeXZx9SE-7YwVol2NXOoAJe"
             "46sui395IW_GO-pWJ1O0BkTGoVEn2bKVRUCgu-GjBVaYLU6f3l9kJfFNS3E0QbVdxzubSu3Mkqzjkn439X0M_V51gfpRLI9JYanr"
             "C4D4qAdGcopV_0ZHHzQlBjudU2QvXt4ehNYTCBr6XCLQUShb1juUO1ZdiYoFaFQT5Tw8bGUl_x_jTj3ccPDVZFD9pIuhLhBOneufu"
             "BiB4cS98l2SR_RQyGWSeWjnczT0QU91p1DhOVRuOopznQ",
        "p": "4BzEEOtIpmVdVEZNCqS7baC4crd0pqnRH_5IB3jw3bcxGn6QLvnEtfdUdiYrqBdss1l58BQ3KhooKeQTa9AB0Hw_Py5PJdTJNPY8c"
             "Qn7ouZ2KKDcmnPGBY5t7yLc1QlQ5xHdwW1VhvKn-nXqhJTBgIPgtldC-KDV5z-y2XDwGUc",
        "q": "uQPEfgmVtjL0Uyyx88GZFF1fOunH3-7cepKmtH4pxhtCoHqpWmT8YAmZxaewHgHAjLYsp1ZSe7zFYHj7C6ul7TjeLQeZD_YwD66t"
             "62wDmpe_HlB-TnBA-njbglfIsRLtXlnDzQkv5dTltRJ11BKBBypeeF6689rjcJIDEz9RWdc",
        "dp": "BwKfV3Akq5_MFZDFZCnW-wzl-CCo83WoZvnLQwCTeDv8uzluRSnm71I3QCLdhrqE2e9YkxvuxdBfpT_PI7Yz-FOKnu1R6HsJeD"
              "Cjn12Sk3vmAktV2zb34MCdy7cpdTh_YVr7tss2u6vneTwrA86rZtu5Mbr1C1XsmvkxHQAdYo0",
        "dq": "h_96-mK1R_7glhsum81dZxjTnYynPbZpHziZjeeHcXYsXaaMwkOlODsWa7I9xXDoRwbKgB719rrmI2oKr6N3Do9U0ajaHF-NKJ"
              "nwgjMd2w9cjz3_-kyNlxAr2v4IKhGNpmM5iIgOS1VZnOZ68m6_pbLBSp3nssTdlqvd0tIiTHU",
        "qi": "IYd7DHOhrWvxkwPQsRM2tOgrjbcrfvtQJipd-DlcxyVuuM9sQLdgjVk2oy26F0EmpScGLq2MowX7fhd_QJQ3ydy5cY7YIBi87w93"
              "IKLEdfnbJtoOPLUW0ITrJReOgo1cq9SbsxYawBgfp_gh6A5603k2-ZQwVK0JKSHuLFkuQ3U",
    },
    "rfc7515-a3": {"kty": "EC", "crv": "P-256", "x": "f83OJ3D2xF1Bg8vub9tLe1gHMzV76e8Tus9uPHvRVEU",
                   "y": "x_FEzRu9m36HLN_tue659LNpXW6pCyStikYjKIWI5a0",
                   "d": "jpsQnnGQmL-YBIffH1136cspYG6-0iY7X1fCE9-E9LI"},
    "rfc7515-a4": {"kty": "EC", "crv": "P-521",
                   "x": "AekpBQ8ST8a8VcfVOTNl353vSrDCLLJXmPk06wTjxrrjcBpXp5EOnYG_NjFZ6OvLFV1jSfS9tsz4qUxcWceqwQGk",
                   "y": "ADSmRA43Z1DSNx_RvcLI87cdL07l6jQyyBXMoxVg_l2Th-x3S1WDhjDly79ajL4Kkd0AZMaZmh9ubmf63e3kyMj2",
                   "d": "AY5pb7A0UFiB3RELSD64fTLOSV_jazdF7fLYyuTw8lOfRhWg6Y6rUrPAxerEzgdRhajnu0ferB0d53vM9mE15j2C"},
    "rfc8037": {"kty": "OKP", "crv": "Ed25519", "d": "nWGxne_9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A",
                "x": "11qYAYKxCrfVS_7TyWQHOg7hcvPapiMlrwIaaPcHURo"},
}
RFC7515_PAYLOAD = "eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0cnVlfQ"
RFC_TOKENS = [
    ("RFC 7515 A.1 HS256", "rfc7515-a1", "HS256",
     "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9." + RFC7515_PAYLOAD +
     ".dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
    ("RFC 7515 A.2 RS256", "rfc7515-a2", "RS256",
     "eyJhbGciOiJSUzI1NiJ9." + RFC7515_PAYLOAD +
     ".cC4hiUPoj9Eetdgtv3hF80EGrhuB__dzERat0XF9g2VtQgr9PJbu3XOiZj5RZmh7AAuHIm4Bh-0Qc_lF5YKt_O8W2Fp5jujGbds9uJdbF9"
     "CUAr7t1dnZcAcQjbKBYNX4BAynRFdiuB--f_nZLgrnbyTyWzO75vRK5h6xBArLIARNPvkSjtQBMHlb1L07Qe7K0GarZRmB_eSN9383LcOLn6_d"
     "O--xi12jzDwusC-eOkHWEsqtFZESc6BfI7noOPqvhJ1phCnvWh6IeYI2w9QOYEUipUTI8np6LbgGY9Fs98rqVt5AXLIhWkWywlVmtVrBp0ig"
     "cN_IoypGlUPQGe77Rw"),
    ("RFC 7515 A.3 ES256", "rfc7515-a3", "ES256",
     "eyJhbGciOiJFUzI1NiJ9." + RFC7515_PAYLOAD +
     ".DtEhU3ljbEg8L38VWAfUAqOyKAM6-Xx-F4GawxaepmXFCgfTjDxw5djxLa8ISlSApmWQxfKTUJqPP3-Kg6NU1Q"),
    ("RFC 7515 A.4 ES512 (text payload)", "rfc7515-a4", "ES512",
     "eyJhbGciOiJFUzUxMiJ9.UGF5bG9hZA.AdwMgeerwtHoh-l192l60hp9wAHZFVJbLfD_UxMi70cwnZOYaRI1bKPWROc-mZZqwqT2SI-KGDKB34"
     "XO0aw_7XdtAG8GaSwFKdCAPZgoXD2YBJZCPEX3xKpRwcdOO8KpEHwJjyqOgzDO7iKvU8vcnwNrmxYbSW9ERBXukOXolLzeO_Jn"),
    ("RFC 8037 A.4/A.5 EdDSA (text payload)", "rfc8037", "EdDSA",
     "eyJhbGciOiJFZERTQSJ9.RXhhbXBsZSBvZiBFZDI1NTE5IHNpZ25pbmc.hgyY0il_MGCjP0JzlnLWG1PPOt7-09PGcvMg3AIbQR6dWbhijcN"
     "R4ki4iylGjg5BhVsPt9g7sVvpAr_MuM0KAg"),
]


def rfc_private_key(jwk):
    kty = jwk["kty"]
    if kty == "oct":
        return unb64(jwk["k"])
    if kty == "RSA":
        num = {k: int.from_bytes(unb64(v), "big") for k, v in jwk.items() if k != "kty"}
        public = rsa.RSAPublicNumbers(num["e"], num["n"])
        return rsa.RSAPrivateNumbers(num["p"], num["q"], num["d"], num["dp"], num["dq"], num["qi"],
                                     public).private_key()
    if kty == "EC":
        curve = CURVES[jwk["crv"]][0]()
        return ec.derive_private_key(int.from_bytes(unb64(jwk["d"]), "big"), curve)
    return ed25519.Ed25519PrivateKey.from_private_bytes(unb64(jwk["d"]))


def check_rfc_token(key, alg, token):
    """The published signature must check with the published key, independently of PyJWT."""
    signing_input, signature = token.rsplit(".", 1)
    data, sig = signing_input.encode(), unb64(signature)
    if alg == "HS256":
        assert hmac.compare_digest(hmac.new(key, data, hashlib.sha256).digest(), sig), alg
        return
    public = key.public_key()
    try:
        if alg == "RS256":
            from cryptography.hazmat.primitives.asymmetric import padding
            public.verify(sig, data, padding.PKCS1v15(), hashes.SHA256())
        elif alg in ("ES256", "ES512"):
            half = len(sig) // 2
            der = utils.encode_dss_signature(int.from_bytes(sig[:half], "big"), int.from_bytes(sig[half:], "big"))
            public.verify(der, data, ec.ECDSA(hashes.SHA256() if alg == "ES256" else hashes.SHA512()))
        else:
            public.verify(sig, data)
    except InvalidSignature:
        raise SystemExit("RFC example %s does not verify: copy error" % alg)


# --- Tokens -------------------------------------------------------------------------------------

def raw_token(header, payload, alg, key):
    """A token from exact header and payload bytes, signed by PyJWT's algorithm object."""
    signing_input = b64(header) + "." + b64(payload)
    if alg == "none":
        return signing_input + "."
    if alg.startswith("HS") and isinstance(key, bytes) and key.startswith(b"-----"):
        signature = hmac.new(key, signing_input.encode(), hashlib.sha256).digest()  # PyJWT refuses PEM secrets
    else:
        algorithm = ALGORITHMS[alg]
        signature = algorithm.sign(signing_input.encode(), algorithm.prepare_key(key))
    return signing_input + "." + b64(signature)


def compact(obj):
    return json.dumps(obj, separators=(",", ":"), ensure_ascii=False).encode()


class RawUnicodeEncoder(json.JSONEncoder):
    """Writes non-ASCII text as UTF-8 rather than \\u escapes."""

    def __init__(self, *args, **kwargs):
        kwargs["ensure_ascii"] = False
        super().__init__(*args, **kwargs)


def row(name, token, allow, expect="NoError", **extra):
    return {"name": name, "token": token, "allow": allow, "expect": expect, "now": NOW, **extra}


def make_tokens(keys, secrets):
    rows = []
    signing_key = {"HS256": secrets["hs256"], "HS384": secrets["hs384"], "HS512": secrets["hs512"],
                   "RS256": keys["rsa"], "RS384": keys["rsa"], "RS512": keys["rsa"],
                   "PS256": keys["rsa"], "PS384": keys["rsa"], "PS512": keys["rsa"],
                   "ES256": keys["ec-p256"], "ES384": keys["ec-p384"], "ES512": keys["ec-p521"],
                   "EdDSA": keys["ed25519"]}
    key_name = {"HS256": "hs256", "HS384": "hs384", "HS512": "hs512", "ES256": "ec-p256",
                "ES384": "ec-p384", "ES512": "ec-p521", "EdDSA": "ed25519"}
    # Each algorithm meets the verifier through another key form.
    form = {"HS256": "secret", "HS384": "secret", "HS512": "jwk-private", "RS256": "pem-public",
            "RS384": "jwk-public", "RS512": "pem-private", "PS256": "jwk-public", "PS384": "pem-public",
            "PS512": "jwk-private", "ES256": "pem-traditional", "ES384": "jwk-public", "ES512": "pem-public",
            "EdDSA": "jwk-public"}
    kids = {"RS256": "rsa-1", "ES256": "ec-256", "ES384": "ec-384", "ES512": "ec-521", "EdDSA": "ed-1"}
    deterministic = {"HS256", "HS384", "HS512", "RS256", "RS384", "RS512", "EdDSA"}

    for name, key_id, alg, token in RFC_TOKENS:
        check_rfc_token(rfc_private_key(RFC_KEYS[key_id]), alg, token)
        json_payload = "text payload" not in name
        rows.append(row(name, token, [[alg, key_id, "jwk-public" if alg != "HS256" else "jwk-private"]],
                        "NoError" if json_payload else "Unknown", now=1300819300, tamper=json_payload,
                        message="" if json_payload else "payload is not JSON"))
    for key_id, alg in (("rfc7515-a2", "RS256"), ("rfc7515-a3", "ES256"), ("rfc7515-a4", "ES512"),
                        ("rfc8037", "EdDSA")):
        claims = {"iss": "joe", "sub": "RFC key " + key_id}
        token = jwt.encode(claims, rfc_private_key(RFC_KEYS[key_id]), algorithm=alg)
        extra = {"sign": {"alg": alg, "key": [key_id, "jwk-private"], "payload": claims}} \
            if alg in deterministic else {}
        rows.append(row(alg + " token with a JSON payload, signed with the key of " + key_id, token,
                        [[alg, key_id, "jwk-public"]], tamper=True, **extra))

    for alg, key in signing_key.items():
        name = key_name.get(alg, "rsa")
        allow = [[alg, name, form[alg]]]
        sorted_claims = {"aud": "monitoring-api", "exp": NOW + 3600, "iat": NOW - 10,
                         "iss": "https://login.example.com/", "nbf": NOW - 10, "sub": "monitor-7"}
        token = jwt.encode(sorted_claims, key, algorithm=alg)
        extra = {"sign": {"alg": alg, "key": [name, "pem-private" if not alg.startswith("HS") else "secret"],
                          "payload": sorted_claims}} if alg in deterministic else {}
        rows.append(row("PyJWT %s sorted claims, issuer and audience" % alg, token, allow,
                        issuer=["https://other.example.com/", "https://login.example.com/"],
                        audience="monitoring-api", require=["exp", "sub"], claims=sorted_claims, **extra))
        unsorted = {"sub": "G\u00f6teborg \u00c5s \u20ac", "iss": "kvbase", "aud": ["archive", "dispatch"],
                    "exp": NOW + 60}
        rows.append(row("PyJWT %s unsorted claims, non-ASCII escaped, audience array" % alg,
                        jwt.encode(unsorted, key, algorithm=alg), allow, audience="dispatch",
                        subject="G\u00f6teborg \u00c5s \u20ac", claims=unsorted))
        rows.append(row("PyJWT %s non-ASCII as UTF-8" % alg,
                        jwt.encode({"sub": "J\u00f6rg \U0001f600"}, key, algorithm=alg,
                                   json_encoder=RawUnicodeEncoder), allow, subject="J\u00f6rg \U0001f600"))
        if alg in kids:
            rows.append(row("PyJWT %s picked from the key set by kid" % alg,
                            jwt.encode({"sub": "monitor-7"}, key, algorithm=alg, headers={"kid": kids[alg]}),
                            [[alg, "jwks", "jwks"]]))
    rows.append(row("PyJWT PS384 picked from the key set by kid",
                    jwt.encode({"sub": "x"}, keys["rsa-2"], algorithm="PS384", headers={"kid": "rsa-2"}),
                    [["PS384", "jwks", "jwks"]]))
    rows.append(row("PyJWT EdDSA with an Ed448 key from the key set",
                    jwt.encode({"sub": "x"}, keys["ed448"], algorithm="EdDSA", headers={"kid": "ed-448"}),
                    [["EdDSA", "jwks", "jwks"]]))
    rows.append(row("a key set tries every fitting key without kid",
                    jwt.encode({"sub": "x"}, keys["rsa-2"], algorithm="RS256"), [["RS256", "jwks", "jwks"]]))
    rows.append(row("kid of a key that fits another algorithm",
                    jwt.encode({"sub": "x"}, keys["rsa-2"], algorithm="RS256", headers={"kid": "ec-256"}),
                    [["RS256", "jwks", "jwks"]], "HeaderValueUnexpected", message="cannot be used for RS256"))
    rows.append(row("kid not in the key set",
                    jwt.encode({"sub": "x"}, keys["rsa"], algorithm="RS256", headers={"kid": "rsa-9"}),
                    [["RS256", "jwks", "jwks"]], "HeaderValueUnexpected", message="kid\" \"rsa-9\""))
    rows.append(row("a JWK's alg limits its key",
                    jwt.encode({"sub": "x"}, keys["rsa"], algorithm="PS256", headers={"kid": "rsa-1"}),
                    [["PS256", "jwks", "jwks"]], "HeaderValueUnexpected", message="is for RS256 only"))
    rows.append(row("kid that is not a string", raw_token(b'{"alg":"RS256","kid":7}', b'{}', "RS256", keys["rsa"]),
                    [["RS256", "jwks", "jwks"]], "HeaderValueUnexpected", message="\"kid\" is not a string"))

    hs = secrets["hs256"]
    hs_allow = [["HS256", "hs256", "secret"]]
    good = jwt.encode({"sub": "monitor-7", "exp": NOW + 60}, hs, algorithm="HS256")
    h, p, s = good.split(".")

    def hs_token(header, payload, key=hs, alg="HS256"):
        return raw_token(header, payload, alg, key)

    def bad(name, token, expect, message="", allow=hs_allow, **extra):
        rows.append(row(name, token, allow, expect, message=message, **extra))

    bad("two segments", h + "." + p, "Unknown", "three segments")
    bad("four segments", good + ".e30", "Unknown", "three segments")
    bad("padding", h + "=." + p + "." + s, "Unknown", "header segment is not unpadded base64url")
    bad("a blank in the payload", h + "." + p[:5] + " " + p[5:] + "." + s, "Unknown", "character 0x20")
    bad("standard alphabet", h + "." + p + "." + "+" + s[1:], "Unknown", "signature segment")
    stray = b64(b'{"alg":"HS256" }')  # 16 bytes: the last of 22 characters carries 4 unused bits
    stray = stray[:-1] + "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"[
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_".index(stray[-1]) | 1]
    bad("stray bits after the last byte", stray + "." + p + "." + s, "Unknown", "bits beyond the last byte")
    bad("a segment ending in the middle of a byte", h + "A." + p + "." + s, "Unknown", "middle of a byte")
    bad("header not JSON", hs_token(b'{"alg":"HS256"', b'{}'), "Unknown", "header is not JSON")
    bad("payload an array", hs_token(b'{"alg":"HS256"}', b'["sub"]'), "Unknown", "payload is not a JSON object")
    bad("alg twice in the header", hs_token(b'{"alg":"HS256","alg":"none"}', b'{}'), "Unknown",
        "header has the member \"alg\" more than once")
    bad("a name twice in the payload, once escaped", hs_token(b'{"alg":"HS256"}', b'{"sub":"a","s\\u0075b":"b"}'),
        "Unknown", "payload has the member \"sub\" more than once")
    nested = b'{"a":{"x":1},"b":{"x":[{"x":2}]},"c":"}:{","d":"x\\\\","e":"\\":{\\""}'
    rows.append(row("names in nested objects and strings are no duplicates",
                    hs_token(b'{"alg":"HS256"}', nested), hs_allow))
    rows.append(row("a header spaced and ordered as its sender liked",
                    hs_token(b'{ "typ" : "JWT",\r\n  "alg" : "HS256" }', b'{"sub":"x", "exp":1700000060}'),
                    hs_allow))
    bad("no alg", hs_token(b'{"typ":"JWT"}', b'{}'), "HeaderParameterMissing")
    bad("alg in lower case", hs_token(b'{"alg":"hs256"}', b'{}'), "HeaderValueUnexpected")
    bad("alg None as Token writes it", hs_token(b'{"alg":"None"}', b'{}'), "HeaderValueUnexpected")
    bad("alg not allowed", jwt.encode({}, secrets["hs384"], algorithm="HS384"), "HeaderValueUnexpected",
        "HS384 is not an allowed algorithm")
    none = raw_token(b'{"alg":"none"}', b'{"sub":"x"}', "none", None)
    bad("none refused by default", none, "HeaderValueUnexpected", "\"none\"")
    rows.append(row("none when allowed", none, [], none=True))
    bad("none with a signature", none + s, "SignatureInvalid", allow=[], none=True)
    rsa_pem = keys["rsa"].public_key().public_bytes(serialization.Encoding.PEM,
                                                    serialization.PublicFormat.SubjectPublicKeyInfo)
    confused = hs_token(b'{"alg":"HS256"}', b'{"sub":"admin"}', key=rsa_pem)
    bad("HS256 made with the RSA public key as secret, RS256 allowed", confused, "HeaderValueUnexpected",
        allow=[["RS256", "rsa", "pem-public"]])
    bad("HS256 made with the RSA public key as secret, both allowed", confused, "SignatureInvalid",
        allow=[["RS256", "rsa", "pem-public"], ["HS256", "hs256", "secret"]])
    bad("an RSA key offered for ES256", jwt.encode({}, keys["ec-p256"], algorithm="ES256"),
        "HeaderValueUnexpected", "RSA key cannot be used for ES256", allow=[["ES256", "rsa", "pem-public"]])
    bad("a P-384 key offered for ES256", jwt.encode({}, keys["ec-p256"], algorithm="ES256"),
        "HeaderValueUnexpected", "P-384 key cannot be used", allow=[["ES256", "ec-p384", "jwk-public"]])
    short = jwt.encode({"sub": "x"}, b"secret", algorithm="HS256")
    bad("short HMAC key refused", short, "HeaderValueUnexpected", "of 6 bytes is shorter than the 32",
        allow=[["HS256", "short", "secret"]])
    rows.append(row("short HMAC key when allowed", short, [["HS256", "short", "secret"]], shortHmac=True))
    bad("HS512 key of 40 bytes refused", jwt.encode({}, secrets["hs512-short"], algorithm="HS512"),
        "HeaderValueUnexpected", "of 40 bytes", allow=[["HS512", "hs512-short", "secret"]])
    bad("crit header", hs_token(b'{"alg":"HS256","crit":["exp"],"exp":1}', b'{}'), "HeaderValueUnexpected",
        "crit")
    bad("another key", jwt.encode({"sub": "x"}, secrets["hs-other"], algorithm="HS256"), "SignatureInvalid")
    bad("signature of the wrong length", h + "." + p + "." + s[:32], "SignatureInvalid")
    bad("a payload edited after signing", h + "." + b64(b'{"sub":"admin","exp":1700000060}') + "." + s,
        "SignatureInvalid")
    bad("expired and forged: the signature is checked first",
        jwt.encode({"exp": NOW - 100}, secrets["hs-other"], algorithm="HS256"), "SignatureInvalid")

    def timed(name, claims, expect, leeway=0, message="", **extra):
        bad(name, jwt.encode(claims, hs, algorithm="HS256"), expect, message, leeway=leeway, **extra)

    timed("exp equal to now", {"exp": NOW}, "TokenExpired", message="\"exp\" is 1700000000")
    timed("exp one second ahead", {"exp": NOW + 1}, "NoError")
    timed("exp past but within the leeway", {"exp": NOW - 59}, "NoError", leeway=60)
    timed("exp past by the leeway", {"exp": NOW - 60}, "TokenExpired", leeway=60)
    timed("fractional exp half a second ahead", {"exp": NOW + 0.5}, "NoError")
    timed("nbf ahead within the leeway", {"nbf": NOW + 60}, "NoError", leeway=60)
    timed("nbf ahead beyond the leeway", {"nbf": NOW + 61}, "TokenNotYetValid", leeway=60)
    timed("nbf equal to now", {"nbf": NOW}, "NoError")
    timed("iat in the future", {"iat": NOW + 5}, "TokenNotYetValid", message="\"iat\"")
    timed("iat in the past", {"iat": NOW - 5000}, "NoError")
    timed("a negative leeway counts as none", {"exp": NOW + 1}, "NoError", leeway=-100)
    timed("exp as text", {"exp": str(NOW + 60)}, "ClaimValueUnexpected", message="\"exp\" is not a number")
    timed("nbf as null", {"nbf": None}, "ClaimValueUnexpected")
    timed("expired and without a required claim: time comes first", {"exp": NOW - 1}, "TokenExpired",
          require=["jti"])
    claims = {"iss": "https://login.example.com/", "aud": ["archive", "dispatch"], "sub": "monitor-7"}
    checked = jwt.encode(claims, hs, algorithm="HS256")
    bad("required claim missing", checked, "ClaimMissing", "no \"exp\"", require=["sub", "exp"])
    bad("required claim present though null", jwt.encode({"exp": NOW + 9, "jti": None}, hs, algorithm="HS256"),
        "NoError", require=["jti"])
    bad("an empty issuer list checks nothing", checked, "NoError", issuer=[])
    bad("issuer not accepted", checked, "IssuerUnknown", issuer=["https://login.example.org/"])
    bad("no issuer", jwt.encode({"sub": "x"}, hs, algorithm="HS256"), "IssuerUnknown", "names no issuer",
        issuer=["https://login.example.com/"])
    bad("issuer unknown before audience wrong", checked, "IssuerUnknown", issuer=["x"], audience="x")
    bad("audience not in the array", checked, "ClaimValueUnexpected", "\"aud\"", audience="billing")
    bad("audience asked for, none in the token", jwt.encode({"sub": "x"}, hs, algorithm="HS256"),
        "ClaimValueUnexpected", audience="dispatch")
    bad("audience string differs in case", jwt.encode({"aud": "Dispatch"}, hs, algorithm="HS256"),
        "ClaimValueUnexpected", audience="dispatch")
    bad("subject differs", checked, "ClaimValueUnexpected", "\"sub\"", subject="monitor-8")
    for typ, expect in (("jwt", "NoError"), ("application/JWT", "NoError"), ("at+jwt", "HeaderValueUnexpected")):
        bad("typ %s against JWT" % typ, jwt.encode({}, hs, algorithm="HS256", headers={"typ": typ}), expect,
            type="JWT")
    bad("typ absent passes the type check", hs_token(b'{"alg":"HS256"}', b'{}'), "NoError", type="at+jwt")
    bad("typ not a string", hs_token(b'{"alg":"HS256","typ":1}', b'{}'), "HeaderValueUnexpected", type="JWT")
    return rows


# --- Key cases ----------------------------------------------------------------------------------

def make_key_cases(keys):
    rsa_key, p256 = keys["rsa"], keys["ec-p256"]
    cases = []

    def case(name, expect, pem_text=None, jwk=None, can_sign=None, kid=None, alg=None, signer=None):
        """A key read as expected must verify "token", which PyJWT signed with `signer` and `alg`."""
        entry = {"name": name, "expect": expect}
        if alg is not None:
            entry["alg"] = alg
            entry["token"] = jwt.encode({"sub": name}, signer, algorithm=alg)
        if pem_text is not None:
            entry["pem"] = pem_text
        if jwk is not None:
            entry["jwk"] = jwk
        if can_sign is not None:
            entry["canSign"] = can_sign
        if kid is not None:
            entry["kid"] = kid
        cases.append(entry)

    ec_params = p256.private_bytes(serialization.Encoding.PEM, serialization.PrivateFormat.TraditionalOpenSSL,
                                   serialization.NoEncryption()).decode()
    case("traditional EC key after an EC PARAMETERS block", "ok",
         "-----BEGIN EC PARAMETERS-----\nBggqhkjOPQMBBw==\n-----END EC PARAMETERS-----\n" + ec_params, can_sign=True,
         alg="ES256", signer=p256)
    case("SubjectPublicKeyInfo of Ed448 cannot sign", "ok", pem(keys["ed448"].public_key(), False), can_sign=False,
         alg="EdDSA", signer=keys["ed448"])
    case("PKCS #8 of P-521 signs", "ok", pem(keys["ec-p521"], True), can_sign=True, alg="ES512",
         signer=keys["ec-p521"])
    case("encrypted PKCS #8", "encrypted", rsa_key.private_bytes(
        serialization.Encoding.PEM, serialization.PrivateFormat.PKCS8,
        serialization.BestAvailableEncryption(b"pass")).decode())
    case("encrypted traditional RSA key", "cannot be read", rsa_key.private_bytes(
        serialization.Encoding.PEM, serialization.PrivateFormat.TraditionalOpenSSL,
        serialization.BestAvailableEncryption(b"pass")).decode())
    case("RSA key of 1024 bits", "1024 bits", pem(rsa.generate_private_key(65537, 1024), True))
    case("DSA key", "DSA", pem(dsa.generate_private_key(2048), True))
    case("X25519 key", "X25519", pem(x25519.X25519PrivateKey.generate(), True))
    case("secp256k1 key", "secp256k1", pem(ec.generate_private_key(ec.SECP256K1()), True))
    case("no PEM block", "no PEM block", "MIIBIjANBgkqhkiG9w0BAQEFAAOCAQ8AMIIBCgKCAQEA")
    case("damaged PEM body", "cannot be read", pem(p256.public_key(), False).replace("M", "%", 3))

    public, private = jwk_of(p256, kid="ec-1")
    case("EC JWK", "ok", jwk=public, can_sign=False, kid="ec-1", alg="ES256", signer=p256)
    case("EC JWK with d", "ok", jwk=private, can_sign=True, kid="ec-1", alg="ES256", signer=p256)
    off_curve = dict(public, y=b64(bytes(31) + b"\x01"))
    case("EC point off the curve", "not a point of P-256", jwk=off_curve)
    other = jwk_of(ec.generate_private_key(ec.SECP256R1()))[1]
    case("EC d of another key", "\"d\" does not belong", jwk=dict(public, d=other["d"]))
    case("EC x too long", "\"x\" has 33 bytes, more than the 32", jwk=dict(public, x=b64(b"\x00" + unb64(public["x"]))))
    p521 = keys["ec-p521"]
    while p521.public_key().public_numbers().x.bit_length() > 512:  # a top byte of zero, left out below
        p521 = ec.generate_private_key(ec.SECP521R1())
    short_x = dict(jwk_of(p521)[0], x=uint(p521.public_key().public_numbers().x))
    case("P-521 x without its leading zero byte", "ok", jwk=short_x, can_sign=False, alg="ES512",
         signer=p521)
    ed_public, ed_private = jwk_of(keys["ed25519"])
    case("Ed25519 d of another key", "\"d\" does not belong to \"x\"",
         jwk=dict(ed_public, d=jwk_of(ed25519.Ed25519PrivateKey.generate())[1]["d"]))
    case("Ed25519 x of 31 bytes", "\"x\" has 31 bytes", jwk=dict(ed_public, x=b64(unb64(ed_public["x"])[:31])))
    case("X25519 JWK", "\"crv\"", jwk={"kty": "OKP", "crv": "X25519", "x": ed_public["x"]})
    rsa_public, rsa_private = jwk_of(rsa_key, kid="r", alg="RS256")
    case("RSA JWK with alg", "ok", jwk=rsa_public, can_sign=False, kid="r", alg="RS256", signer=rsa_key)
    case("RSA JWK with d only", "ok", jwk={k: rsa_private[k] for k in ("kty", "n", "e", "d")}, can_sign=True,
         alg="PS512", signer=rsa_key)
    case("RSA JWK without e", "\"e\" is missing", jwk={"kty": "RSA", "n": rsa_public["n"]})
    case("RSA JWK with p but not q", "\"q\" is missing", jwk={k: v for k, v in rsa_private.items() if k != "q"})
    case("RSA JWK with an encryption alg", "\"alg\" is not a JWS", jwk=dict(rsa_public, alg="RSA-OAEP"))
    case("RSA JWK marked ES256", "\"alg\" does not fit", jwk=dict(rsa_public, alg="ES256"))
    case("RSA JWK for encryption", "\"use\"", jwk=dict(rsa_public, use="enc"))
    case("RSA JWK for wrapping only", "\"key_ops\"", jwk=dict(rsa_public, key_ops=["wrapKey"]))
    case("RSA JWK with padding in n", "\"n\" is not base64url", jwk=dict(rsa_public, n=rsa_public["n"] + "="))
    case("oct JWK", "ok", jwk={"kty": "oct", "k": b64(b"k" * 32), "kid": "h"}, can_sign=True, kid="h",
         alg="HS256", signer=b"k" * 32)
    case("kid a number", "\"kid\"", jwk={"kty": "oct", "k": "AA", "kid": 1})
    case("unknown kty", "\"kty\"", jwk={"kty": "DSA"})
    case("no kty", "\"kty\" is missing", jwk={"k": "AA"})
    return cases


def make_jwks(keys):
    entries = [jwk_of(keys["rsa"], "rsa-1", "RS256")[0], jwk_of(keys["rsa-2"], "rsa-2")[0],
               jwk_of(keys["ec-p256"], "ec-256")[0], jwk_of(keys["ec-p384"], "ec-384")[0],
               jwk_of(keys["ec-p521"], "ec-521")[0], jwk_of(keys["ed25519"], "ed-1")[0],
               jwk_of(keys["ed448"], "ed-448")[0]]
    for entry in entries:
        entry["use"] = "sig"
    usable = len(entries)
    entries += [dict(jwk_of(keys["rsa-2"], "enc-1")[0], use="enc"),
                {"kty": "OKP", "crv": "X25519", "kid": "x-1", "x": b64(bytes(32))},
                {"kty": "EC", "crv": "secp256k1", "kid": "k1", "x": b64(bytes(32)), "y": b64(bytes(32))},
                "not a key"]
    return {"keys": entries}, usable, len(entries) - usable


def main():
    keys, secrets = make_keys()
    entries = {}
    for name, key in keys.items():
        entries[name] = key_entry(key, traditional=not name.startswith("ed"))
    for name, secret in secrets.items():
        entries[name] = {"secret": b64(secret), "jwk-private": {"kty": "oct", "k": b64(secret)}}
    for name, jwk in RFC_KEYS.items():
        public = {k: v for k, v in jwk.items() if k in ("kty", "crv", "n", "e", "x", "y")}
        entries[name] = {"jwk-private": jwk, "jwk-public": public}
    jwks, usable, skipped = make_jwks(keys)

    outputs = {
        "jws_keys.json": {"keys": entries, "jwks": jwks, "usable": usable, "skipped": skipped},
        "jws_tokens.json": make_tokens(keys, secrets),
        "jws_key_cases.json": make_key_cases(keys),
    }
    for name, data in outputs.items():
        with open(os.path.join(HERE, name), "w", encoding="utf-8") as out:
            json.dump(data, out, indent=1, ensure_ascii=False)
            out.write("\n")


if __name__ == "__main__":
    main()
