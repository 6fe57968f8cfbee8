"""usage: mutants_tests.py <build folder> <file of seconds> [<test program to try first>...]
Runs the tests, a program's all at once, until one fails, and prints its name; the exit status is then 1. Without the
file of seconds all of them run, and the file is written: from then on the quick ones come first."""
import json
import os
import pathlib
import subprocess
import sys
import threading
import time

CORES = os.cpu_count()
LEFT_OUT = ("docs", "exports", "no_unique_symbols", "socle_h_is_whole")  # they look at sources and symbols


def programs(build):
    """By name: command, environment and folder of each program. The longest is there once for each core."""
    found = {}
    shown = subprocess.run(["ctest", "--show-only=json-v1"], cwd=build, check=True, capture_output=True)
    for test in json.loads(shown.stdout)["tests"]:
        if test["name"].startswith(LEFT_OUT):
            continue
        properties = {each["name"]: each["value"] for each in test["properties"]}
        environment = os.environ | dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        command, folder = test["command"], properties["WORKING_DIRECTORY"]
        if not command[1].startswith("--gtest_filter="):
            found[test["name"]] = command, environment, folder
            continue
        name = pathlib.Path(command[0]).name
        shards = CORES if name == "faults_test" else 1
        for shard in range(shards):
            found[f"{name}:{shard}"] = (
                [command[0], "--gtest_fail_fast"],
                environment | {"GTEST_TOTAL_SHARDS": str(shards), "GTEST_SHARD_INDEX": str(shard)},
                folder,
            )
    return found


def main(build, seconds_path, first):
    tests = programs(build)
    seconds_path = pathlib.Path(seconds_path)
    known = json.loads(seconds_path.read_text()) if seconds_path.exists() else {}
    order = sorted(tests, key=lambda name: (first.index(name) if name in first else len(first), known.get(name, 0)))
    seconds, running, failed, lock = {}, {}, [], threading.Lock()

    def work():
        while True:
            with lock:
                if failed or not order:
                    return
                name = order.pop(0)
                command, environment, folder = tests[name]
                started = time.monotonic()
                running[name] = subprocess.Popen(
                    command, env=environment, cwd=folder, start_new_session=True,
                    stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                )
            try:
                status = running[name].wait(60 + 5 * known[name] if known else None)
            except subprocess.TimeoutExpired:
                status = -1
            with lock:
                process = running.pop(name)
                seconds[name] = time.monotonic() - started
                if status != 0 and not failed:
                    failed.append(name)
                    for other in [process, *running.values()]:
                        try:
                            os.killpg(other.pid, 9)
                        except ProcessLookupError:
                            pass

    workers = [threading.Thread(target=work) for _ in range(CORES)]
    for each in workers:
        each.start()
    for each in workers:
        each.join()
    if failed:
        sys.exit(failed[0])
    if not known:
        seconds_path.write_text(json.dumps(seconds))


main(sys.argv[1], sys.argv[2], sys.argv[3:])
