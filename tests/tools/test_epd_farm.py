# SPDX-License-Identifier: MIT
"""Runs tools/epd_farm with GNU parallel and a stand-in engine, whose every step is recorded.

The stand-in prints what the engine prints. Words in a line of the suite tell it what to do there:
solve it, wait for the test, crash, or end without a word.
"""

import os
import pty
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
FARM = ROOT / "tools" / "epd_farm"
PATIENCE = 60  # seconds for anything that is waited for; a sound run needs two or three

# @base@ is the folder of the test: `record` there tells what ran, `go` ends all waiting.
ENGINE = r"""#!/usr/bin/env bash
echo "start $$ $PWD $(tr '\n' ' ' <corvane.ini)" >>'@base@/record'
read -r word name seconds
read -r last
[[ $word == epdtest && $last == quit ]] || exit 9
printf 'Corvane\nHashsize 16777216 bytes\nEPD-Test: %s\nTime:%s\n\n' "$name" "$seconds"
number=0 ok=0
while IFS= read -r line || [[ -n $line ]]; do
    line=${line%$'\r'}
    [[ ${#line} -ge 8 ]] || continue
    number=$((number + 1))
    echo "line $line" >>'@base@/record'
    printf '\n%s %s\n\nr . b q k b n r \nxywK= 95\n1. e2e4  2. d2d4  \nAll 2 moves\n' \
        "$number" "$line"
    while [[ $line == *wait* && ! -e '@base@/go' ]]; do sleep 0.05; done
    [[ $line != *crash* || -e '@base@/go' ]] || kill -SEGV $$
    [[ $line != *mute* || -e '@base@/go' ]] || exit 0
    echo Start...
    [[ $line == *sudden* ]] || printf '1 25 3 20 e2e4 e7e5 \n'
    [[ $line != *deep* ]] || printf '2 -31 %s01 4567 d2d4 d7d5 g1f3 \n' "$seconds"
    printf 'move: d2d4 \n'
    speed=${line##*speed }
    case $line in
        *solved*) echo "Ok Speed: ${speed%%;*} KNodes/sec" && ok=$((ok + 1)) ;;
        *) echo "Error Speed: ${speed%%;*} KNodes/sec" ;;
    esac
done <"$name"
printf 'Total: %s\nSolutions: %s\n' "$number" "$ok"
"""

# Takes the place of ssh: a host is a folder with its name. Like a real one it knows nothing of the
# caller's folder, open files and variables, and its programs do not die with the connection by
# themselves. The host named `dead` does not answer.
SSH = r"""#!/usr/bin/env bash
while [[ $1 == -* ]]; do shift; done
host=$1
shift
[[ $1 != -- ]] || shift
[[ $host != dead ]] || exit 255
echo "$host" >>'@base@/calls'
mkdir -p '@base@/homes/'"$host"
cd '@base@/homes/'"$host" || exit 255
for file in /proc/$$/fd/*; do
    file=${file##*/}
    [[ $file -le 2 || $file -eq 255 ]] || eval "exec $file>&-"
done
exec 3<&0
setsid env -i HOME="$PWD" PATH="$PATH" TMPDIR="$TMPDIR" bash -c "$*" <&3 3<&- &
exec 3<&-
wait $!
"""


def position(text, speed):
    return f"8/8/8/4k3/8/8/4K3/8 w - - {text}; speed {speed};"


def table(speeds, solved, unsolved):
    """The engine's summary of a suite with these speeds."""
    numbers = ["".join(f"{number} " for number in group) for group in (solved, unsolved)]
    unit = "KNodes/sec"
    return (f"Total: {len(speeds)}\nSolutions: {len(solved)}\nErrors: {len(unsolved)}\n"
            f"MaxSpeed: {max(speeds)} {unit}\nMinSpeed: {min(speeds)} {unit}\n"
            f"Speed: {sum(speeds) // len(speeds)} {unit}\n"
            f"Solitions\n{numbers[0]}\n\nNoSolitions\n{numbers[1]}\n")


class FarmTest(unittest.TestCase):
    """A folder with an engine, a suite, and a home where parallel has never been used."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = Path(folder.name)
        self.scratch = self.base / "scratch"
        for name in ("scratch", "home"):
            (self.base / name).mkdir()
        self.engine = self.program("engine", ENGINE)
        self.out = self.base / "out"
        self.environment = {"PATH": os.environ["PATH"], "TMPDIR": str(self.scratch),
                            "HOME": str(self.base / "home")}

    def program(self, name, text):
        path = self.base / name
        path.write_text(text.replace("@base@", str(self.base)), encoding="utf-8")
        path.chmod(0o755)
        return path

    def suite(self, *lines):
        path = self.base / "suite.epd"
        path.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        return path

    def command(self, suite, *options, seconds="1"):
        return [str(FARM), "--engine", str(self.engine), "--jobs", "2", "--out", str(self.out),
                *map(str, options), str(suite), seconds]

    def farm(self, suite, *options, seconds="1"):
        """Status, standard output and standard error of a whole run."""
        done = subprocess.run(
            self.command(suite, *options, seconds=seconds), env=self.environment, cwd=self.base,
            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=PATIENCE)
        return done.returncode, done.stdout, done.stderr

    def start(self, suite, *options):
        """A run in a process group of its own, with signals as they are at a terminal."""
        signal.signal(signal.SIGINT, signal.default_int_handler)
        process = subprocess.Popen(
            self.command(suite, *options), env=self.environment, cwd=self.base,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            start_new_session=True)
        self.addCleanup(process.wait, PATIENCE)
        self.addCleanup(process.terminate)
        return process

    def wait_for(self, condition):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline, "waited in vain")
            time.sleep(0.02)

    def record(self, kind):
        path = self.base / "record"
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        return [line.split(" ", 1)[1] for line in lines if line.startswith(kind + " ")]

    def living_engines(self):
        started = [start.split(" ")[0] for start in self.record("start")]
        return [number for number in started if Path("/proc", number).exists()]

    def rows(self):
        text = (self.out / "results.tsv").read_text(encoding="utf-8")
        return [line.split("\t") for line in text.splitlines()]

    def outputs(self):
        return sorted(path.name for path in self.out.glob("*/*.out"))


class MergeTest(FarmTest):
    def test_shares_are_numbered_over_the_whole_suite(self):
        lines = [position("solved deep" if i in (1, 4, 5) else "sudden", 100 * i)
                 for i in range(1, 8)]
        text = "\r\n".join(["short", *lines[:3], "", "1234567", *lines[3:]])  # no line end at last
        suite = self.base / "suite.epd"
        suite.write_bytes(text.encode("ascii"))
        status, output, errors = self.farm(suite, "--share", 2, "--hash", 3, seconds="5")
        self.assertEqual((status, errors), (0, ""))
        expected = table([100 * i for i in range(1, 8)], [1, 4, 5], [2, 3, 6, 7])
        self.assertEqual(output, expected)
        self.assertEqual((self.out / "summary.txt").read_text(encoding="utf-8"), expected)
        heading, *rows = self.rows()
        self.assertEqual(heading, ["position", "verdict", "move", "knodes_per_sec", "depth", "ms",
                                   "nodes", "host", "epd"])
        host = os.uname().nodename
        self.assertEqual(rows, [
            [str(i), "Ok", "d2d4", str(100 * i), "2", "501", "4567", host, lines[i - 1]]
            if i in (1, 4, 5) else
            [str(i), "Error", "d2d4", str(100 * i), "-", "-", "-", host, lines[i - 1]]
            for i in range(1, 8)])
        self.assertEqual(sorted(self.record("line")), sorted(lines))
        self.assertEqual(self.outputs(), [f"0000{i}.out" for i in range(1, 5)])

    def test_each_worker_has_a_folder_of_its_own_for_a_while(self):
        suite = self.suite(*(position("bm Kd1", 7) for _ in range(4)))
        self.assertEqual(self.farm(suite, "--share", 1, "--hash", 12)[0], 0)
        starts = [start.split(" ", 2) for start in self.record("start")]
        self.assertEqual(len({folder for _, folder, _ in starts}), 4)
        self.assertEqual({ini for _, _, ini in starts}, {"log: off hash: 12 "})
        self.assertEqual(list(self.scratch.iterdir()), [])

    def test_paths_may_hold_blanks_and_a_share_the_whole_suite(self):
        folder = self.base / "two words"
        folder.mkdir()
        self.engine = self.engine.rename(folder / "my engine")
        suite = self.suite(position("solved", 5), position("no", 8)).rename(folder / "my suite.epd")
        self.out = folder / "my results"
        status, output, errors = self.farm(suite, "--share", 100)
        self.assertEqual((status, output, errors), (0, table([5, 8], [1], [2]), ""))
        self.assertEqual(len(self.record("start")), 1)

    def test_without_options_the_folder_is_here_and_a_worker_gets_several_shares(self):
        suite = self.suite(*(position("no", 7) for _ in range(20)))
        self.out = self.base / "suite.epd.farm"
        done = subprocess.run([FARM, "--engine", "engine", "--jobs", "2", suite.name, "1"],
                              env=self.environment, cwd=self.base, capture_output=True, text=True,
                              timeout=PATIENCE)
        self.assertEqual(done.stdout, table([7] * 20, [], range(1, 21)))
        self.assertEqual(len(self.outputs()), 10)
        self.assertTrue(self.record("start")[0].endswith(" log: off "))

    def test_a_terminal_is_told_of_progress(self):
        suite = self.suite(position("solved", 5), position("no", 8))
        master, slave = pty.openpty()
        done = subprocess.run(self.command(suite), env=self.environment, cwd=self.base,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=slave,
                              text=True, timeout=PATIENCE)
        os.close(slave)
        self.assertEqual(done.stdout, table([5, 8], [1], [2]))
        shown = os.read(master, 10000).decode("ascii")
        os.close(master)
        self.assertTrue(shown.endswith("\r2/2 positions, 1 solved \r\n"), repr(shown))


class ResumeTest(FarmTest):
    def assert_stop_and_resume(self, sent, expected_status):
        lines = [position(f"line {i}" + (" wait" if i > 4 else " solved"), i) for i in range(1, 9)]
        suite = self.suite(*lines)
        process = self.start(suite, "--share", 1)
        self.wait_for(lambda: len(self.outputs()) == 4 and len(self.record("line")) == 6)
        status, _, errors = self.farm(suite, "--resume")
        self.assertEqual(status, 2)
        self.assertIn("another farm is at work", errors)
        os.killpg(process.pid, sent)
        _, errors = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, expected_status)
        self.assertIn("stopped after 4 of 8 positions; go on with --resume", errors)
        self.assertEqual(self.living_engines(), [])
        self.assertEqual(list(self.scratch.iterdir()), [])
        self.assertEqual(self.outputs(), [f"0000{i}.out" for i in range(1, 5)])
        self.assertFalse((self.out / "results.tsv").exists())
        (self.base / "go").touch()
        (self.base / "record").unlink()
        status, output, errors = self.farm(suite, "--resume")
        self.assertEqual((status, errors), (0, ""))
        self.assertEqual(output, table(range(1, 9), [1, 2, 3, 4], [5, 6, 7, 8]))
        self.assertEqual(sorted(self.record("line")), lines[4:])
        self.assertEqual([row[8] for row in self.rows()[1:]], lines)

    def test_goes_on_after_sigterm(self):
        self.assert_stop_and_resume(signal.SIGTERM, 143)

    def test_goes_on_after_sigint(self):
        self.assert_stop_and_resume(signal.SIGINT, 130)

    def test_a_crashed_share_is_named_and_run_again(self):
        lines = [position(text, speed) for text, speed in [
            ("one solved", 11), ("two", 12), ("three solved", 13), ("four crash solved", 14),
            ("five solved", 15)]]
        suite = self.suite(*lines)
        status, output, errors = self.farm(suite, "--share", 2)
        self.assertEqual(status, 1)
        self.assertEqual(output, table([11, 12, 15], [1, 5], [2]))
        self.assertIn("share 2 failed, positions 3 to 4: status 139, verdicts on 1 of 2", errors)
        self.assertIn("1 of 3 shares failed", errors)
        self.assertEqual([row[0] for row in self.rows()[1:]], ["1", "2", "5"])
        (self.base / "go").touch()
        (self.base / "record").unlink()
        status, output, errors = self.farm(suite, "--resume")
        self.assertEqual((status, errors), (0, ""))
        self.assertEqual(output, table([11, 12, 13, 14, 15], [1, 3, 4, 5], [2]))
        self.assertEqual(self.record("line"), lines[2:4])

    def test_too_few_verdicts_are_a_failure(self):
        suite = self.suite(position("one", 1), position("two", 2), position("mute", 3))
        status, output, errors = self.farm(suite, "--share", 2)
        self.assertEqual((status, output), (1, table([1, 2], [], [1, 2])))
        self.assertIn("share 2 failed, positions 3 to 3: verdicts on 0 of 1 positions", errors)

    def test_a_lost_output_is_made_again(self):
        lines = [position(f"line {i} solved", i) for i in range(1, 5)]
        suite = self.suite(*lines)
        _, whole, _ = self.farm(suite, "--share", 1)
        next(self.out.glob("*/00003.out")).unlink()
        (self.base / "record").unlink()
        self.assertEqual(self.farm(suite, "--resume"), (0, whole, ""))
        self.assertEqual(self.record("line"), lines[2:3])


class RefusalTest(FarmTest):
    def assert_refused(self, expected, suite, *options, seconds="1"):
        (self.base / "record").unlink(missing_ok=True)
        status, output, errors = self.farm(suite, *options, seconds=seconds)
        self.assertEqual((status, output), (2, ""))
        self.assertRegex(errors, r"\Aepd_farm: [^\n]*" + re.escape(expected) + r"[^\n]*\n\Z")
        self.assertEqual(self.record("start"), [])

    def test_a_folder_serves_one_run(self):
        suite = self.suite(position("one", 1), position("two", 2))
        self.assert_refused("holds no run to go on with", suite, "--resume")
        self.assertFalse(self.out.exists())
        self.assertEqual(self.farm(suite, "--share", 1, "--hash", 2)[0], 0)
        before = (self.out / "results.tsv").read_bytes()

        self.assert_refused("holds this run already; --resume", suite)
        self.assert_refused("not the same: seconds)", suite, "--resume", seconds="2")
        self.assert_refused("not the same: share)", suite, "--resume", "--share", 2)
        self.assert_refused("not the same: hash)", suite, "--resume", "--hash", 4)
        self.engine.write_text(ENGINE + "# another build\n", encoding="utf-8")
        self.assert_refused("not the same: engine)", suite, "--resume")
        self.assert_refused("not the same: engine)", suite)
        self.program("engine", ENGINE)
        self.assert_refused("not the same: suite)", self.suite(position("one", 1)), "--resume")

        suite = self.suite(position("one", 1), position("two", 2))
        self.assertEqual(self.farm(suite, "--resume")[0], 0)
        self.assertEqual(self.record("start"), [])
        self.assertEqual((self.out / "results.tsv").read_bytes(), before)

    def test_a_folder_with_other_files_is_left_alone(self):
        self.out.mkdir()
        (self.out / "letter").touch()
        self.assert_refused("files that are not of a run", self.suite(position("one", 1)))
        self.assertEqual(os.listdir(self.out), ["letter"])

    def test_arguments(self):
        suite = self.suite(position("one", 1))
        for options in (["--jobs", "0"], ["--share", "x"], ["--hash", "1.5"]):
            self.assert_refused(f"{options[0]}: a whole number", suite, *options)
        self.assert_refused("SECONDS: a whole number", suite, seconds="0")
        self.assert_refused("no such option: --fast", suite, "--fast")
        self.assert_refused("no suite at", self.base / "nothing.epd")
        self.assert_refused("no list of hosts at", suite, "--sshloginfile", self.base / "nothing")
        self.assert_refused("no position in", self.suite("short", ""))
        self.engine.chmod(0o644)
        self.assert_refused("no engine at", suite)
        self.assertFalse(self.out.exists())

    def test_a_missing_program_is_named_with_its_package(self):
        programs = self.base / "programs"
        programs.mkdir()
        for name in ("bash", "env", "realpath", "dirname", "awk", "grep"):
            (programs / name).symlink_to(shutil.which(name))
        self.environment["PATH"] = str(programs)
        suite = self.suite(position("one", 1))
        self.assert_refused("parallel is missing; install it: apt-get install parallel", suite)
        self.program("programs/parallel", "#!/usr/bin/env bash\necho other\n")
        self.assert_refused("not GNU parallel; install it: apt-get install parallel", suite)
        self.program("programs/parallel", "#!/usr/bin/env bash\necho GNU parallel 1\n")
        hosts = self.base / "hosts"
        hosts.write_text("2/:\nexample\n", encoding="utf-8")
        options = ["--sshloginfile", str(hosts)]
        self.assert_refused("rsync is missing; install it: apt-get install rsync", suite, *options)
        self.program("programs/rsync", "")
        self.assert_refused("apt-get install openssh-client", suite, *options)


class HostsTest(FarmTest):
    def hosts(self, text):
        path = self.base / "hosts"
        path.write_text(text.replace("@ssh@", str(self.program("ssh", SSH))), encoding="utf-8")
        return path

    def test_shares_travel_and_come_back_and_nothing_stays(self):
        lines = [position(f"line {i} solved", i) for i in range(1, 9)]
        hosts = self.hosts("# a comment\n1/@ssh@ north\n1/@ssh@ south\n1/@ssh@ dead\n")
        status, output, errors = self.farm(self.suite(*lines), "--share", 1, "--jobs", 1,
                                           "--sshloginfile", hosts)
        self.assertEqual((status, output), (0, table(range(1, 9), range(1, 9), [])), errors)
        self.assertIn("dead", errors)
        self.assertEqual(sorted(self.record("line")), lines)
        self.assertEqual({row[7] for row in self.rows()[1:]}, {"north", "south"})
        homes = self.base / "homes"
        self.assertEqual(sorted(os.listdir(homes)), ["north", "south"])
        self.assertEqual([str(path) for path in homes.glob("*/*")], [])
        self.assertEqual(list(self.scratch.iterdir()), [])

    def test_a_stopped_run_goes_on_with_other_hosts(self):
        lines = [position(f"line {i}" + (" wait" if i > 2 else ""), i) for i in range(1, 5)]
        suite = self.suite(*lines)
        process = self.start(suite, "--share", 1, "--sshloginfile",
                             self.hosts("1/@ssh@ north\n1/@ssh@ south\n"), "--jobs", 1)
        self.wait_for(lambda: len(self.outputs()) == 2 and len(self.record("line")) == 4)
        os.killpg(process.pid, signal.SIGTERM)
        process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 143)
        self.wait_for(lambda: not self.living_engines())
        self.wait_for(lambda: not list(self.scratch.iterdir()))
        (self.base / "go").touch()
        (self.base / "record").unlink()
        status, output, _ = self.farm(suite, "--resume", "--sshloginfile",
                                      self.hosts(":\n1/@ssh@ east\n"), "--jobs", 1)
        self.assertEqual((status, output), (0, table(range(1, 5), [], range(1, 5))))
        self.assertEqual(sorted(self.record("line")), lines[2:])


if __name__ == "__main__":
    unittest.main()
