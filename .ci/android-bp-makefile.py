#!/usr/bin/python3
"""Writes a Makefile for the Android.bp below the current folder, with mini-soong and what it leaves out.

Usage: android-bp-makefile.py >Makefile
"""

import shutil

from mini_soong import main, utils
from mini_soong.builders import cc, methods

VARIABLES = ("cxxflags", "cflags", "ldflags", "ldlibs", "srcs", "includes", "system_includes")


def print_vars(target, values, _):
    """mini-soong prints no variables of programs, and knows no standards, no version scripts and no
    headers of static libraries."""
    module = values["args"]
    values = {name: list(values.get(name, [])) for name in VARIABLES}
    static = module.get("static_libs", [])
    if "cpp_std" in module:
        values["cxxflags"] += [f"-std={module['cpp_std']}"]
    if "version_script" in module:
        values["ldflags"] += [f"-Wl,--version-script={cc.rel(module['version_script'])}"]
    for library in static + module.get("header_libs", []):
        values["cxxflags"] += [f"$({library}_INCLUDES)", f"$({library}_SYSTEM_INCLUDES)"]
    # As sources, so that make builds them first.
    values["srcs"] += [f"{library}.a" for library in static]
    utils.print_vars(target, values, VARIABLES)


def cc_library_headers(**module):
    folders = [f"-I{cc.rel(folder)}" for folder in module["export_include_dirs"]]
    utils.print_vars(module["name"], {"includes": folders}, ["includes"])


def cc_test(**module):
    # A test has GoogleTest without asking, and its files beside it.
    module["static_libs"] = module.get("static_libs", []) + ["libgtest_main", "libgtest"]
    cc.cc_binary(**module)
    root = cc.rel(".")
    for path in (path for pattern in module.get("data", []) for path in root.glob(pattern)):
        if path.is_file():
            path.relative_to(root).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(path, path.relative_to(root))


cc.print_vars = print_vars
methods["cc_library_headers"] = cc_library_headers
methods["cc_test"] = cc_test
methods["license"] = methods["package"] = lambda **module: None
main.run()
