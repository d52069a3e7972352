"""Batches: whatever the cuts and whatever is killed, joined lines are those of the program's own run."""
import concurrent.futures
import contextlib
import fcntl
import filecmp
import glob
import importlib.util
import io
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import nadir
from nadir import _program
from nadir.batch import __main__ as shell
from nadir.batch import _cuts, _progress, _work, run

RENDERED = 6


def setUpModule():
    global folder, walk
    folder = tempfile.mkdtemp()
    walk = os.path.join(folder, "walk")
    _program.run("synth", walk, "--frames", RENDERED, "--size", "160x120", "--no-truth-pictures", "--height", 3500)


def tearDownModule():
    shutil.rmtree(folder)


def picture(recording, side, frame):
    return os.path.join(recording, side, f"{frame:06}.png")


def lengthen(recording, frames):
    """The rendered frames over and over, under numbers of their own."""
    for side in ("left", "right"):
        os.makedirs(os.path.join(recording, side), exist_ok=True)
        for frame in range(frames):
            if not os.path.exists(picture(recording, side, frame)):
                os.link(picture(walk, side, frame % RENDERED), picture(recording, side, frame))


def damage(recording, frame):
    path = picture(recording, "left", frame)
    with open(path, "rb") as whole:
        part = whole.read(900)
    os.remove(path)  # it is a link
    with open(path, "wb") as damaged:
        damaged.write(part)


def content(*names):
    with open(os.path.join(*names), "rb") as file:
        return file.read()


class Batches(unittest.TestCase):
    settings = {"areas": "areas.toml", "average": 3}

    def setUp(self):
        self.folder = tempfile.mkdtemp(dir=folder)
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        for name in ("camera.toml", "areas.toml"):
            shutil.copy(os.path.join(walk, name), name)

    def recording(self, frames, damaged=()):
        lengthen("s", frames)
        for frame in damaged:
            damage("s", frame)

    def whole(self, *words, source=("s",), camera="camera.toml", out="whole"):
        with contextlib.suppress(nadir.ProgramError):  # status 3: damaged frames
            _program.run("ground", *source, "--camera", camera, "-o", out, "--areas", "areas.toml", "--average", 3, *words)

    def run_batch(self, out="b", source="s", camera="camera.toml", client=None, **more):
        return run(source, camera, out, client, **{"progress": False, "pause_s": 0.01, **self.settings, **more})

    def assert_whole(self, out="b", whole="whole"):
        for name in ("frames.jsonl", "run.json"):
            self.assertEqual(content(out, name), content(whole, name), name)
        self.assertEqual(os.listdir(os.path.join(out, "working")), [])

    def assert_maps(self, out="b"):
        for kind in ("elevation", "average"):
            maps = sorted(glob.glob(os.path.join(out, "parts", "*", kind, "*.png")))
            names = sorted(os.listdir(os.path.join("whole", kind)))
            self.assertEqual([os.path.basename(path) for path in maps], names)
            for path, name in zip(maps, names):
                self.assertTrue(filecmp.cmp(path, os.path.join("whole", kind, name), shallow=False), path)


class Cuts(unittest.TestCase):
    def test_cover_every_frame_once_and_keep_what_is_made(self):
        chance = random.Random(1)
        for _ in range(200):
            frames, size = chance.randint(0, 60), chance.randint(1, 70)
            borders = sorted(chance.sample(range(frames + 1), min(frames + 1, chance.randint(0, 8))))
            made = [_cuts.Cut(a, b) for a, b in zip(borders, borders[1:]) if chance.random() < 0.6]
            cuts = _cuts.cuts_of(frames, size, made)
            self.assertEqual([f for cut in cuts for f in range(cut.begin, cut.end)], list(range(frames)))
            self.assertLessEqual(set(made), set(cuts))
            self.assertTrue(all(cut in made or cut.frames <= size for cut in cuts))

    def test_names_tell_them(self):
        cut = _cuts.Cut(7, 10 ** 12)
        self.assertEqual(_cuts.cut_named(cut.name), cut)
        self.assertIsNone(_cuts.cut_named("notes"))

    def test_every_worker_gets_some(self):
        self.assertEqual([_cuts.usual_size(frames, 2) for frames in (10, 4000, 10 ** 6)], [100, 500, 1000])


class Telling(unittest.TestCase):
    def test_durations_are_as_people_say_them(self):
        self.assertEqual([_progress.duration(s) for s in (45, 600, 9000, 200000)], ["45 s", "10 min", "2.5 h", "2.3 days"])

    def test_frames_of_an_earlier_run_do_not_count_for_the_rate(self):
        told = io.StringIO()
        with contextlib.redirect_stderr(told):
            progress = _progress.Progress(100, 50, True)
            progress.begun -= 10
            progress.advance(30)
            progress.told -= 1
            progress.advance(12)
            progress.advance(8)
        self.assertEqual(told.getvalue().splitlines(), [
            "nadir.batch: 92 of 100 frames, 4.2 a second, 2 s left", "nadir.batch: 100 of 100 frames, 5 a second, 0 s left"])


class OneMachine(Batches):
    def test_partitions_of_any_size_are_the_whole_run(self):
        self.recording(23, damaged=(6, 7, 12, 13))
        self.whole()
        for size in (1, 7, 11, 23, 1000):
            result = self.run_batch(out=f"b{size}", partition=size)
            self.assertEqual((result.frames, result.skipped), (23, 4))
            self.assert_whole(out=f"b{size}")
            self.assert_maps(out=f"b{size}")

    def test_sources_are_those_of_the_program(self):
        self.recording(5)
        self.whole()
        for number, source in enumerate((("s/left", "s/right"), ("s/left/*.png", "s/right/%06d.png"))):
            self.run_batch(out=f"b{number}", source=source, partition=2)
            self.assert_whole(out=f"b{number}")

    def test_an_index_may_tell_of_several_cameras(self):
        self.recording(7)
        os.mkdir("cameras")
        shutil.copy("camera.toml", "cameras/b.toml")
        with open("i.csv", "w", encoding="utf-8") as index:
            index.write("time,left,right,camera\n")
            for frame in range(7):
                for camera in ("camera.toml", "cameras/b.toml"):
                    index.write(f"{frame},s/left/{frame:06}.png,s/right/{frame:06}.png,{camera}\n")
        result = self.run_batch(source="i.csv", camera=None, partition=3)
        self.assertEqual((result.logs, result.frames), (("b/camera/frames.jsonl", "b/b/frames.jsonl"), 14))
        for name, camera in (("camera", "camera.toml"), ("b", "cameras/b.toml")):
            self.whole(source=("i.csv",), camera=camera, out=name)
            self.assert_whole(os.path.join("b", name), name)
        self.run_batch(source="i.csv", camera="cameras/b.toml", out="one", partition=3)
        self.assert_whole("one", "b")

    def test_a_second_run_works_on_nothing_that_is_there(self):
        self.recording(9)
        self.whole()
        self.run_batch(partition=4)
        os.rename("s/right/000002.png", "away.png")  # whoever works on it again will fail
        self.run_batch(partition=3)
        self.assert_whole()
        os.rename("away.png", "s/right/000002.png")
        self.recording(14)  # frames have come since
        shutil.rmtree("whole")
        self.whole()
        self.run_batch(partition=3)
        self.assert_whole()
        self.assertEqual(sorted(os.listdir("b/parts")), [_cuts.Cut(a, b).name for a, b in (
            (0, 4), (4, 8), (8, 9), (9, 12), (12, 14))])

    def test_whatever_is_killed_between_two_steps_is_taken_up(self):
        self.recording(9, damaged=(5,))
        self.whole()
        self.run_batch(partition=3)
        os.remove("b/frames.jsonl")  # joined, and the line of it lost
        self.run_batch()
        self.assert_whole()
        os.rename("b/parts/000000000003-000000000006", "b/working/000000000003-000000000006")  # whole, and without its name
        os.truncate("b/working/000000000003-000000000006/frames.jsonl", 700)
        os.truncate("b/frames.jsonl", 1000)
        self.run_batch()
        self.assert_whole()
        self.assert_maps()

    def test_a_batch_that_is_killed_goes_on(self):
        self.recording(60)
        self.whole("--no-maps")
        command = [sys.executable, "-m", "nadir.batch", "s", "--camera", "camera.toml", "-o", "b", "--partition", "7",
                   "--", "--areas", "areas.toml", "--average", "3", "--no-maps"]
        for parts, kill in ((1, signal.SIGKILL), (3, signal.SIGINT), (6, signal.SIGKILL)):
            batch = subprocess.Popen(command, start_new_session=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                     preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
            while batch.poll() is None and len(glob.glob("b/parts/*")) < parts:
                time.sleep(0.01)
            os.killpg(batch.pid, kill)
            batch.communicate()
            self.assertEqual(batch.returncode, 130 if kill == signal.SIGINT else -kill)
            self.assertLess(len(glob.glob("b/parts/*")), 9, "it was killed too late to tell anything")
        self.assertEqual(subprocess.run(command, check=False, capture_output=True).returncode, 0)
        self.assert_whole()

    def test_waits_for_a_program_that_outlives_its_worker(self):
        self.recording(3)
        self.whole()
        os.makedirs("b/working/000000000000-000000000003")
        other = os.open("b/working/000000000000-000000000003", os.O_RDONLY)
        fcntl.flock(other, fcntl.LOCK_EX)
        threading.Timer(0.3, os.close, [other]).start()
        begun = time.monotonic()
        self.run_batch(attempts=1)
        self.assertGreater(time.monotonic() - begun, 0.25)
        self.assert_whole()

    def test_does_nothing_where_that_program_made_the_partition(self):
        self.recording(3)
        self.run_batch()
        recording = _work.Recording(os.getcwd(), ("nowhere",), "camera.toml", "b", ())
        cut, = _cuts.cuts_in("b/parts")
        os.rename(os.path.join("b/parts", cut.name), os.path.join("b/working", cut.name))
        other = os.open(os.path.join("b/working", cut.name), os.O_RDONLY)
        fcntl.flock(other, fcntl.LOCK_EX)

        def finish():
            _work.give_name(recording, cut)
            os.close(other)

        threading.Timer(0.2, finish).start()
        self.assertEqual(_work.work_on(recording, cut, _work.Patience(1, 0)), "")

    def test_a_fault_that_passes_is_tried_again(self):
        self.recording(6)
        self.whole()
        os.rename("s/right/000004.png", "away.png")
        threading.Timer(0.6, os.rename, ["away.png", "s/right/000004.png"]).start()
        self.run_batch(partition=2, pause_s=0.1, attempts=5)
        self.assert_whole()

    def test_a_fault_that_stays_is_given_up_and_named_and_all_else_is_made(self):
        self.recording(6)
        self.whole()
        os.rename("s/right/000005.png", "away.png")
        with self.assertRaisesRegex(nadir.Error, "1 partitions were given up.*frames 4 to 5: .*000005.png"):
            self.run_batch(partition=2, attempts=2)
        self.assertEqual(len(os.listdir("b/parts")), 2)
        os.rename("away.png", "s/right/000005.png")
        self.run_batch(partition=2)
        self.assert_whole()

    def test_what_cannot_be_is_refused_at_once(self):
        self.recording(2)
        for wrong in ({"partition": 0}, {"workers": 0}, {"attempts": 0}):
            with self.assertRaisesRegex(ValueError, f"{next(iter(wrong))} is 0"):
                self.run_batch(**wrong)
        for own in ("frames", "join", "output"):
            with self.assertRaisesRegex(TypeError, own):
                self.run_batch(**{own: "1"})
        with self.assertRaisesRegex(nadir.Error, "s is no index"):
            self.run_batch(camera=None)
        with self.assertRaisesRegex(nadir.Error, "nowhere"):
            self.run_batch(source="nowhere")
        self.run_batch()
        with self.assertRaisesRegex(nadir.Error, "average_frames is 3 there and 4 here"):
            self.run_batch(average=4)

    def test_an_index_that_does_not_name_its_cameras_is_refused(self):
        for rows, reason in (("left,right,time\na,b,1\n", "not every row"),
                             ("left,time,camera\na,1,c.toml\na,2,d/c.toml\n", "have the same name")):
            with open("i.csv", "w", encoding="utf-8") as index:
                index.write(rows)
            with self.assertRaisesRegex(nadir.Error, reason):
                self.run_batch(source="i.csv", camera=None)

    @unittest.skipIf(importlib.util.find_spec("pyarrow"), "pyarrow is there")
    def test_parquet_without_pyarrow_is_refused_before_anything_is_done(self):
        self.recording(2)
        with self.assertRaisesRegex(nadir.Error, "Parquet files need pyarrow, which is not installed"):
            self.run_batch(parquet=True)
        self.assertFalse(os.path.exists("b"))


class Shell(Batches):
    def call(self, *arguments):
        out, err = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            status = shell.main(arguments)
        return status, out.getvalue(), err.getvalue()

    def test_does_the_same(self):
        self.recording(5, damaged=(3,))
        self.whole()
        status, out, err = self.call("s/left", "s/right", "--camera", "camera.toml", "-o", "b", "--partition", "2", "--",
                                     "--areas", "areas.toml", "--average", "3")
        self.assertEqual((status, out), (3, "5 frames, 1 skipped, 0 with warnings: b/frames.jsonl\n"))
        self.assertRegex(err, r"nadir\.batch: 5 of 5 frames, [0-9.e+]+ a second, 0 s left\n$")
        self.assert_whole()

    def test_tells_what_is_wrong(self):
        self.recording(1)
        self.assertEqual(self.call("s", "--camera", "camera.toml", "-o", "b", "--partition", "0")[0], 2)
        self.assertEqual(self.call("s", "--camera", "camera.toml", "-o", "b", "--", "--json")[0], 2)
        status, _, err = self.call("s", "--camera", "nowhere.toml", "-o", "b")
        self.assertEqual(status, 1)
        self.assertIn("nowhere.toml", err)


class LosesWorkers:
    """A client whose first tasks are lost with their workers."""

    def __init__(self, lost):
        self.lost = lost

    def nthreads(self):
        return {"here": 1}

    def get_executor(self, **_):
        client = self

        class Executor(concurrent.futures.ThreadPoolExecutor):
            def submit(self, function, *arguments):
                client.lost -= 1
                return super().submit(*((os.stat, "nowhere") if client.lost >= 0 else (function, *arguments)))

        return Executor(1)


class Cluster(Batches):
    def test_partitions_whose_workers_are_lost_are_tried_again_until_they_are_given_up(self):
        self.recording(4)
        self.whole()
        with self.assertRaisesRegex(nadir.Error, "2 partitions were given up.*a worker was lost.*nowhere"):
            self.run_batch(client=LosesWorkers(6), partition=2)
        self.run_batch(client=LosesWorkers(4), partition=2)
        self.assert_whole()

    def test_a_worker_that_is_killed_changes_nothing(self):
        import distributed
        self.recording(400)
        self.whole("--no-maps")
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1", dashboard_address=None,
                                      local_directory=self.folder, silence_logs=50) as cluster, distributed.Client(cluster) as client:
            pids = list(client.run(os.getpid).values())

            def kill_one():
                while len(os.listdir("b/parts")) < 4:
                    time.sleep(0.01)
                os.kill(pids[0], signal.SIGKILL)

            os.makedirs("b/parts")
            killer = threading.Thread(target=kill_one, daemon=True)
            killer.start()
            result = self.run_batch(client=client, partition=29, no_maps=True)
            killer.join()
            self.assertEqual(result.frames, 400)
            self.assertNotIn(pids[0], client.run(os.getpid).values())
        self.assert_whole()


if __name__ == "__main__":
    unittest.main()
