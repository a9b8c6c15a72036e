// A shared library with nothing in it, for what loading any library costs.
