"""Tests 'vex follow --serve' with requests like those of browsers: serve.py VEX. Exits with 77 if
the module that serves pages was not built."""

import contextlib
import http.client
import json
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

VEX = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ""
PATIENCE = 30  # seconds; enough for a busy machine


class Server:
    """A process of 'vex follow --serve'."""

    def __init__(self, document, *port):
        self.process = subprocess.Popen([VEX, "follow", document, "--serve", *port], text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.first = self.process.stdout.readline()
        found = re.search(r"http://127\.0\.0\.1:(\d+)/ until Ctrl-C$", self.first.strip())
        self.port = int(found.group(1)) if found else None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()

    def get(self, path="/", method="GET", headers=None, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
        connection.request(method, path, body=body, headers=headers or {})
        answer = connection.getresponse()
        content = answer.read()
        connection.close()
        return answer, content.decode()

    def page_data(self):
        answer, page = self.get()
        assert answer.status == 200, answer.status
        text = page.split('<script type="application/json" id="data">')[1].split("</script>")[0]
        return json.loads(text), page

    def end(self, number=signal.SIGINT):
        """Asks the server to end. Returns how long that took."""
        begun = time.monotonic()
        self.process.send_signal(number)
        self.rest = self.process.communicate(timeout=PATIENCE)
        return time.monotonic() - begun


class Viewer(threading.Thread):
    """Listens to the events and keeps the number of frames in each."""

    def __init__(self, port, path="/events"):
        super().__init__(daemon=True)
        self.connection = http.client.HTTPConnection("127.0.0.1", port, timeout=PATIENCE)
        self.connection.request("GET", path)
        self.answer = self.connection.getresponse()
        self.frames = []
        self.ids = []
        self.last = None
        self.start()

    def run(self):
        with contextlib.suppress(OSError, http.client.HTTPException, ValueError):
            while line := self.answer.readline():
                if line.startswith(b"id: "):
                    self.ids.append(line[4:].strip().decode())
                if line.startswith(b"data: "):
                    self.last = json.loads(line[6:])
                    plates = [plate for document in self.last["documents"]
                              for plate in document.get("plates", [])]
                    self.frames.append(plates[0]["readings"]["frames"] if plates else None)

    def wait_for(self, frames):
        end = time.monotonic() + PATIENCE
        while not (self.frames and self.frames[-1] == frames):
            assert time.monotonic() < end, f"{frames} frames expected, seen {self.frames}"
            time.sleep(0.02)


class ServeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.document = os.path.join(folder.name, "run.vex")

    def record(self, *more):
        options = more or ("--cycles", "6")
        subprocess.run([VEX, "simulate", self.document, *options], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def recorder(self, *more):
        return subprocess.Popen([VEX, "simulate", self.document, "--cycles", "6", *more],
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def read(self):
        with open(self.document, "rb") as file:
            return file.read()

    def test_page_holds_the_run_and_listens_to_its_events(self):
        self.record()
        with Server(self.document) as server:
            data, page = server.page_data()
            self.assertNotIn("note", data)
            self.assertEqual(data["documents"][0]["plates"][0]["readings"]["frames"], 6)
            self.assertIn("connect-src 'self'", page)
            events = re.search(r'id="events">"([^"]+)"', page).group(1)
            viewer = Viewer(server.port, events)
            self.assertEqual(viewer.answer.headers["Content-Type"], "text/event-stream")
            viewer.join(1)
            self.assertIn(viewer.frames, ([], [6]))  # no event: the page has the latest data

    def test_viewers_see_a_run_that_is_killed_resumed_and_saved(self):
        with Server(self.document) as server:
            data, _ = server.page_data()
            self.assertIn("does not exist yet. The page shows the run as soon as it begins", data["note"])
            viewer = Viewer(server.port)
            recorder = self.recorder("--pace", "0.4")
            while not any(viewer.frames):
                time.sleep(0.02)
            recorder.kill()
            recorder.wait()
            resumed = self.recorder("--resume")
            resumed.wait()
            viewer.wait_for(6)
            seen = [frames for frames in viewer.frames if frames is not None]
            self.assertEqual(seen, sorted(seen))
            subprocess.run([VEX, "set", self.document, "comment=changed"], check=True,
                           stdout=subprocess.DEVNULL)
            end = time.monotonic() + PATIENCE
            while '"changed"' not in json.dumps(viewer.last):
                self.assertLess(time.monotonic(), end)
                time.sleep(0.05)
            viewer.wait_for(6)

    def test_only_the_loopback_address_listens(self):
        with Server(self.document) as server:
            with open("/proc/net/tcp", encoding="ascii") as table:
                sockets = [line.split()[1:4] for line in table.readlines()[1:]]
            port = f"{server.port:04X}"
            listening = [local for local, _, state in sockets
                         if local.endswith(":" + port) and state == "0A"]
            self.assertEqual(listening, [f"0100007F:{port}"])
            with open("/proc/net/tcp6", encoding="ascii") as table:
                self.assertNotIn(f":{port} 00000000000000000000000000000000:0000 0A", table.read())

    def test_requests_of_foreign_pages_are_refused(self):
        with Server(self.document) as server:
            for headers in ({"Host": "example.org"}, {"Host": f"example.org:{server.port}"},
                            {"Host": "127.0.0.1"}, {"Host": ""},
                            {"Origin": "http://example.org"}, {"Origin": "null"}):
                for path in ("/", "/events"):
                    answer, content = server.get(path, headers=headers)
                    self.assertEqual(answer.status, 403, headers)
                    self.assertEqual(content, "this page is for this machine alone\n")
            answer, _ = server.get(headers={"Host": f"localhost:{server.port}"})
            self.assertEqual(answer.status, 200)

    def test_server_only_reads(self):
        self.record()
        before = self.read()
        with Server(self.document) as server:
            for method in ("POST", "PUT", "DELETE", "PATCH", "OPTIONS"):
                answer, _ = server.get("/", method)
                self.assertGreaterEqual(answer.status, 400, method)
            for path in ("/run.vex", "/../run.vex", "/%2e%2e/run.vex", "/etc/passwd", "//"):
                answer, content = server.get(path)
                self.assertEqual(answer.status, 404, path)
                self.assertEqual(content, "nothing is here\n")
            server.end()
        self.assertEqual(self.read(), before)

    def test_port_in_use_is_said(self):
        with Server(self.document) as server:
            other = subprocess.run([VEX, "follow", self.document, "--serve", str(server.port)],
                                   text=True, capture_output=True, timeout=PATIENCE)
        self.assertEqual(other.returncode, 3)
        self.assertEqual(other.stderr, f"vex: cannot serve at port {server.port}: another program "
                         "uses it; give another port, or none to take one that is free\n")

    def test_missing_module_is_said(self):
        with tempfile.TemporaryDirectory(dir=os.path.dirname(VEX)) as folder:
            alone = os.path.join(folder, "vex")
            os.link(VEX, alone)
            follow = [alone, "follow", self.document, "--serve"]
            result = subprocess.run(follow, text=True, capture_output=True, timeout=PATIENCE)
            self.assertEqual(result.returncode, 3)
            self.assertIn("cannot serve pages: the module vex2serve.so is missing; to have it, build "
                          "vex with the package libcpp-httplib-dev installed", result.stderr)
            with open(os.path.join(folder, "vex2serve.so"), "w", encoding="ascii") as file:
                file.write("no module")
            result = subprocess.run(follow, text=True, capture_output=True, timeout=PATIENCE)
            self.assertEqual(result.returncode, 3)
            self.assertIn("vex2serve.so: ", result.stderr)
            self.assertIn("; install the package libcpp-httplib0.11", result.stderr)

    def test_port_that_was_asked_for_is_taken(self):
        with Server(self.document) as server:
            port = server.port
            server.end()
        with Server(self.document, str(port)) as again:
            self.assertEqual(again.port, port)

    def test_viewer_that_does_not_read_delays_nothing(self):
        self.record("--wells", "384", "--cycles", "40")
        with Server(self.document) as server:
            idle = socket.socket()
            idle.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1)
            idle.connect(("127.0.0.1", server.port))
            idle.sendall(f"GET /events HTTP/1.1\r\nHost: 127.0.0.1:{server.port}\r\n\r\n".encode())
            silent = socket.create_connection(("127.0.0.1", server.port))  # sends no request
            Viewer(server.port).connection.close()                         # disconnects at once
            viewers = [Viewer(server.port) for _ in range(40)]
            for viewer in viewers:
                viewer.wait_for(40)
            self.assertLess(server.end(), 5)
            idle.close()
            silent.close()

    def test_ctrl_c_ends_it_at_once(self):
        with Server(self.document) as server:
            viewer = Viewer(server.port)
            self.assertLess(server.end(), 3)
            self.assertEqual(server.process.returncode, 130)
            self.assertIn("run.vex: no longer followed; the next frame is 0\n", server.rest[1])
            viewer.join(5)
            self.assertFalse(viewer.is_alive())

    def test_complete_run_stays_until_ctrl_c(self):
        self.record()
        with Server(self.document) as server:
            self.assertIn("run.vex: the run is complete, 6 frames\n",
                          server.process.stdout.readline())
            viewer = Viewer(server.port)
            viewer.wait_for(6)
            end = time.monotonic() + PATIENCE
            while "sha256" not in viewer.last["documents"][0]:
                self.assertLess(time.monotonic(), end)
                time.sleep(0.05)
            server.end(signal.SIGTERM)
            self.assertEqual(server.process.returncode, 0)

    def test_browser_that_connects_again_gets_what_it_has_not_seen(self):
        self.record()
        with Server(self.document) as server:
            viewer = Viewer(server.port)
            viewer.wait_for(6)
            time.sleep(1.5)
            newest = viewer.ids[-1]
            connection = http.client.HTTPConnection("127.0.0.1", server.port, timeout=PATIENCE)
            connection.request("GET", "/events?seen=1", headers={"Last-Event-ID": newest})
            self.assertEqual(connection.getresponse().readline(), b":\n")  # only a heartbeat
            connection.close()


if __name__ == "__main__":
    if not os.path.exists(os.path.join(os.path.dirname(VEX), "vex2serve.so")):
        print("skipped: the module vex2serve.so was not built")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
