#!/usr/bin/python3
"""Compares Android.bp with what CMake builds and with the list of public headers.

Usage: .ci/android-bp-lists.py COMPILE-COMMANDS, in the root of the repository
    COMPILE-COMMANDS  compile_commands.json of a build of everything
"""

import json
import os
import pathlib
import re
import sys

from mini_soong.parser import soong

# The modules that are built from the sources of these targets of CMake.
MODULES = {
    "libzublipsyncapi": ["zublipsyncapi_objects"],
    "libzublipsyncapi_test_support": ["test_support", "test_replacements"],
    "zublipsyncapi_fault_tests": ["fault_tests"],
    "zublipsyncapi_inner_tests": ["zublipsyncapi_objects", "inner_tests"],
    "zublipsyncapi_tests": ["service_tests", "avsync_tests"],
    "zublipsyncapi_video_pipeline": ["video_pipeline"],
}
# Targets that Android.bp leaves out: the tools and the tests that need them.
NOT_BUILT = re.compile("azubsim|lipsyncctl|tools_|program_tests|soak_tests|avsync_engine_tests")


def compiled_sources(file):
    # CMake can write a file that includes all sources of a target.
    if file.parent.name == "Unity":
        return re.findall('#include "(.*)"', file.read_text())
    return [str(file)]


def cmake_sources(compile_commands):
    sources = {}
    for command in json.loads(pathlib.Path(compile_commands).read_text()):
        target = re.search(r"CMakeFiles/([^/]+)\.dir/", command["command"])[1]
        if not NOT_BUILT.match(target):
            paths = compiled_sources(pathlib.Path(command["file"]))
            sources.setdefault(target, set()).update(os.path.relpath(path) for path in paths)
    return sources


def modules():
    parsed = soong.parseString(pathlib.Path("Android.bp").read_text(), parseAll=True)
    return {module.arguments["name"]: module.arguments for module in parsed if "name" in module.arguments}


def exported_headers(module):
    for folder in map(pathlib.Path, module.get("export_include_dirs", [])):
        # Folders of links, some of them to whole folders, which glob does not follow.
        for path in (path for top in folder.iterdir() for path in top.glob("**/*.h")):
            header = path.relative_to(folder)
            yield str(header) if header.exists() and path.samefile(header) else f"{path}, which is no link,"


def differences(what, android, others, where):
    return ([f"{what}: {item} is only in Android.bp" for item in sorted(android - others)] +
            [f"{what}: {item} is only in {where}" for item in sorted(others - android)])


cmake = cmake_sources(sys.argv[1])
bp = modules()
headers = {header for module in bp.values() for header in exported_headers(module)}
errors = differences("headers", headers, set(pathlib.Path("interface/public-headers.txt").read_text().split()),
                     "interface/public-headers.txt")
errors += differences("modules", {name for name in bp if "srcs" in bp[name]}, set(MODULES), sys.argv[0])
errors += differences("targets", {target for targets in MODULES.values() for target in targets}, set(cmake),
                      "CMake")
for name, targets in MODULES.items():
    expected = set().union(*(cmake.get(target, set()) for target in targets))
    errors += differences(name, set(bp.get(name, {}).get("srcs", [])), expected, "CMake")
print("\n".join(errors) or f"Android.bp has the sources of CMake and {len(headers)} public headers.")
sys.exit(bool(errors))
