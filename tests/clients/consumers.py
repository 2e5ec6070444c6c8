#!/usr/bin/env python3
"""Installs a finished build and uses it as other projects do: each of them is configured, built and run.

usage: consumers.py --build BUILD --scratch FOLDER [--full] [--cc COMMAND] [--cxx COMMAND] [--c-flags FLAGS]
                    [--cxx-flags FLAGS] [--config NAME]

Prints one line for each consumer, and exits with 1 if any of them fails. Without --full it runs only those that
take a few seconds.
"""
import argparse
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parents[1]
SHARED, STATIC, TORVIO = "OldTorvIO::OldTorvIO", "OldTorvIO::OldTorvIO_static", "OldTorvIO::torvio"
WARNINGS = ["-Wall", "-Wextra", "-pedantic", "-Wshadow", "-Wconversion", "-Werror"]


class Failed(Exception):
    pass


def run(command, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", **options)
    if done.returncode != 0:
        raise Failed(f"{shlex.join(map(str, command))}\nexits with {done.returncode}\n{done.stdout}")
    return done.stdout


def require(condition, complaint):
    if not condition:
        raise Failed(complaint)


class Consumers:
    def __init__(self, args):
        self.args = args
        self.scratch = pathlib.Path(args.scratch).resolve()
        shutil.rmtree(self.scratch, ignore_errors=True)
        self.scratch.mkdir(parents=True)
        self.prefix = self.scratch / "prefix"
        self.failures = self.passed = 0
        cache = (pathlib.Path(args.build) / "CMakeCache.txt").read_text(encoding="utf-8")
        self.version = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", cache, re.MULTILINE)[1]
        # Without the tool there is no libtorvio.
        self.has_torvio = (pathlib.Path(args.build) / "libtorvio_exports.txt").exists()

    def check(self, name, work):
        begin = time.monotonic()
        try:
            work()
            how = "passed"
            self.passed += 1
        except Failed as failure:
            how = "FAILED"
            self.failures += 1
            print(failure)
        print(f"{how}  {time.monotonic() - begin:6.1f} s  {name}", flush=True)

    # ---- the installed files ----

    def install(self):
        """Moved after the installation: no file in it may depend on where it was installed."""
        first = self.scratch / "installed"
        run(["cmake", "--install", self.args.build, "--prefix", first, "--strip", *self.config()])
        first.rename(self.prefix)
        found = [file for name in ("LICENSE", "OldTorvIO.h", "records.h", "oldtorvio.pc", "OldTorvIOConfig.cmake")
                 for file in self.prefix.rglob(name)]
        require(len(found) == 5, f"of the five expected files only these are installed: {found}")
        if self.has_torvio:
            found = [file for name in ("torvio.h", "torvio.pc", "libtorvio.so") for file in self.prefix.rglob(name)]
            require(len(found) == 3, f"of the three expected files of libtorvio only these are installed: {found}")
        for file in [*self.prefix.rglob("*.cmake"), *self.prefix.rglob("*.pc")]:
            require(str(self.scratch) not in file.read_text(encoding="utf-8"), f"{file} contains the path of the installation")
        if (self.prefix / "bin" / "torvio").exists():
            for name in ("man/man1/torvio.1", "man/man1/torvio-check.1", "bash-completion/completions/torvio",
                         "zsh/site-functions/_torvio"):
                require((self.prefix / "share" / name).is_file(), f"share/{name} is not installed")
        for file in self.libraries():
            print(f"        {file.stat().st_size:9} bytes  {file.relative_to(self.prefix)}")

    def libraries(self):
        return sorted(file for file in [*self.prefix.rglob("libOldTorvIO*"), *self.prefix.rglob("libtorvio*"),
                                        *self.prefix.rglob("bin/torvio")]
                      if file.is_file() and not file.is_symlink())

    def library_folder(self):
        return next(self.prefix.rglob("oldtorvio.pc")).parents[1]

    def soname_and_package_agree(self):
        """Libraries with the same soname and packages of a compatible version must be the same set."""
        major, minor, patch = map(int, self.version.split("."))
        abi = f"{major}.{minor}" if major == 0 else f"{major}"
        require((self.library_folder() / f"libOldTorvIO.so.{abi}").exists(), f"there is no libOldTorvIO.so.{abi}")
        require(self.package_is_found(self.version), "its own version is not found")
        require(not self.package_is_found(f"{major}.{minor}.{patch + 1}"), "a later patch is found")
        require(not self.package_is_found(f"{major}.{minor + 1}"), "a later minor version is found")
        require(not self.package_is_found(f"{major + 1}.0"), "a later major version is found")
        if major == 0 and minor > 0:
            require(not self.package_is_found(f"0.{minor - 1}"), "an earlier minor version is found")

    def package_is_found(self, version):
        build = self.scratch / f"version_{version}"
        try:
            self.configure("package", build, "C", 99, WANTED=version, LIBRARY=SHARED)
        except Failed as failure:
            require("OldTorvIO" in str(failure) and f'"{version}"' in str(failure), f"not found for another reason: {failure}")
            return False
        return True

    # ---- by CMake ----

    def config(self):
        return ["--config", self.args.config] if self.args.config else []

    def configure(self, project, build, language, standard, **variables):
        variables |= {"LANGUAGE": language, "STANDARD": standard, "CMAKE_PREFIX_PATH": self.prefix}
        self.configure_plainly(HERE / project, build, **variables)

    def configure_plainly(self, source, build, **variables):
        variables |= {"CMAKE_C_COMPILER": self.args.cc, "CMAKE_CXX_COMPILER": self.args.cxx,
                      "CMAKE_C_FLAGS": self.args.c_flags, "CMAKE_CXX_FLAGS": self.args.cxx_flags}
        log = run(["cmake", "-S", source, "-B", build, "--no-warn-unused-cli",
                   *(f"-D{name}={value}" for name, value in variables.items())])
        require("warning" not in log.lower(), f"configuring warns:\n{log}")

    def build(self, folder):
        log = run(["cmake", "--build", folder, "-j", os.cpu_count() or 2])
        require("warning" not in log.lower(), f"building warns:\n{log}")

    def run_client(self, program, library="libOldTorvIO"):
        folder = self.scratch / "written"
        folder.mkdir(exist_ok=True)
        run([program, folder])
        linked = run(["ldd", program]) if shutil.which("ldd") else None
        return None if linked is None else library in linked

    def find_package(self, language, standard, library):
        def work():
            build = self.scratch / f"find_{language}{standard}_{library.rpartition(':')[2]}"
            self.configure("package", build, language, standard, WANTED=self.version, LIBRARY=library)
            self.build(build)
            if library == TORVIO:
                require(self.run_client(build / "client", "libtorvio") is not False, "the program is not linked with it")
                return
            needs_library = self.run_client(build / "client")
            require(needs_library in (None, library == SHARED), "the program is linked with the other library")
        return work

    def subdirectory(self):
        build = self.scratch / "subdirectory"
        self.configure_plainly(HERE / "subdirectory", build, SOURCE=TOP)
        self.build(build)
        for source in ("client.c", "client.cpp"):
            for library in ("OldTorvIO", "OldTorvIO_static"):
                needs_library = self.run_client(build / f"{source}_{library}")
                require(needs_library in (None, library == "OldTorvIO"), "the program is linked with the other library")

    def examples(self):
        build = self.scratch / "examples"
        self.configure_plainly(TOP / "examples", build, CMAKE_PREFIX_PATH=self.prefix)
        self.build(build)
        run([build / "example_readme", self.scratch / "readme.part"])
        run([build / "example_nest", self.scratch])

    # ---- by pkg-config ----

    def pkg_config(self, language, standard, static):
        def work():
            folder = self.library_folder()
            if static:
                # Without the shared library, which the linker would prefer.
                copy = self.scratch / "static_only"
                if not copy.exists():
                    shutil.copytree(self.prefix, copy, symlinks=True)
                    for shared in copy.rglob("libOldTorvIO.so*"):
                        shared.unlink()
                folder = copy / folder.relative_to(self.prefix)
            found = run(["pkg-config", "--cflags", "--libs", *(["--static"] if static else []), "oldtorvio"],
                        env=dict(os.environ, PKG_CONFIG_PATH=str(folder / "pkgconfig")))
            in_c = language == "C"
            program = self.scratch / f"pkg_{language}{standard}_{'static' if static else 'shared'}"
            run([*shlex.split(self.args.cc if in_c else self.args.cxx),
                 *shlex.split(self.args.c_flags if in_c else self.args.cxx_flags),
                 f"-std={'c' if in_c else 'c++'}{standard}", *WARNINGS, HERE / ("client.c" if in_c else "client.cpp"), "-o", program,
                 *shlex.split(found), f"-Wl,-rpath,{folder}"])
            needs_library = self.run_client(program)
            require(needs_library in (None, not static), "the program is linked with the other library")
        return work

    def torvio_by_pkg_config(self):
        folder = self.library_folder()
        found = run(["pkg-config", "--cflags", "--libs", "torvio"],
                    env=dict(os.environ, PKG_CONFIG_PATH=str(folder / "pkgconfig")))
        program = self.scratch / "pkg_torvio"
        run([*shlex.split(self.args.cc), *shlex.split(self.args.c_flags), "-std=c99", *WARNINGS,
             HERE.parent / "libtorvio" / "client.c", "-o", program, *shlex.split(found), f"-Wl,-rpath,{folder}"])
        require(self.run_client(program, "libtorvio") is not False, "the program is not linked with it")

    def all(self):
        self.check("installation, moved elsewhere", self.install)
        if self.failures:
            return
        self.check("soname and package version agree", self.soname_and_package_agree)
        found = [("C", 99, SHARED), ("CXX", 17, SHARED), ("CXX", 17, STATIC)]
        if self.args.full:
            found += [("C", 99, STATIC), ("CXX", 20, SHARED), ("CXX", 20, STATIC)]
        if self.has_torvio:
            found += [("C", 99, TORVIO)]
        for language, standard, library in found:
            self.check(f"find_package, {language.replace('X', '+')}{standard}, {library}",
                       self.find_package(language, standard, library))
        by_pkg_config = [("C", 99, False), ("C", 99, True)]
        if self.args.full:
            by_pkg_config += [("CXX", 17, False), ("CXX", 17, True)]
        for language, standard, static in by_pkg_config:
            name = f"pkg-config{' --static' if static else ''}, {language.replace('X', '+')}{standard}"
            if shutil.which("pkg-config"):
                self.check(name, self.pkg_config(language, standard, static))
            else:
                print(f"skipped            {name}: there is no pkg-config")
        if self.has_torvio and shutil.which("pkg-config"):
            self.check("pkg-config, C99, libtorvio", self.torvio_by_pkg_config)
        self.check("examples, as a project of their own", self.examples)
        if self.args.full:
            self.check("add_subdirectory, C99 and C++17, both libraries", self.subdirectory)


def main():
    options = argparse.ArgumentParser(description="Installs a finished build and uses it as other projects do.")
    options.add_argument("--build", required=True, metavar="FOLDER")
    options.add_argument("--scratch", required=True, metavar="FOLDER")
    options.add_argument("--full", action="store_true")
    options.add_argument("--cc", default="cc")
    options.add_argument("--cxx", default="c++")
    options.add_argument("--c-flags", default="")
    options.add_argument("--cxx-flags", default="")
    options.add_argument("--config", default="")
    consumers = Consumers(options.parse_args())
    consumers.all()
    print(f"{consumers.passed} passed, {consumers.failures} failed")
    return 1 if consumers.failures else 0


if __name__ == "__main__":
    sys.exit(main())
