#!/usr/bin/env python3
"""Generates a home-folder-shaped tree for the scan benchmark: about 300,000 files in about
30,000 folders, mostly small files with a few large ones, always the same for the same seed.
Usage: make-home-tree.py DEST [FILES] [FOLDERS]"""
import os
import random
import sys

dest = sys.argv[1]
files_wanted = int(sys.argv[2]) if len(sys.argv) > 2 else 300_000
folders_wanted = int(sys.argv[3]) if len(sys.argv) > 3 else 30_000
rng = random.Random(5)

# Top of a home folder, with the share of the folders each one gets.
top = {
    "Library/Caches": 10, "Library/Application Support": 14, "Library/Containers": 10,
    "Library/Logs": 2, "Library/Preferences": 1, "Library/Developer/Xcode/DerivedData": 6,
    "Documents": 10, "Downloads": 4, "Desktop": 2, "Pictures": 4, "Music": 3, "Movies": 1,
    "Code": 25, ".cache": 5, ".npm": 3,
}
folders = []
for name, weight in top.items():
    path = os.path.join(dest, name)
    os.makedirs(path, exist_ok=True)
    folders.append((path, 1, weight))

# Grow the tree: each new folder goes below an existing one, favouring the heavy top branches and
# shallow levels, so that depth ranges from 2 to about 10 like a real home.
weights = [w for (_, _, w) in folders]
while len(folders) < folders_wanted:
    i = rng.choices(range(len(folders)), weights=weights)[0]
    parent, depth, weight = folders[i]
    if depth > 9:
        continue
    path = os.path.join(parent, "d%05d" % len(folders))
    os.mkdir(path)
    child_weight = weight * 0.6
    folders.append((path, depth + 1, child_weight))
    weights.append(child_weight)

block = os.urandom(1 << 16)
# Files: most folders hold a few, some hold hundreds (node_modules, caches).
per_folder = [rng.paretovariate(1.2) for _ in folders]
scale = files_wanted / sum(per_folder)
made = 0
for index, (path, _, _) in enumerate(folders):
    count = int(per_folder[index] * scale + 0.5)
    if index == len(folders) - 1:
        count = max(files_wanted - made, 0)
    count = min(count, files_wanted - made)
    for k in range(count):
        name = os.path.join(path, "f%06d.dat" % made)
        if rng.random() < 0.0001:
            # A few large files (2 MiB to 200 MiB): allocated, not written.
            size = rng.randint(2 << 20, 200 << 20)
            fd = os.open(name, os.O_CREAT | os.O_WRONLY, 0o644)
            os.posix_fallocate(fd, 0, size)
            os.close(fd)
        else:
            size = min(int(rng.lognormvariate(8.0, 1.6)), 1 << 16)
            with open(name, "wb") as f:
                f.write(block[:size])
        made += 1
print("folders=%d files=%d" % (len(folders), made))
