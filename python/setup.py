"""Builds the package vex2. CMake builds its compiled module from the source tree around this
folder.

    pip install --no-build-isolation --no-index python/
    pip wheel --no-build-isolation --no-index --no-deps python/

Needs no network. The environment variable VEX2_BUILD names a build folder to use, which was
configured with -DVEX2_PYTHON=ON; without it, a new one is made.
"""

import os
import pathlib
import re
import subprocess

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parent


def version() -> str:
    found = re.search(r"project\(vex2 VERSION ([0-9.]+)", (SOURCE / "CMakeLists.txt").read_text())
    if found is None:
        raise SystemExit("setup.py: CMakeLists.txt does not say the version")
    return found.group(1)


class CMakeBuild(build_ext):
    """Builds the extension with CMake."""

    def build_extension(self, ext: Extension) -> None:
        given = os.environ.get("VEX2_BUILD")
        folder = pathlib.Path(given) if given else pathlib.Path(self.build_temp).resolve() / "cmake"
        if not given:
            self.configure(folder)
        jobs = str(self.parallel or os.cpu_count() or 1)
        build = ["cmake", "--build", str(folder), "--target", "vex2_python", "-j", jobs]
        subprocess.run(build, check=True)
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        built = folder / "python" / "vex2" / target.name
        self.copy_file(str(built), str(target))

    def configure(self, folder: pathlib.Path) -> None:
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "VEX2_PYTHON": "ON",
            "VEX2_BUILD_TESTS": "OFF",
            "VEX2_BATCHES": "ON",
            "VEX2_BUILD_TOOLS": "OFF",
            "VEX2_BUILD_EXAMPLES": "OFF",
        }
        given = [f"-D{name}={value}" for name, value in options.items()]
        call = ["cmake", "-S", str(SOURCE), "-B", str(folder), "-G", "Ninja", *given]
        subprocess.run(call, check=True)


setup(
    name="vex2",
    version=version(),
    description="Plate documents of a real-time PCR instrument",
    python_requires=">=3.11",
    install_requires=["numpy"],
    extras_require={"tables": ["pandas"]},
    packages=["vex2"],
    package_data={"vex2": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("vex2._vex2", [])],
    cmdclass={"build_ext": CMakeBuild},
)
