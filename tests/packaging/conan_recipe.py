"""Runs the Conan recipe's steps without Conan: a few stand-ins take the calls that the recipe makes.

    conan_recipe.py REPOSITORY WORK_FOLDER [--without-check]

It fails unless the exported sources build and install, and the package holds what package_info says.
"""

import collections
import fnmatch
import importlib.util
import os
import shutil
import subprocess
import sys
import types

repository, work = (os.path.abspath(argument) for argument in sys.argv[1:3])
with_check = "--without-check" not in sys.argv


def copy(_recipe, pattern, src, dst):
    for folder, _, names in os.walk(src):
        for name in names:
            path = os.path.relpath(os.path.join(folder, name), src)
            if fnmatch.fnmatch(path, pattern):
                os.makedirs(os.path.dirname(os.path.join(dst, path)), exist_ok=True)
                shutil.copy(os.path.join(src, path), os.path.join(dst, path))


class CMakeToolchain:
    def __init__(self, recipe):
        self.recipe, self.cache_variables = recipe, {}

    def generate(self):
        self.recipe.cache_variables = self.cache_variables


class CMake:
    def __init__(self, recipe):
        self.recipe, self.folder = recipe, os.path.join(work, "build")

    def configure(self):
        variables = dict(self.recipe.cache_variables, BUILD_SHARED_LIBS=self.recipe.options.shared)
        subprocess.run(
            ["cmake", "-G", "Ninja", "-S", self.recipe.source_folder, "-B", self.folder,
             f"-DCMAKE_INSTALL_PREFIX={self.recipe.package_folder}", "-DCMAKE_INSTALL_LIBDIR=lib"]
            + [f"-D{name}={'ON' if value else 'OFF'}" for name, value in variables.items()],
            check=True, stdout=subprocess.DEVNULL)

    def build(self):
        subprocess.run(["cmake", "--build", self.folder], check=True, stdout=subprocess.DEVNULL)

    def install(self):
        subprocess.run(["cmake", "--install", self.folder], check=True, stdout=subprocess.DEVNULL)


def stand_in(name, **members):
    sys.modules[name] = types.ModuleType(name)
    vars(sys.modules[name]).update(members)


def load(_recipe, path):
    with open(path, encoding="utf-8") as file:
        return file.read()


stand_in("conan", ConanFile=type("ConanFile", (), {}))
stand_in("conan.tools")
stand_in("conan.tools.build", check_min_cppstd=lambda recipe, standard: None)
stand_in("conan.tools.cmake", CMake=CMake, CMakeToolchain=CMakeToolchain, cmake_layout=lambda recipe: None)
stand_in("conan.tools.files", copy=copy, load=load, rmdir=lambda recipe, path: shutil.rmtree(path))

folder = os.path.join(repository, "packaging", "conan")
loading = importlib.util.spec_from_file_location("recipe", os.path.join(folder, "conanfile.py"))
module = importlib.util.module_from_spec(loading)
loading.loader.exec_module(module)

recipe = module.VelhlsRecipe()
recipe.recipe_folder = folder
recipe.settings = types.SimpleNamespace(os="Linux")
recipe.options = types.SimpleNamespace(shared=True, fPIC=True, check=with_check, rm_safe=lambda name: None)
recipe.export_sources_folder = recipe.source_folder = os.path.join(work, "source")
recipe.package_folder = os.path.join(work, "package")


class CppInfo:
    def __init__(self):
        self.libs, self.defines, self.requires, self.properties = [], [], [], {}
        self.set_property = self.properties.__setitem__
        self.components = collections.defaultdict(CppInfo)


recipe.cpp_info = CppInfo()

recipe.set_version()
for step in ("export_sources", "config_options", "configure", "validate", "layout", "generate", "build", "package",
             "package_info"):
    getattr(recipe, step)()

assert recipe.version.count(".") == 2, recipe.version
assert recipe.cpp_info.properties["cmake_file_name"] == "velhls"
components = recipe.cpp_info.components
assert set(components) == ({"velhls", "check"} if with_check else {"velhls"})
assert components["velhls"].libs == ["velhls"] and components["velhls"].defines == ["VELHLS_SHARED"]
package = recipe.package_folder
for name, component in components.items():
    assert component.properties["cmake_target_name"] == "velhls::" + name
    for library in component.libs:
        assert os.path.exists(os.path.join(package, "lib", f"lib{library}.so.{recipe.version}"))
assert os.path.exists(os.path.join(package, "lib", "libvelhls-check.so")) == with_check
assert os.path.exists(os.path.join(package, "include", "velhls", "VELHLSCheck.h")) == with_check
assert os.path.exists(os.path.join(package, "licenses", "LICENSE"))
assert not os.path.exists(os.path.join(package, "lib", "cmake"))


def use(source, expected, libraries):
    program = os.path.join(work, os.path.splitext(source)[0])
    consumers = os.path.join(repository, "tests", "consumers")
    subprocess.run(["g++", "-std=c++17", os.path.join(consumers, source), "-o", program,
                    "-I" + os.path.join(package, "include"), "-L" + os.path.join(package, "lib"), "-DVELHLS_SHARED",
                    *("-l" + library for library in libraries), "-Wl,-rpath," + os.path.join(package, "lib")], check=True)
    output = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    assert output == load(None, os.path.join(consumers, expected)), output


use("main.cpp", "expected.txt", ["velhls"])
if with_check:
    use("check.cpp", "check_expected.txt", ["velhls-check", "velhls"])
