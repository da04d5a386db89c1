import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir


class VelhlsRecipe(ConanFile):
    name = "velhls"
    description = "HTTP Live Streaming playlists in, objects out, and back"
    license = "Apache-2.0"
    topics = ("hls", "m3u8", "playlist", "streaming", "rfc8216")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "check": [True, False]}
    default_options = {"shared": False, "fPIC": True, "check": True}

    @property
    def _repository(self):
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def set_version(self):
        # The version stands in CMakeLists.txt alone.
        project = load(self, os.path.join(self._repository, "CMakeLists.txt"))
        self.version = re.search(r"project\(velhls\s+VERSION\s+([0-9.]+)", project).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "cmake/*", "velhls/*"):
            copy(self, pattern, src=self._repository, dst=self.export_sources_folder)

    def config_options(self):
        if self.settings.os == "Windows":
            del self.options.fPIC

    def configure(self):
        if self.options.shared:
            self.options.rm_safe("fPIC")

    def validate(self):
        check_min_cppstd(self, 17)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("TOOL", "TESTS", "BENCHMARKS", "EXAMPLES", "DOCS"):
            toolchain.cache_variables[f"VELHLS_BUILD_{part}"] = False
        toolchain.cache_variables["VELHLS_BUILD_CHECK"] = bool(self.options.check)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()
        # Conan writes the files for CMake and pkg-config itself.
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "velhls")
        # Who links with the package as a whole gets both libraries.
        self.cpp_info.set_property("cmake_target_name", "velhls::all")
        models = self.cpp_info.components["velhls"]
        models.libs = ["velhls"]
        if self.options.shared:
            models.defines = ["VELHLS_SHARED"]
        models.set_property("cmake_target_name", "velhls::velhls")
        models.set_property("pkg_config_name", "velhls")
        if self.options.check:
            check = self.cpp_info.components["check"]
            check.libs = ["velhls-check"]
            check.requires = ["velhls"]
            check.set_property("cmake_target_name", "velhls::check")
            check.set_property("pkg_config_name", "velhls-check")
