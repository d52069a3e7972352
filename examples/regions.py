"""What stands on the ground of a rendered scene, in three lines."""
import nadir

scene = nadir.synth("people", scene="people")  # a pair with its camera; of yours: nadir.read, nadir.Camera.read
road = nadir.Road(scene.camera, for_="people")
print(*road.process(scene.left, scene.right).regions, sep="\n")
