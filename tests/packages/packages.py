#!/usr/bin/env python3
"""Checks the packages in build/packages: what is in them, and that they work where nothing else of the project is.

usage: packages.py --source FOLDER --build FOLDER [--short] [--kinds deb,tgz,zip] [--only PATTERN]

--build is the release build, whose programs make sample files. Without --short the Debian packages are also installed
in a Debian system that debootstrap makes (as root), and all packages are built a second time in another folder, from an
empty compiler cache, and must have the same bytes. Prints a line for each check, and exits with 1 if any fails.
"""
import argparse
import hashlib
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
TRIPLE = "x86_64-linux-gnu"
WINE = "/usr/lib/wine/wine64"
# What a process of Debian 12, and any later system, has.
NEWEST_GLIBC = (2, 36)
GLIBC = {"libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2"}
PAGES = ["torvio", *(f"torvio-{name}" for name in ("check", "convert", "diff", "draw", "format", "from-json", "help",
                                                   "info", "json", "map", "recover", "schema"))]


class Failed(Exception):
    pass


class Skipped(Exception):
    pass


def run(command, code=0, **options):
    options.setdefault("stdin", subprocess.DEVNULL)
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    text = done.stdout.decode("utf-8", "replace")
    if done.returncode != code:
        raise Failed(f"{shlex.join(map(str, command))}\nexits with {done.returncode}\n{text}")
    return text


def require(condition, complaint):
    if not condition:
        raise Failed(complaint)


def require_same(found, wanted, what):
    found, wanted = set(found), set(wanted)
    require(found == wanted, f"{what}: missing {sorted(wanted - found)}, unexpected {sorted(found - wanted)}")


def files_in(folder):
    """The names of all files and links, without folders."""
    return {file.relative_to(folder).as_posix() for file in folder.rglob("*") if file.is_symlink() or not file.is_dir()}


def digest(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()


class Checks:
    def __init__(self, options):
        self.only = re.compile(options.only)
        self.source, self.build, self.short = options.source.resolve(), options.build.resolve(), options.short
        self.kinds = options.kinds.split(",")
        self.made = self.source / "build" / "packages"
        self.scratch = self.source / "build" / "package-tests"
        shutil.rmtree(self.scratch, ignore_errors=True)
        self.scratch.mkdir(parents=True)
        lists = (self.source / "CMakeLists.txt").read_text(encoding="utf-8")
        self.version = re.search(r"project\(OldTorvIO VERSION ([0-9.]+)", lists)[1]
        self.abi = ".".join(self.version.split(".")[:2]) if self.version.startswith("0.") else self.version.split(".")[0]
        self.debian = f"{self.version}-1_amd64.deb"
        self.packages = [f"liboldtorvio{self.abi}", f"libtorvio{self.abi}", "liboldtorvio-dev", "torvio", "python3-oldtorvio"]
        self.headers = {f"include/{name}" for name in files_in(self.source / "include")} | {"include/torvio.h"}
        self.exports = (self.source / "cmake" / "exports.txt").read_text(encoding="utf-8").split()
        header = (self.source / "torvio" / "include" / "torvio.h").read_text(encoding="utf-8")
        self.torvio_exports = re.findall(r"(?m)^TORVIO_API .*?(torvio_[a-z_]+)\(", header)
        self.failures = self.passed = self.skipped = 0

    def check(self, name, work, is_needed=False):
        if not is_needed and not self.only.search(name):
            return True
        begin, how = time.monotonic(), "passed"
        try:
            work()
            self.passed += 1
        except Skipped as reason:
            how, name = "skipped", f"{name}: {reason}"
            self.skipped += 1
        except (Failed, OSError, subprocess.SubprocessError) as failure:
            how = "FAILED"
            self.failures += 1
            print(failure)
        print(f"{how}  {time.monotonic() - begin:6.1f} s  {name}", flush=True)
        return how == "passed"

    def folder(self, name):
        folder = self.scratch / name
        folder.mkdir(parents=True)
        return folder

    def samples(self):
        """Files of most kinds, and a damaged one."""
        folder = self.folder("samples")
        for program in ("example_nest", "make_samples"):
            run([self.build / "examples" / program, folder])
        (folder / "damaged.sheet").write_bytes((folder / "nest_180.sheet").read_bytes()[:60000])

    # ---- what is in all of them ----

    def no_traces(self, tree):
        """Neither folders of this machine nor debugging information. Programs and libraries are not writable by all."""
        trees = {str(self.source).encode(), str(pathlib.Path.home()).encode() + b"/"}
        for name in files_in(tree):
            file = tree / name
            if file.is_symlink():
                continue
            content = file.read_bytes()
            for trace in trees:
                require(trace not in content, f"{name} contains {trace.decode()}")
            mode = file.stat().st_mode & 0o777
            require(mode == (0o755 if "bin/" in name and not name.endswith(".dll") else 0o644) or "windows" in str(tree),
                    f"{name} has the mode {mode:o}")
            if content[:4] == b"\x7fELF" or name.endswith((".dll", ".exe", ".a")):
                sections = run(["objdump", "-h", file])
                require(".debug_" not in sections, f"{name} has debugging information")

    def again(self, kind):
        """Packs the same build once more."""
        def work():
            folder = self.folder(f"again-{kind}")
            epoch = run(["git", "-C", self.source, "log", "-1", "--format=%ct"]).strip()
            time.sleep(2)  # the times of archives count in steps of at most that
            run(["cpack", "--config", self.source / "build" / f"package-{kind}" / "CPackConfig.cmake", "-B", folder],
                env=dict(os.environ, SOURCE_DATE_EPOCH=os.environ.get("SOURCE_DATE_EPOCH", epoch)))
            self.same_bytes(folder, {"deb": "*.deb", "tgz": "*.tar.gz", "zip": "*.zip"}[kind])
        return work

    def same_bytes(self, folder, pattern):
        first = {file.name: digest(file) for file in self.made.glob(pattern)}
        second = {file.name: digest(file) for file in folder.glob(pattern)}
        require(first, f"there is no {pattern}")
        different = [name for name in sorted(first.keys() | second.keys()) if first.get(name) != second.get(name)]
        require(not different, f"these differ: {different} ({folder})")

    def built_elsewhere(self):
        """A second build, of a clone in another folder, in which every file is compiled again."""
        place = self.folder("another folder")
        clone = place / "of another name"
        run(["git", "clone", "-q", self.source, clone])
        require(not run(["git", "-C", self.source, "status", "--porcelain", "--untracked-files=no"]),
                "there are changes that are not committed: the clone lacks them")
        # The packages share what they compile only with each other.
        run([clone / "cmake" / "packaging" / "make.sh", *self.kinds],
            env=dict(os.environ, CCACHE_DIR=str(place / "ccache"), CCACHE_BASEDIR=str(clone)))
        for pattern in ("*.deb", "*.tar.gz", "*.zip"):
            if list(self.made.glob(pattern)):
                self.same_bytes(clone / "build" / "packages", pattern)
        shutil.rmtree(place)

    # ---- Debian ----

    def deb(self, name):
        return self.made / f"{name}_{self.debian}"

    def unpack_debs(self):
        require_same([file.name for file in self.made.glob("*.deb")], [self.deb(name).name for name in self.packages],
                     "packages")
        self.root = self.folder("unpacked")
        library, documents = f"usr/lib/{TRIPLE}", "usr/share/doc"
        wanted = {
            self.packages[0]: {f"{library}/libOldTorvIO.so.{self.abi}", f"{library}/libOldTorvIO.so.{self.version}"},
            self.packages[1]: {f"{library}/libtorvio.so.{self.abi}", f"{library}/libtorvio.so.{self.version}"},
            "liboldtorvio-dev": {f"usr/{name}" for name in self.headers} | {
                f"{library}/{name}" for name in ("libOldTorvIO.so", "libOldTorvIO.a", "libtorvio.so",
                                                 "pkgconfig/oldtorvio.pc", "pkgconfig/torvio.pc")} | {
                f"{library}/cmake/OldTorvIO/OldTorvIO{name}.cmake"
                for name in ("Config", "ConfigVersion", "Targets", "Targets-relwithdebinfo")},
            "torvio": {"usr/bin/torvio", "usr/share/bash-completion/completions/torvio",
                       "usr/share/zsh/vendor-completions/_torvio"} | {f"usr/share/man/man1/{page}.1.gz" for page in PAGES},
        }
        module = "usr/lib/python3/dist-packages/oldtorvio"
        version = run(["/usr/bin/python3", "-c", "import sysconfig; print(sysconfig.get_config_var('EXT_SUFFIX'))"]).strip()
        modules = self.source / "bindings" / "python" / "oldtorvio"
        wanted["python3-oldtorvio"] = {f"{module}/_core{version}"} | {
            f"{module}/{file.name}" for file in modules.iterdir() if file.suffix in (".py", ".pyi", ".typed")}
        compiled_in = {self.packages[1]: ["nlohmann-json3-dev"], "torvio": ["libcli11-dev", "nlohmann-json3-dev"],
                       "python3-oldtorvio": ["nlohmann-json3-dev", "pybind11-dev"]}
        for name, own in wanted.items():
            folder = self.folder(f"deb/{name}")
            run(["dpkg-deb", "-x", self.deb(name), folder])
            run(["dpkg-deb", "-x", self.deb(name), self.root])
            about = {f"{documents}/{name}/{file}" for file in ("copyright", "changelog.gz", "changelog.Debian.gz")}
            about |= {f"{documents}/{name}/licences/{file}.txt" for file in compiled_in.get(name, ())}
            require_same(files_in(folder), own | about | {f"usr/share/lintian/overrides/{name}"}, name)
            self.no_traces(folder)
            control = self.folder(f"control/{name}")
            run(["dpkg-deb", "-e", self.deb(name), control])
            run(["md5sum", "--quiet", "-c", control / "md5sums"], cwd=folder)
            listed = {line[34:] for line in (control / "md5sums").read_text(encoding="utf-8").splitlines()}
            require_same(listed, {one for one in files_in(folder) if not (folder / one).is_symlink()}, "md5sums")

    def debian_fields(self):
        def field(package, name):
            return run(["dpkg-deb", "-f", self.deb(package), name]).strip()
        own = f"{self.packages[0]} (= {self.version}-1), {self.packages[1]} (= {self.version}-1)"
        require(field("liboldtorvio-dev", "Depends") == own, "the -dev package does not depend on its libraries")
        for package in self.packages:
            require(field(package, "Version") == f"{self.version}-1", f"{package} has another version")
            depends = {one.split()[0] for one in field(package, "Depends").split(", ")}
            wanted = {"libc6", "libgcc-s1", "libstdc++6"}
            if package in ("torvio", "python3-oldtorvio"):
                wanted.add("libsqlite3-0")  # for catalogues
            if package == "python3-oldtorvio":
                wanted.add("python3")
            if package != "liboldtorvio-dev":
                require_same(depends, wanted, f"dependencies of {package}")
        for package, exports in ((self.packages[0], self.exports), (self.packages[1], self.torvio_exports)):
            control = self.scratch / "control" / package
            symbols = (control / "symbols").read_text(encoding="utf-8")
            require_same(re.findall(r"(?m)^ (\S+)@Base", symbols), exports, f"symbols of {package}")
            require(f" {package} (>= {self.version})\n" in (control / "shlibs").read_text(), "shlibs names another version")
            require_same([file.name for file in control.iterdir()], ["control", "md5sums", "shlibs", "symbols", "triggers"],
                         f"control files of {package}")

    def lintian(self):
        if not shutil.which("lintian"):
            raise Skipped("lintian is not installed")
        packages = [str(one) for one in sorted(self.made.glob("*.deb"))]
        command = ["lintian", "--display-info", "--pedantic", "--suppress-tags", "unused-override", *packages]
        done = subprocess.run(command, capture_output=True, text=True)
        require(done.returncode == 0 and not done.stdout, f"lintian remarks:\n{done.stdout}{done.stderr}")
        # Overridden, because machine code can look like a misspelt word.
        tag = "spelling-error-in-binary"
        found = run(["lintian", "--no-override", "--display-info", "--tags", tag, *packages])
        words = set(re.findall(rf"{tag} (\S+) ", found))
        sources = [file for folder in ("include", "src", "torvio", "bindings/python")
                   for file in sorted((self.source / folder).rglob("*")) if file.suffix in (".h", ".cpp", ".css", ".js", ".in")]
        require(len(sources) > 100, "where are the sources?")
        for file in sources:
            wrong = words.intersection(re.findall(r"\w+", file.read_text(encoding="utf-8")))
            require(not wrong, f"{file} has misspelt words: {sorted(wrong)}")

    def used(self, prefix, libraries, environment, samples):
        """Each part of an installation below `prefix`, by a user whose environment is `environment`."""
        environment = {**os.environ, "LC_ALL": "C.UTF-8", "LD_LIBRARY_PATH": str(libraries),
                       "PKG_CONFIG_PATH": str(libraries / "pkgconfig"), **environment}
        torvio = prefix / "bin" / "torvio"
        text = run([torvio, "check", samples / "nest_180.sheet"], env=environment)
        require(": sound, sheet, version 180," in text, text)
        text = run([torvio, "check", samples], code=1, env=environment)
        require("damaged.sheet: damaged, sheet" in text, text)
        require(run([torvio, "--version"], env=environment) == f"torvio {self.version}\n", "another version")
        folder = self.folder(f"used/{prefix.parent.name}-{prefix.name}")
        catalogue = folder / "all.sqlite"
        run([torvio, "check", samples, "-o", catalogue], code=1, env=environment)
        require(catalogue.read_bytes().startswith(b"SQLite format 3"), "there is no catalogue")

        for package, client in (("oldtorvio", "clients/client.c"), ("torvio", "libtorvio/client.c")):
            flags = run(["pkg-config", "--cflags", "--libs", package], env=environment)
            program = folder / f"{package}_c"
            run(["gcc", "-std=c99", "-Wall", "-Wextra", "-pedantic", "-Werror", self.source / "tests" / client, "-o",
                 program, *shlex.split(flags)])
            require(str(libraries) in run(["ldd", program], env=environment), "the program uses another library")
            run([program, folder], env=environment)
        for library in ("OldTorvIO", "OldTorvIO_static"):
            build = folder / library
            run(["cmake", "-S", self.source / "tests" / "clients" / "package", "-B", build, "-DLANGUAGE=CXX", "-DSTANDARD=17",
                 f"-DWANTED={self.version}", f"-DLIBRARY=OldTorvIO::{library}", f"-DCMAKE_PREFIX_PATH={prefix}"])
            found = (build / "CMakeCache.txt").read_text(encoding="utf-8")
            require(f"OldTorvIO_DIR:PATH={libraries}" in found, "another installation is found")
            run(["cmake", "--build", build])
            run([build / "client", folder], env=environment)

    def debs_used(self):
        self.used(self.root / "usr", self.root / "usr" / "lib" / TRIPLE, {}, self.scratch / "samples")

    PYTHON_TASK = """
import sys, oldtorvio
sheet = oldtorvio.load(sys.argv[1])
print(oldtorvio.__file__, len(sheet.partList.parts), sheet.width)
"""

    def python(self):
        modules = self.root / "usr" / "lib" / "python3" / "dist-packages"
        text = run(["/usr/bin/python3", "-c", self.PYTHON_TASK, self.scratch / "samples" / "nest_180.sheet"],
                   env={**os.environ, "PYTHONPATH": str(modules), "PYTHONDONTWRITEBYTECODE": "1"})
        require(text == f"{modules}/oldtorvio/__init__.py 12 96.0\n", text)

    def binding(self, language):
        def work():
            command = [sys.executable, self.source / "tests" / "bindings" / "run.py", language, "--source", self.source,
                       "--build", self.build, "--libraries", self.root / "usr" / "lib" / TRIPLE,
                       "--scratch", self.scratch / "bindings" / language]
            done = subprocess.run([str(one) for one in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                  stdin=subprocess.DEVNULL)
            if done.returncode == 77:
                raise Skipped(done.stdout.strip())
            require(done.returncode == 0, done.stdout)
        return work

    # ---- a Debian system of its own ----

    def installed(self):
        """Installs the packages in a new system, uses them as in any other, and removes them."""
        if os.geteuid() != 0 or not shutil.which("debootstrap"):
            raise Skipped("only root can make a Debian system, with debootstrap")
        system = self.source / "build" / "debian"
        release = "bookworm"
        if not (system / "ready").exists():
            shutil.rmtree(system, ignore_errors=True)
            run(["debootstrap", "--variant=minbase", release, system])
            (system / "ready").touch()
        (system / "packages").mkdir(exist_ok=True)
        for old in (system / "packages").iterdir():
            old.unlink()
        for package in self.packages:
            shutil.copy(self.deb(package), system / "packages")
        work = system / "work"
        shutil.rmtree(work, ignore_errors=True)
        shutil.copytree(self.scratch / "samples", work / "samples")
        for name in ("clients", "libtorvio"):
            shutil.copytree(self.source / "tests" / name, work / "tests" / name)
        (work / "task.py").write_text(self.PYTHON_TASK, encoding="utf-8")
        names = " ".join(f"/packages/{self.deb(name).name}" for name in self.packages)
        script = f"""set -eu
        export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
        apt-get update -qq
        apt-get install -y -qq --no-install-recommends {names} >/dev/null
        cd /work
        dpkg --verify {' '.join(self.packages)}
        ldd /usr/bin/torvio /usr/lib/*/libOldTorvIO.so.{self.abi} /usr/lib/*/libtorvio.so.{self.abi} | grep 'not found' && exit 1
        ldconfig -p | grep -c 'lib\\(OldTorvIO\\|torvio\\).so.{self.abi} ' | grep -x 2
        torvio check samples/nest_180.sheet
        python3 task.py samples/nest_180.sheet
        ls /usr/lib/python3/dist-packages/oldtorvio/__pycache__ | grep -c pyc
        apt-get install -y -qq --no-install-recommends g++ cmake make pkg-config >/dev/null
        for package in oldtorvio torvio; do
          source=tests/clients/client.c; test $package = oldtorvio || source=tests/libtorvio/client.c
          gcc -std=c99 $source -o client $(pkg-config --cflags --libs $package)
          ./client /tmp
        done
        cmake -S tests/clients/package -B build -DLANGUAGE=CXX -DSTANDARD=17 -DWANTED={self.version} \\
          -DLIBRARY=OldTorvIO::OldTorvIO >/dev/null
        cmake --build build >/dev/null
        build/client /tmp
        apt-get purge -y -qq {' '.join(self.packages)} >/dev/null
        ! ls -d /usr/lib/*/*[oO]ld[tT]orv* /usr/lib/python3/dist-packages/oldtorvio /usr/share/doc/*torvio* /usr/bin/torvio 2>/dev/null
        echo all done
        """
        text = run([shutil.which("chroot"), system, "sh", "-c", script], env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin"})
        require(": sound, sheet, version 180," in text and "/oldtorvio/__init__.py 12 96.0" in text and
                text.endswith("all done\n"), text)

    # ---- the archive for Linux ----

    def tgz_contents(self):
        name = f"oldtorvio-{self.version}-linux-x86_64"
        self.tgz = self.folder("moved to a folder with blanks") / name
        run(["tar", "-xf", self.made / f"{name}.tar.gz"], cwd=self.tgz.parent)
        require([one.name for one in self.tgz.parent.iterdir()] == [name], "the archive has not exactly one folder")
        own = {name for name in files_in(self.tgz) if not name.startswith("share/doc/OldTorvIO/")}
        libraries = {f"lib/lib{name}.so{end}" for name in ("OldTorvIO", "torvio") for end in
                     ("", f".{self.abi}", f".{self.version}")}
        require_same(own, self.headers | libraries | {
            "bin/torvio", "lib/libOldTorvIO.a", "lib/pkgconfig/oldtorvio.pc", "lib/pkgconfig/torvio.pc",
            "share/bash-completion/completions/torvio", "share/zsh/site-functions/_torvio"} | {
            f"lib/cmake/OldTorvIO/OldTorvIO{name}.cmake"
            for name in ("Config", "ConfigVersion", "Targets", "Targets-relwithdebinfo")} | {
            f"share/man/man1/{page}.1" for page in PAGES}, "files")
        self.documents(self.tgz, "libsqlite3-dev")
        self.no_traces(self.tgz)
        owners = run(["tar", "--numeric-owner", "-tvf", self.made / f"{name}.tar.gz"])
        require(all(line.split()[1] == "0/0" for line in owners.splitlines()), "a file does not belong to root")

    def documents(self, tree, runtime):
        found = files_in(tree / "share" / "doc" / "OldTorvIO")
        wanted = {"README.md", "CHANGELOG.md", "LICENSE"}
        wanted |= {f"licences/{name}.txt" for name in ("libcli11-dev", "nlohmann-json3-dev", runtime)}
        for folder in ("docs", "examples"):
            listed = run(["git", "-C", self.source, "ls-files", folder]).split()
            wanted |= set(listed)
        require_same(found, wanted, "documents")

    def tgz_needs_only_glibc(self):
        newest = (0, 0)
        for file in ("bin/torvio", f"lib/libOldTorvIO.so.{self.version}", f"lib/libtorvio.so.{self.version}"):
            text = run(["objdump", "-p", self.tgz / file])
            needed = set(re.findall(r"NEEDED\s+(\S+)", text))
            require(needed <= GLIBC, f"{file} needs {needed - GLIBC}")
            for major, minor in re.findall(r"GLIBC_(\d+)\.(\d+)", text):
                newest = max(newest, (int(major), int(minor)))
        require(newest == NEWEST_GLIBC, f"the newest function is of glibc {newest}: docs/packages.md says {NEWEST_GLIBC}")

    def tgz_alone(self):
        """In a folder that is the root of a process, and has only these files and glibc."""
        if os.geteuid() != 0:
            raise Skipped("only root can call chroot")
        root = self.folder("alone")
        for name in GLIBC:
            target = root / ("lib64" if name.startswith("ld-") else "lib")
            target.mkdir(exist_ok=True)
            source = next(path / name for path in map(pathlib.Path, (f"/lib/{TRIPLE}", "/lib64")) if (path / name).exists())
            shutil.copy(source, target)
        shutil.copytree(self.tgz, root / "opt", symlinks=True)
        shutil.copy(self.scratch / "samples" / "nest_180.sheet", root)
        text = run([shutil.which("chroot"), root, "/opt/bin/torvio", "check", "/nest_180.sheet"], env={})
        require(": sound, sheet, version 180," in text, text)

    def tgz_used(self):
        self.used(self.tgz, self.tgz / "lib", {}, self.scratch / "samples")

    # ---- the archive for Windows ----

    def zip_contents(self):
        name = f"oldtorvio-{self.version}-windows-x86_64"
        self.zip = self.folder("windows") / name
        run(["unzip", "-q", self.made / f"{name}.zip"], cwd=self.zip.parent)
        own = {name for name in files_in(self.zip) if not name.startswith("share/doc/OldTorvIO/")}
        require_same(own, self.headers | {
            "bin/torvio.exe", "bin/OldTorvIO.dll", "bin/libtorvio.dll", "lib/OldTorvIO.def", "lib/libtorvio.def",
            "lib/libOldTorvIO.dll.a", "lib/libtorvio.dll.a", "lib/libOldTorvIO.a", "lib/pkgconfig/oldtorvio.pc",
            "lib/pkgconfig/torvio.pc"} | {f"lib/cmake/OldTorvIO/OldTorvIO{name}.cmake"
                                          for name in ("Config", "ConfigVersion", "Targets", "Targets-relwithdebinfo")}, "files")
        self.documents(self.zip, "mingw-w64-x86-64-dev")
        self.no_traces(self.zip)

    def zip_imports(self):
        """Only DLLs that are a part of Windows; the exports are those of the lists."""
        windows = {"kernel32.dll", "msvcrt.dll", "shell32.dll", "advapi32.dll"}
        exports = {"OldTorvIO.dll": self.exports, "libtorvio.dll": self.torvio_exports}
        for name in ("torvio.exe", *exports):
            text = run(["x86_64-w64-mingw32-objdump", "-p", self.zip / "bin" / name])
            imports = {one.lower() for one in re.findall(r"DLL Name: (\S+)", text)}
            require(imports and imports <= windows, f"{name} needs {imports - windows}")
            if name in exports:
                found = re.findall(r"(?m)^\s+\[\s*\d+\] (\w+)", text.partition("[Ordinal/Name Pointer] Table")[2])
                require_same(found, exports[name], f"exports of {name}")
                defined = (self.zip / "lib" / name.replace(".dll", ".def")).read_text(encoding="utf-8").split()
                require(defined[1] == name.removesuffix(".dll"), f"the definition file of {name} is of another")
                require_same(defined[3:], exports[name], f"the definition file of {name}")

    def wine(self, *command, code=0, **options):
        return run([WINE, *command], code, env=self.wine_environment, **options).replace("\r\n", "\n")

    def start_wine(self):
        if not pathlib.Path(WINE).exists():
            raise Skipped("wine64 is not installed")
        prefix = self.source / "build" / "wine"
        self.wine_environment = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all", "LC_ALL": "C.UTF-8"}
        prefix.mkdir(exist_ok=True)
        # The server is kept between the tests; it fails if there is one already. What stays must not hold a pipe that is
        # read to its end.
        quiet = {"env": self.wine_environment, "stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                 "stderr": subprocess.DEVNULL, "timeout": 300}
        subprocess.run(["/usr/lib/wine/wineserver64", "-p60"], check=False, **quiet)
        subprocess.run([WINE, "cmd", "/c", "exit"], check=True, **quiet)

    def zip_names(self):
        """Any name that Windows allows: beyond its code page, long ones, and blanks."""
        torvio = self.zip / "bin" / "torvio.exe"
        place = self.folder("names")
        deep = pathlib.Path(*[f"Ordner 板 {number} {'x' * 40}" for number in range(6)])
        (place / deep).mkdir(parents=True)
        names = ["Großteil 板.sheet", "Ελληνικά ρ.sheet", "emoji 🔩.sheet", str(deep / "langer Name.sheet")]
        require(len(str(place / deep)) > 300, "the path is not long")
        for name in names:
            shutil.copy(self.scratch / "samples" / "nest_180.sheet", place / name)
            for path in (name, "Z:" + str(place / name).replace("/", "\\")):
                text = self.wine(torvio, "check", path, cwd=place)
                require(text.startswith(f"{path}: sound, sheet, version 180, status 0,"), text)
        # Found in a folder.
        text = self.wine(torvio, "check", "--json", ".", cwd=place)
        require(all(f'"path":"./{name}"' in text for name in names) and text.count('"verdict":"sound"') == len(names), text)
        # From a list, written, and read again.
        (place / "list.txt").write_bytes("".join(f"{name}\n" for name in names).encode())
        text = self.wine(torvio, "check", "--files-from", "list.txt", cwd=place)
        require(text.count(": sound, sheet,") == len(names), text)
        for name in names:
            json, copy = (str(pathlib.Path(name).with_suffix(end)) for end in (".json", ".copy.sheet"))
            self.wine(torvio, "json", name, "-o", json, cwd=place)
            self.wine(torvio, "from-json", json, "-o", copy, cwd=place)
            require((place / copy).read_bytes() == (place / name).read_bytes(), f"{copy} has other bytes")
            require("No differences" in self.wine(torvio, "diff", name, copy, cwd=place), f"{copy} differs")
            self.wine(torvio, "map", "--html", name, "-o", json + ".html", cwd=place)
            require(pathlib.PurePath(name).name in (place / (json + ".html")).read_text(encoding="utf-8"), "no title")
        text = self.wine(torvio, "convert", names[0], names[0], "--version", "112", code=2, cwd=place)
        require("is both a file to read and the output" in text, text)
        text = self.wine(torvio, "check", "板 fehlt.sheet", code=3, cwd=place)
        require(text == "板 fehlt.sheet: unreadable, cannot be opened: No such file or directory\n", text)
        text = self.wine(torvio, "info", str(deep), code=3, cwd=place)
        require("is a folder" in text, text)

    def zip_tool(self):
        torvio = self.zip / "bin" / "torvio.exe"
        require(self.wine(torvio, "--version") == f"torvio {self.version}\n", "another version")
        text = self.wine(torvio, "check", "damaged.sheet", code=1, cwd=self.scratch / "samples")
        require(text.startswith("damaged.sheet: damaged, sheet, version 180,"), text)
        text = self.wine(torvio, "check", ".", "-o", "c.sqlite", code=3, cwd=self.scratch / "samples")
        require("built without SQLite and has no catalogues" in text, text)
        # All but the names of catalogues is as on Linux.
        for command in (["json", "nest_180.sheet"], ["draw", "punch.mch"], ["info", "brackets.group"], ["map", "tab.mac"]):
            here = run([self.build / "bin" / "torvio", *command], cwd=self.scratch / "samples")
            require(self.wine(torvio, *command, cwd=self.scratch / "samples") == here, f"{command} prints something else")

    def zip_programs(self):
        """Programs in C, linked with the import libraries, and one in C++ by the CMake package, next to the DLLs."""
        folder = self.folder("programs")
        for library in ("OldTorvIO.dll", "libtorvio.dll"):
            shutil.copy(self.zip / "bin" / library, folder)
        for name, source, library in (("old.exe", "clients/client.c", "-lOldTorvIO"),
                                      ("companion.exe", "libtorvio/client.c", "-ltorvio")):
            run(["x86_64-w64-mingw32-gcc", "-std=c99", "-Wall", "-Werror", self.source / "tests" / source, "-o", folder / name,
                 "-I", self.zip / "include", "-L", self.zip / "lib", library])
            needed = re.findall(r"DLL Name: (\S+)", run(["x86_64-w64-mingw32-objdump", "-p", folder / name]))
            require(any(one in ("OldTorvIO.dll", "libtorvio.dll") for one in needed), f"{name} needs {needed}")
            self.wine(folder / name, ".", cwd=folder)
        build = folder / "package"
        run(["cmake", "-S", self.source / "tests" / "clients" / "package", "-B", build, "-DLANGUAGE=CXX", "-DSTANDARD=17",
             f"-DWANTED={self.version}", "-DLIBRARY=OldTorvIO::OldTorvIO", f"-DOldTorvIO_DIR={self.zip}/lib/cmake/OldTorvIO",
             f"-DCMAKE_TOOLCHAIN_FILE={self.source}/cmake/toolchain-windows.cmake", "-DCMAKE_EXE_LINKER_FLAGS=-static"])
        run(["cmake", "--build", build])
        shutil.copy(build / "client.exe", folder)
        self.wine(folder / "client.exe", ".", cwd=folder)

    # ---- all ----

    def all(self):
        if not self.check("sample files", self.samples, True):
            return
        if "deb" in self.kinds and self.check("Debian: contents", self.unpack_debs, True):
            self.check("Debian: control files", self.debian_fields)
            self.check("Debian: lintian", self.lintian)
            self.check("Debian: torvio, pkg-config, find_package", self.debs_used)
            self.check("Debian: Python", self.python)
            for language in ("csharp", "pascal", "node"):
                self.check(f"Debian: {language}", self.binding(language))
            if not self.short:
                self.check("Debian: installed in a new system", self.installed)
        if "tgz" in self.kinds and self.check("tar.gz: contents", self.tgz_contents, True):
            self.check("tar.gz: needs only glibc", self.tgz_needs_only_glibc)
            self.check("tar.gz: without any other file", self.tgz_alone)
            self.check("tar.gz: torvio, pkg-config, find_package", self.tgz_used)
        if "zip" in self.kinds and self.check("zip: contents", self.zip_contents, True):
            self.check("zip: imports and exports", self.zip_imports)
            if self.check("zip: Wine", self.start_wine, True):
                self.check("zip: torvio.exe", self.zip_tool)
                self.check("zip: names of files", self.zip_names)
                self.check("zip: programs next to the DLLs", self.zip_programs)
        for kind in self.kinds:
            self.check(f"{kind}: packed twice", self.again(kind))
        if not self.short:
            self.check("built twice, the same bytes", self.built_elsewhere)


def main():
    options = argparse.ArgumentParser(description="Checks the packages in build/packages.")
    options.add_argument("--source", required=True, type=pathlib.Path)
    options.add_argument("--build", required=True, type=pathlib.Path)
    options.add_argument("--short", action="store_true")
    options.add_argument("--kinds", default="deb,tgz,zip")
    options.add_argument("--only", default="", metavar="PATTERN", help="only checks whose name this matches, and what they need")
    checks = Checks(options.parse_args())
    checks.all()
    print(f"{checks.passed} passed, {checks.failures} failed, {checks.skipped} skipped")
    return 1 if checks.failures else 0


if __name__ == "__main__":
    sys.exit(main())
