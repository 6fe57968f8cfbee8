"""Makes a package of the tree that this recipe lies in: conan create packaging/conan"""
import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class Socle(ConanFile):
    name = "socle"
    description = "A base library: composable byte streams, 16-bit text and paths, files with forks"
    license = "MIT"
    package_type = "library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False]}
    default_options = {"shared": True}

    @property
    def _tree(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        self.version = re.search(r"VERSION (\d+\.\d+\.\d+)", load(self, os.path.join(self._tree, "CMakeLists.txt")))[1]

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "README.md", "CONTRIBUTING.md", "socle/*", "cmake/*"):
            copy(self, pattern, src=self._tree, dst=self.export_sources_folder)

    def validate(self):
        check_min_cppstd(self, 20)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables.update(SOCLE_BUILD_TESTS=False, SOCLE_BUILD_EXAMPLES=False)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))

    def package_info(self):
        self.cpp_info.libs = ["socle"]
        # The package's own files for CMake.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "socle")]
