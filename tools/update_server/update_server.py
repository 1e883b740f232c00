#!/usr/bin/env python3
"""A web server for updates, with an authority of its own: for the tests and for long use of the program.

    update_server.py INSTALLER FOLDER PORT COMMAND ...

Makes an authority and signed copies of INSTALLER in FOLDER, answers on https://localhost:PORT while COMMAND runs, and
ends with its exit code. It plays the scenario whose name stands in FOLDER/scenario, and says so in FOLDER/playing;
FOLDER/requests lists the paths that were asked for, with what is accepted and by whom. Only the test environment trusts FOLDER/authority.der.
"""

import hashlib
import json
import shutil
import ssl
import subprocess
import sys
import threading
import time
from dataclasses import dataclass, field
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

NEWER = 701011700
OWN = 701001604
SILENCE = 120
FILE_LIMIT = 256 * 1024 * 1024
ELSEWHERE_OVER_HTTP = "http://localhost:9/"


def openssl(*arguments: str) -> None:
    subprocess.run(["openssl", *arguments], check=True, capture_output=True)


class Authority:
    """Certificates below one root, each with its key in a file of the same name."""

    def __init__(self, folder: Path, name: str) -> None:
        self.folder, self.name = folder, name
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", self.path("key"), "-out", self.path("pem"),
                "-days", "3650", "-subj", f"/CN=Update tests {name}")  # fmt: skip
        openssl("x509", "-in", self.path("pem"), "-outform", "der", "-out", self.path("der"))

    def path(self, suffix: str) -> str:
        return str(self.folder / f"{self.name}.{suffix}")

    def issue(self, name: str, subject: str, extensions: str, days: int = 3650) -> Path:
        certificate = self.folder / f"{name}.pem"
        request, extension_file = certificate.with_suffix(".csr"), certificate.with_suffix(".ext")
        extension_file.write_text(f"basicConstraints=CA:FALSE\n{extensions}\n")
        openssl("req", "-newkey", "rsa:2048", "-nodes", "-keyout", str(certificate.with_suffix(".key")), "-out",
                str(request), "-subj", f"/CN={subject}")  # fmt: skip
        openssl("x509", "-req", "-in", str(request), "-CA", self.path("pem"), "-CAkey", self.path("key"),
                "-CAcreateserial", "-days", str(days), "-extfile", str(extension_file), "-out", str(certificate))  # fmt: skip
        return certificate

    def sign(self, certificate: Path, program: bytes, file: Path) -> bytes:
        unsigned = file.with_suffix(".unsigned")
        unsigned.write_bytes(program)
        subprocess.run(["osslsigncode", "sign", "-certs", str(certificate), "-key", str(certificate.with_suffix(".key")),
                        "-ac", self.path("pem"), "-h", "sha256", "-in", str(unsigned), "-out", str(file)],
                       check=True, capture_output=True)  # fmt: skip
        return file.read_bytes()


def as_library(program: bytes) -> bytes:
    """The same image as a DLL, which no process can be started from."""
    image = bytearray(program)
    characteristics = int.from_bytes(image[0x3C:0x40], "little") + 22
    image[characteristics + 1] |= 0x20
    return bytes(image)


def make_installers(folder: Path, authority: Authority, stranger: Authority, program: Path) -> dict[str, bytes]:
    signing = "extendedKeyUsage=codeSigning\nkeyUsage=digitalSignature"
    signers = {
        "good": (authority, authority.issue("vendor", "Zelmark", signing)),
        "other_publisher": (authority, authority.issue("other", "Zelmark Ltd.", signing)),
        "unknown_authority": (stranger, stranger.issue("impostor", "Zelmark", signing)),
    }
    installers = {"unsigned": program.read_bytes()}
    for name, (issuer, certificate) in signers.items():
        installers[name] = issuer.sign(certificate, installers["unsigned"], folder / f"{name}.exe")
    vendor = signers["good"][1]
    installers["not_a_program"] = authority.sign(vendor, as_library(installers["unsigned"]), folder / "library.exe")
    tampered = bytearray(installers["good"])
    tampered[0x600] ^= 1
    installers["tampered"] = bytes(tampered)
    return installers


def make_certificates(authority: Authority, stranger: Authority) -> dict[str, Path]:
    """The server's certificates; scenarios of these names use them."""
    here = "subjectAltName=DNS:localhost"
    return {
        "good": authority.issue("server", "localhost", here),
        "server_of_another_name": authority.issue("wrong", "localhost", "subjectAltName=DNS:other.example"),
        "server_with_an_expired_certificate": authority.issue("expired", "localhost", here, days=-1),
        "server_of_an_unknown_authority": stranger.issue("pretender", "localhost", here),
    }


@dataclass
class Answer:
    body: bytes = b""
    status: int = 200
    """0: there is no head."""
    announced: int | None = None
    """The length that the head tells; without it, the body's; below 0: none."""
    stalls: bool = False
    location: str | None = None


@dataclass
class Scenario:
    manifest: Answer
    installer: Answer = field(default_factory=Answer)
    redirects: int = 0
    """How often the question for the manifest is sent on."""


def manifest(version: int, **members: object) -> Answer:
    return Answer(json.dumps({"Version": version, **members}).encode())


def offer(content: bytes, **changes: object) -> Answer:
    promised = {"Url": "/setup.exe", "Sha256": hashlib.sha256(content).hexdigest(), "Size": len(content)}
    return manifest(NEWER, Installer={**promised, **changes})


def make_scenarios(installers: dict[str, bytes]) -> dict[str, Scenario]:
    good = installers["good"]
    announcements = {
        "Promo": {"Title": "[[[bSpring [offer]]]]: 20 % off", "Url": "https://www.zelmark.example/spring",
                  "ExpiresOn": "2199-12-31T00:00:00"},
        "LanguagePacks": [{"Name": "Deutsch", "Locale": "de", "Version": NEWER, "ClientVersion": OWN, "Credits": []}],
    }  # fmt: skip
    manifests = {
        "same_version": Answer(offer(good).body.replace(b"%d" % NEWER, b"%d" % OWN)),
        "older": Answer(offer(good).body.replace(b"%d" % NEWER, b"1")),
        "announcements": manifest(OWN, **announcements),
        "manifest_404": Answer(b"{}", 404),
        "manifest_500": Answer(b"{}", 500),
        "manifest_empty": Answer(),
        "manifest_truncated": Answer(b'{"Version":%d' % NEWER, announced=1000),
        "manifest_dropped": Answer(status=0),
        "manifest_silent": Answer(status=0, stalls=True),
        "manifest_stalled": Answer(b'{"Version":', announced=1000, stalls=True),
        "manifest_oversized": Answer(b'{"Version":%d,"x":"' % NEWER + b"x" * 600_000 + b'"}', announced=-1),
        "manifest_malformed": Answer(b"<html>It works!</html>"),
        "manifest_of_wrong_kind": manifest(NEWER, LanguagePacks="de"),
        "manifest_elsewhere_over_http": Answer(status=302, location=ELSEWHERE_OVER_HTTP),
        "installer_over_http": offer(good, Url="http://localhost/setup.exe"),
        "wrong_digest": offer(good, Sha256="00" * 32),
        "wrong_size": offer(good, Size=len(good) + 1),
    }
    downloads = {
        "installer_404": Answer(status=404),
        "installer_truncated": Answer(good[:1000], announced=len(good)),
        "installer_oversized": Answer(announced=FILE_LIMIT + 1),
        "installer_stalled": Answer(good[:1000], announced=len(good), stalls=True),
        "installer_elsewhere_over_http": Answer(status=302, location=ELSEWHERE_OVER_HTTP),
    }
    return {
        **{name: Scenario(answer, Answer(good)) for name, answer in manifests.items()},
        **{name: Scenario(offer(good), answer) for name, answer in downloads.items()},
        **{name: Scenario(offer(content), Answer(content)) for name, content in installers.items()},
        "nine_redirects": Scenario(manifest(NEWER), redirects=9),
        "ten_redirects": Scenario(manifest(NEWER), redirects=10),
    }


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server: "Server"

    def log_message(self, format: str, *args: object) -> None:
        pass

    def do_GET(self) -> None:
        with self.server.requests.open("a") as requests:
            # Wine's library accepts everything first, and then what it is told to.
            accepted = self.headers.get_all("Accept", ["nothing"])[-1]
            requests.write(f"{self.path} {accepted} {self.headers['User-Agent']}\n")
        scenario = self.server.scenario
        redirected = int(self.path.removeprefix("/sent/")) if self.path.startswith("/sent/") else 0
        if self.path == "/setup.exe":
            self.answer(scenario.installer)
        elif redirected < scenario.redirects:
            self.answer(Answer(status=302, location=f"/sent/{redirected + 1}"))
        else:
            self.answer(scenario.manifest)

    def answer(self, answer: Answer) -> None:
        announced = len(answer.body) if answer.announced is None else answer.announced
        if answer.status != 0:
            self.send_response(answer.status)
            if announced >= 0:
                self.send_header("Content-Length", str(announced))
            if answer.location:
                self.send_header("Location", answer.location)
            self.end_headers()
        self.wfile.write(answer.body)
        if answer.stalls:
            time.sleep(SILENCE)
        self.close_connection = answer.status == 0 or answer.announced is not None


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, port: int, requests: Path, scenario: Scenario, certificate: Path) -> None:
        super().__init__(("localhost", port), Handler)
        self.requests, self.scenario = requests, scenario
        self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.context.load_cert_chain(certificate, certificate.with_suffix(".key"))
        self.socket = self.context.wrap_socket(self.socket, server_side=True, do_handshake_on_connect=False)

    def handle_error(self, request: object, client_address: object) -> None:
        pass  # clients go away as they like


def play_scenarios(folder: Path, port: int, scenarios: dict[str, Scenario], certificates: dict[str, Path]) -> None:
    """Plays what is asked for, each on a server of its own; "nobody_listens" on none."""
    asked, playing = folder / "scenario", ""
    server = None
    while True:
        time.sleep(0.02)
        wanted = asked.read_text() if asked.exists() else ""
        if wanted == playing:
            continue
        if server:
            server.shutdown()
            server.server_close()
            server = None
        if wanted != "nobody_listens":
            scenario = scenarios.get(wanted, scenarios["good"])
            certificate = certificates.get(wanted, certificates["good"])
            try:
                server = Server(port, folder / "requests", scenario, certificate)
            except OSError:
                continue  # the port is in use for a moment
            threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.02}, daemon=True).start()
        playing = wanted
        (folder / "playing").write_text(playing)


def main() -> int:
    program, folder, port = Path(sys.argv[1]), Path(sys.argv[2]), int(sys.argv[3])
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    authority, stranger = Authority(folder, "authority"), Authority(folder, "stranger")
    scenarios = make_scenarios(make_installers(folder, authority, stranger, program))
    certificates = make_certificates(authority, stranger)
    threading.Thread(target=play_scenarios, args=(folder, port, scenarios, certificates), daemon=True).start()
    return subprocess.run(sys.argv[4:], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
