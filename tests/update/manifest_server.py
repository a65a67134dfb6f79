"""An HTTP server on loopback that answers as its paths say; prints its port once it listens. With a
certificate and its key as arguments it speaks HTTPS."""

import http.server
import json
import ssl
import sys
import time

GOOD = json.dumps({"version": " 2.0 ", "url": "https://x.example/get", "notes": "Faster."}).encode()
OLD = json.dumps({"version": "0.9", "url": "https://x.example/get"}).encode()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        name = self.path.strip("/")
        if name == "hang":
            time.sleep(120)
        elif name == "endless":
            self.endless()
        elif name == "redirect":
            self.redirect("/good")
        elif name == "redirect-away":
            self.redirect("http://updates.example/good")
        elif name == "cut-off":
            self.answer(200, GOOD, length=len(GOOD) + 100)
        elif name.isdigit():
            self.answer(int(name), GOOD)
        else:
            self.answer(200, {"good": GOOD, "old": OLD, "empty": b"{}"}.get(name, b"<html>garbage</html>"))

    def answer(self, status, body, length=None):
        self.send_response(status)
        self.send_header("Content-Length", str(length or len(body)))
        self.send_header("Cache-Control", "max-age=3600")
        self.end_headers()
        self.wfile.write(body)
        self.close_connection = True

    def redirect(self, target):
        self.send_response(302)
        self.send_header("Location", target)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def endless(self):
        self.send_response(200)
        self.end_headers()
        try:
            while True:
                self.wfile.write(b" " * 65536)
        except OSError:
            self.close_connection = True

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
if len(sys.argv) == 3:
    secrets = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    secrets.load_cert_chain(sys.argv[1], sys.argv[2])
    server.socket = secrets.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
print(server.server_address[1], flush=True)
server.serve_forever()
