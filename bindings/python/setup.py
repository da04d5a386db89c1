"""Builds the wheel: CMake compiles the extension, with velhls in it. The version is that of CMakeLists.txt."""
import pathlib
import re
import subprocess
import sys

import pybind11
from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

sources = pathlib.Path(__file__).resolve().parents[2]
version = re.search(r"project\(velhls\s+VERSION ([0-9.]+)", (sources / "CMakeLists.txt").read_text()).group(1)


class BuildWithCMake(build_ext):
    def build_extension(self, extension):
        folder = pathlib.Path(self.build_temp).resolve()
        folder.mkdir(parents=True, exist_ok=True)
        without = ["TOOL", "TESTS", "BENCHMARKS", "EXAMPLES", "DOCS"]
        subprocess.run(
            ["cmake", "-S", sources, "-B", folder, "-DCMAKE_BUILD_TYPE=Release", "-DVELHLS_BUILD_PYTHON=ON",
             "-DVELHLS_INSTALL=OFF", f"-DPYTHON_EXECUTABLE={sys.executable}",
             f"-DPython_EXECUTABLE={sys.executable}", f"-Dpybind11_DIR={pybind11.get_cmake_dir()}"]
            + [f"-DVELHLS_BUILD_{name}=OFF" for name in without],
            check=True, stdout=subprocess.DEVNULL,
        )
        subprocess.run(["cmake", "--build", folder, "--target", "velhls_python", "--parallel", "2"], check=True)
        built = next((folder / "python" / "velhls").glob("_velhls*.so"))
        self.copy_file(str(built), self.get_ext_fullpath(extension.name))


setup(
    name="velhls",
    version=version,
    description="HTTP Live Streaming playlists in, objects out, and back",
    long_description=(sources / "docs/guide/python.md").read_text(),
    long_description_content_type="text/markdown",
    license="Apache-2.0",
    python_requires=">=3.9",
    packages=["velhls"],
    package_data={"velhls": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("velhls._velhls", [])],
    cmdclass={"build_ext": BuildWithCMake},
    zip_safe=False,
)
