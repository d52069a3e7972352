#!/usr/bin/env python3
"""A walk from a rendered pair to tracked heights, in cells for an editor that runs them one by one; or run as a whole.

Its pictures go into the folder that it is given, else out/walk.
"""
# %% What this needs: numpy, matplotlib, and nadir itself
import os
import sys

import matplotlib.pyplot as plt
import numpy as np

import nadir
import nadir.plot

out = sys.argv[1] if len(sys.argv) == 2 else "out/walk"
os.makedirs(out, exist_ok=True)

# %% A pair whose truth is known: six people, seen from 3 m above
scene = nadir.synth(os.path.join(out, "people"), scene="people", size=(320, 240))
left, right = scene.left, scene.right  # uint16 (240, 320); pairs of yours: nadir.read("left.png")
print("pictures", left.shape, left.dtype)

# %% Disparities: how far each point moves from one picture to the other
disparity = nadir.match(left, right)
errors = nadir.evaluate(disparity, scene.path("disparity_gt.png"))
print(f"{errors.density:.0%} of the pixels have a disparity, {errors.bad[1]:.1%} of those are off by more than a pixel")

figure, (first, second) = plt.subplots(1, 2, figsize=(11, 4), layout="constrained")
first.imshow(left, cmap="gray")
first.set(title="left picture", xlabel="column, pixels", ylabel="row, pixels")
nadir.plot.disparity(disparity, axes=second).set_title("disparities")
figure.savefig(os.path.join(out, "disparity.png"))

# %% Heights above the ground, and what stands there
road = nadir.Road(scene.camera, for_="people")
result = road.process(left, right)
for region in result.regions:
    print(f"region {region.label}: {region.highest_mm} mm high around ({region.centre_x_mm:.0f}, {region.centre_y_mm:.0f})")
print("warnings:", [warning.sentence for warning in result.warnings])

figure, (first, second) = plt.subplots(1, 2, figsize=(12, 5), layout="constrained")
nadir.plot.elevation(result, axes=first).set_title("elevation map")
nadir.plot.regions(result, axes=second).set_title("regions")
figure.savefig(os.path.join(out, "regions.png"))

# %% A walk: people go to and fro through areas of interest, ten frames a second
frames, fps = 24, 10
walk = nadir.synth(os.path.join(out, "frames"), frames=frames, fps=fps, size=(160, 120), no_truth_pictures=True, resume=True)
road = nadir.Road(walk.camera, areas=walk.path("areas.toml"))
tracker = nadir.Tracker(road)
tracked = np.full((frames, len(road.areas)), np.nan)
single = np.full_like(tracked, np.nan)
for frame in range(frames):
    result = road.process(walk.picture("left", frame), walk.picture("right", frame))
    tracker.step(result, time_ns=frame * 1_000_000_000 // fps)
    single[frame] = [area.highest_mm or np.nan for area in result.areas]
    tracked[frame] = [track.height_mm if track else np.nan for track in tracker.tracks()]

# %% Their heights over time: where a frame alone sees something else in an area, the track goes on
figure, axes = plt.subplots(figsize=(8, 4.5), layout="constrained")
seconds = np.arange(frames) / fps
for index, area in enumerate(road.areas):
    axes.plot(seconds, tracked[:, index], color=f"C{index}", label=f"{area.name}, tracked")
    axes.plot(seconds, single[:, index], ".", color=f"C{index}", label="single frames")
axes.set(xlabel="time, s", ylabel="height above the ground, mm", title="tallest in each area")
axes.legend(ncols=len(road.areas), fontsize="small")
figure.savefig(os.path.join(out, "heights.png"))
print("last heights:", dict(zip([area.name for area in road.areas], np.round(tracked[-1]).tolist())))
