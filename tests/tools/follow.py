"""Follows a run whose recorder is killed and resumed: follow.py VEX. One follower starts before the
run, one in its middle and one after its end. Each follower prints each committed frame once, in
order."""

import json
import os
import subprocess
import sys
import tempfile
import time
import unittest

VEX = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ""
PATIENCE = 60  # seconds; enough for a busy machine
FRAMES = 40


class FollowTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.document = os.path.join(folder.name, "run.vex")
        self.followers = []
        self.addCleanup(self.end_all)

    def end_all(self):
        for follower in self.followers:
            if follower.poll() is None:
                follower.kill()
            follower.communicate()

    def follow(self, count):
        self.followers += [subprocess.Popen([VEX, "follow", self.document, "--ndjson"], text=True,
                                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                           for _ in range(count)]

    def recorder(self, *more):
        return subprocess.Popen([VEX, "simulate", self.document, "--cycles", str(FRAMES), *more],
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def test_each_frame_is_printed_once_and_in_order(self):
        self.follow(3)
        for killed in range(3):
            recorder = self.recorder("--pace", "0.05", *(["--resume"] if killed else []))
            time.sleep(0.5)
            self.follow(1)
            recorder.kill()
            recorder.communicate()
            if not os.path.exists(self.document):  # the recorder was killed before it began
                self.skipTest("the machine is too busy")
        last = self.recorder("--resume", "--pace", "0.01")
        self.follow(1)
        self.assertEqual(last.wait(PATIENCE), 0)
        last.communicate()
        self.follow(1)
        for follower in self.followers:
            output, errors = follower.communicate(timeout=PATIENCE)
            self.assertEqual(follower.returncode, 0, errors)
            self.assertEqual([json.loads(line)["frame"] for line in output.splitlines()],
                             list(range(FRAMES)))

    def test_eight_followers_cost_a_recorder_no_commit(self):
        self.follow(8)
        recorder = self.recorder()
        _, errors = recorder.communicate(timeout=PATIENCE)
        self.assertEqual(recorder.returncode, 0, errors)
        for follower in self.followers:
            output, _ = follower.communicate(timeout=PATIENCE)
            self.assertEqual(len(output.splitlines()), FRAMES)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
