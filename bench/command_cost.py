#!/usr/bin/env python3
"""command_cost.py: what `stopngo run` costs beside the ffmpeg program, which decodes, thins and scales alone.

    bench/command_cost.py STOPNGO FOLDER [TURNS]

FOLDER keeps the recordings. The two take turns, 5 unless told otherwise. Exits with 1 when the time that
`stopngo run` takes of the processors is above the target.
"""
import os
import resource
import statistics
import subprocess
import sys
import time

TARGET = 1.05  # of ffmpeg's user and system time
SECONDS = 60  # of each recording
RATE = 30  # pictures a second
# As cameras of vehicles record: no pictures that wait for later ones, megabits a second that keep the noise.
ENCODERS = {
    "H.264": ("h264.mp4", ["libx264", "-preset", "veryfast", "-b:v", "12M", "-bf", "0"]),
    "HEVC": ("hevc.mp4", ["libx265", "-preset", "ultrafast", "-b:v", "8M", "-bf", "0",
                          "-x265-params", "log-level=error"]),
}
PICTURES = f"testsrc2=size=1920x1080:rate={RATE}:duration={SECONDS},noise=alls=6:allf=t"
# The cheapest way to the frames that `run` hands over by default: six a second, luma of 800 x 480, bilinear.
FILTER = "fps=6,scale=800:480:flags=bilinear,format=gray"
FFMPEG = ["ffmpeg", "-nostdin", "-v", "error"]


def record(path, encoder):
    """The file comes under its name when it is whole."""
    if os.path.exists(path):
        return
    print(f"recording {path}", file=sys.stderr)
    part = path + ".part"
    subprocess.run([*FFMPEG, "-y", "-f", "lavfi", "-i", PICTURES, "-c:v", *encoder, "-pix_fmt", "yuv420p",
                    "-f", "mp4", part], check=True)
    os.replace(part, path)


def cost(command):
    """Seconds of processors (user and system) and of the clock."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wall = time.monotonic() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, wall


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    stopngo, folder = sys.argv[1:3]
    turns = int(sys.argv[3]) if len(sys.argv) == 4 else 5
    if turns < 1:
        sys.exit("command_cost: at least one turn is needed")
    missed = False
    print(f"{SECONDS} s of 1080p, {RATE} pictures a second, medians of {turns} turns.")
    print(f"Target: {TARGET} of the user+system of ffmpeg -an -vf {FILTER} -f null -")
    for name, (file, encoder) in ENCODERS.items():
        path = os.path.join(folder, file)
        record(path, encoder)
        contestants = {
            "ffmpeg": [*FFMPEG, "-i", path, "-an", "-vf", FILTER, "-f", "null", "-"],
            "stopngo": [stopngo, "run", path, "--weights", "weights/default.bin", "--json"],
        }
        costs = {who: [] for who in contestants}
        for _ in range(turns):
            for who, command in contestants.items():
                costs[who].append(cost(command))
        median = {who: [statistics.median(column) for column in zip(*rows)] for who, rows in costs.items()}
        for who, (cpu, wall) in median.items():
            print(f"{name:6} {who:8} {cpu:7.2f} s user+system {wall:7.2f} s wall")
        # Of each turn, since what else the machine does weighs on both in it.
        ratios = [statistics.median(ours[i] / theirs[i] for ours, theirs in zip(costs["stopngo"], costs["ffmpeg"]))
                  for i in (0, 1)]
        above = ratios[0] > TARGET
        print(f"{name:6} ratio    {ratios[0]:7.3f}               {ratios[1]:7.3f}{'   MISSED' if above else ''}")
        missed = missed or above
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
