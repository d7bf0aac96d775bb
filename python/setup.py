"""Builds the velmor_sql extension with the project's CMake build, for pip (offline:
pip install --no-build-isolation ./python)."""
import pathlib
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent


class CMakeBuild(build_ext):
    def build_extension(self, ext: Extension) -> None:
        build = pathlib.Path(self.build_temp).resolve() / "cmake"
        subprocess.check_call([
            "cmake", "-S", str(ROOT), "-B", str(build), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
            "-DVELMOR_SQL_PYTHON=ON", "-DVELMOR_SQL_TESTS=OFF", "-DVELMOR_SQL_BENCH=OFF", "-DVELMOR_SQL_CLI=OFF",
            f"-DPython_EXECUTABLE={sys.executable}"])
        subprocess.check_call(["cmake", "--build", str(build), "--target", "velmor-sql-python"])
        built = next((build / "python" / "velmor_sql").glob("_core*.so"))
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(built, target)


setup(
    packages=["velmor_sql"],
    package_data={"velmor_sql": ["__init__.pyi", "py.typed"]},
    ext_modules=[Extension("velmor_sql._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
