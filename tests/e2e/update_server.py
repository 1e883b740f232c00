#!/usr/bin/env python3
"""A web server for the update tests, with an authority of its own.

    update_server.py INSTALLER FOLDER PORT COMMAND ...

Makes an authority and signed copies of INSTALLER in FOLDER, answers on https://localhost:PORT while COMMAND runs, and
ends with its exit code. What is answered is the scenario whose name stands in FOLDER/scenario; FOLDER/requests lists the
paths that were asked for. Only the test environment trusts FOLDER/authority.der.
"""

import hashlib
import json
import shutil
import ssl
import subprocess
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

NEWER = 701011700
OWN = 701001604
SILENCE = 120
FILE_LIMIT = 256 * 1024 * 1024


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

    def issue(self, name: str, subject: str, extensions: str) -> Path:
        certificate = self.folder / f"{name}.pem"
        request, extension_file = certificate.with_suffix(".csr"), certificate.with_suffix(".ext")
        extension_file.write_text(f"basicConstraints=CA:FALSE\n{extensions}\n")
        openssl("req", "-newkey", "rsa:2048", "-nodes", "-keyout", str(certificate.with_suffix(".key")), "-out",
                str(request), "-subj", f"/CN={subject}")  # fmt: skip
        openssl("x509", "-req", "-in", str(request), "-CA", self.path("pem"), "-CAkey", self.path("key"),
                "-CAcreateserial", "-days", "3650", "-extfile", str(extension_file), "-out", str(certificate))  # fmt: skip
        return certificate

    def sign(self, certificate: Path, program: Path, signed: Path) -> None:
        subprocess.run(["osslsigncode", "sign", "-certs", str(certificate), "-key", str(certificate.with_suffix(".key")),
                        "-ac", self.path("pem"), "-h", "sha256", "-in", str(program), "-out", str(signed)],
                       check=True, capture_output=True)  # fmt: skip


def make_installers(folder: Path, authority: Authority, program: Path) -> dict[str, bytes]:
    stranger = Authority(folder, "stranger")
    signing = "extendedKeyUsage=codeSigning\nkeyUsage=digitalSignature"
    signers = {
        "good": (authority, authority.issue("vendor", "Zelmark", signing)),
        "other_publisher": (authority, authority.issue("other", "Zelmark Ltd.", signing)),
        "unknown_authority": (stranger, stranger.issue("impostor", "Zelmark", signing)),
    }
    installers = {"unsigned": program.read_bytes()}
    for name, (issuer, certificate) in signers.items():
        signed = folder / f"{name}.exe"
        signed.unlink(missing_ok=True)
        issuer.sign(certificate, program, signed)
        installers[name] = signed.read_bytes()
    tampered = bytearray(installers["good"])
    tampered[0x600] ^= 1
    installers["tampered"] = bytes(tampered)
    return installers


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    folder: Path
    installers: dict[str, bytes]

    def log_message(self, format: str, *args: object) -> None:
        pass

    def answer(self, body: bytes, status: int = 200, announced: int | None = None) -> None:
        self.send_response(status)
        self.send_header("Content-Length", str(len(body) if announced is None else announced))
        self.end_headers()
        self.wfile.write(body)

    def answer_manifest(self, version: int, **members: object) -> None:
        self.answer(json.dumps({"Version": version, **members}).encode())

    def do_GET(self) -> None:
        with (self.folder / "requests").open("a") as requests:
            requests.write(self.path + "\n")
        scenario = (self.folder / "scenario").read_text().strip()
        if self.path.startswith("/setup.exe"):
            self.installer(scenario)
        else:
            self.manifest(scenario)

    def manifest(self, scenario: str) -> None:
        content = self.installers.get(scenario, self.installers["good"])
        promised = {"Url": "/setup.exe", "Sha256": hashlib.sha256(content).hexdigest(), "Size": len(content)}
        if scenario == "wrong_digest":
            promised["Sha256"] = "00" * 32
        elif scenario == "wrong_size":
            promised["Size"] = len(content) + 1
        elif scenario == "installer_over_http":
            promised["Url"] = "http://localhost/setup.exe"
        if scenario in ("manifest_404", "manifest_500"):
            self.answer(b"{}", int(scenario[-3:]))
        elif scenario == "manifest_empty":
            self.answer(b"")
        elif scenario == "manifest_truncated":
            self.answer(b'{"Version":%d' % NEWER, announced=1000)
            self.close_connection = True
        elif scenario == "manifest_stalled":
            self.answer(b'{"Version":', announced=1000)
            time.sleep(SILENCE)
        elif scenario == "manifest_oversized":
            self.answer(b'{"Version":%d,"x":"' % NEWER + b"x" * 600_000 + b'"}')
        elif scenario == "manifest_malformed":
            self.answer(b"<html>It works!</html>")
        elif scenario == "manifest_of_wrong_kind":
            self.answer_manifest(NEWER, LanguagePacks="de")
        elif scenario == "same_version":
            self.answer_manifest(OWN, Installer=promised)
        elif scenario == "older":
            self.answer_manifest(1, Installer=promised)
        elif scenario == "no_installer":
            self.answer_manifest(NEWER)
        else:
            self.answer_manifest(NEWER, Installer=promised)

    def installer(self, scenario: str) -> None:
        content = self.installers.get(scenario, self.installers["good"])
        if scenario == "installer_404":
            self.answer(b"", 404)
        elif scenario == "installer_truncated":
            self.answer(content[:1000], announced=len(content))
            self.close_connection = True
        elif scenario == "installer_oversized":
            self.answer(b"", announced=FILE_LIMIT + 1)
        elif scenario == "installer_stalled":
            self.answer(content[:1000], announced=len(content))
            time.sleep(SILENCE)
        else:
            self.answer(content)


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request: object, client_address: object) -> None:
        pass  # clients go away as they like


def serve(folder: Path, port: int, certificate: Path) -> None:
    server = Server(("localhost", port), Handler)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, certificate.with_suffix(".key"))
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    threading.Thread(target=server.serve_forever, daemon=True).start()


def main() -> int:
    program, folder, port = Path(sys.argv[1]), Path(sys.argv[2]), int(sys.argv[3])
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    authority = Authority(folder, "authority")
    Handler.folder = folder
    Handler.installers = make_installers(folder, authority, program)
    serve(folder, port, authority.issue("server", "localhost", "subjectAltName=DNS:localhost"))
    return subprocess.run(sys.argv[4:], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
