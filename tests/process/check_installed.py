"""Checks that what is installed is enough to build against, and works from anywhere.

    check_installed.py files CMAKE BUILD_FOLDER WORK_FOLDER COMPILER
    check_installed.py packages CMAKE BUILD_FOLDER WORK_FOLDER COMPILER

`files` installs into a folder with cmake --install; `packages` makes the Debian packages, asks lintian about them
and unpacks them into a folder. Both then build a program outside the tree with find_package and with pkg-config,
build the skeleton host with the contract kit, and run a script with the installed module and program.
"""

import os
import pathlib
import shutil
import subprocess
import sys

MAIN = """
#include <boost/make_shared.hpp>

int main()
{
    NVInitialize_zm_hmi_foundation();
    zm_hmi::StreamingClients clients;
    clients.add(boost::make_shared<zm_hmi::SignalClient>());
    clients.setModelName(u"m");
    std::vector<std::u16string> path;
    std::u16string subPath;
    clients.get(0)->getAlignedBlockPath(u"m", path, subPath);
    if (clients.get(0)->getDecimation(u"m") != 1 || clients.get(0)->isEqual(nullptr) || !path.empty()) {
        return 1;
    }
    return zm_hmi_foundation::AddModelToPath(u"A", u"m") == u"m/A" ? 0 : 1;
}
"""

CONSUMER = """
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES CXX)
find_package(zm_hmi CONFIG REQUIRED)
add_executable(consumer main.cpp)
target_link_libraries(consumer PRIVATE zm_hmi::library zm_hmi::reference_host)
"""

SCRIPT = """
import sys, zmhost
from zmhost import Zelmar
signals = Zelmar.HMI.InstrumentedSignals("m")
signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="A/B", OutputPortIndex_=1))
assert signals.Count == 1 and zmhost.__version__.count(".") == 2
print(zmhost.__version__, zmhost.__file__)
"""


def run(*command, **options):
    # pkg-config escapes the bytes of a letter one by one, which is no UTF-8.
    done = subprocess.run([str(each) for each in command], capture_output=True, text=True,
                          errors="surrogateescape", check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\nleft with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def install_files(cmake, build, work):
    root = work / "with a space and größe"
    run(cmake, "--install", build, "--prefix", root)
    return root


def install_packages(cmake, build, work):
    packages = work / "packages"
    run(pathlib.Path(cmake).with_name("cpack"), "-G", "DEB", "-B", packages, cwd=build)
    made = sorted(packages.glob("*.deb"))
    if len(made) != 3:
        sys.exit(f"three packages are expected: {made}")
    if shutil.which("lintian"):
        run("lintian", "--allow-root", "--fail-on", "error", *made)
    else:
        print("lintian is not installed: the packages are not checked with it")
    root = work / "root"
    for each in made:
        run("dpkg-deb", "-x", each, root)
    return root / "usr"


def headers_of(prefix):
    include = prefix / "include" / "zm_hmi_foundation"
    found = sorted(header.relative_to(include) for header in include.rglob("*.hpp"))
    folders = {header.parts[0] for header in found}
    if folders != {"host", "hmi", "hmi_foundation", "streamout", "reference_host"}:
        sys.exit(f"headers of {sorted(folders)} are installed")
    return [header for header in found if header.parts[0] != "reference_host"]


def write_consumer(folder, prefix):
    folder.mkdir(parents=True)
    includes = "".join(f'#include "{header}"\n' for header in headers_of(prefix))
    (folder / "main.cpp").write_text(includes + MAIN)
    (folder / "CMakeLists.txt").write_text(CONSUMER)


def build_with_cmake(cmake, source, build, prefix, compiler, environment):
    run(cmake, "-S", source, "-B", build, f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_COMPILER={compiler}",
        env=environment)
    run(cmake, "--build", build, env=environment)


def build_with_pkg_config(folder, library, compiler, environment):
    environment = environment | {"PKG_CONFIG_PATH": str(library / "pkgconfig")}
    flags = run("pkg-config", "--cflags", "--libs", "zm_hmi", env=environment)
    # The flags are for a shell, which removes the backslashes in front of blanks.
    run("sh", "-c", f'"{compiler}" "{folder}/main.cpp" -o "{folder}/with_pkg_config" {flags}')
    run(folder / "with_pkg_config", env=environment | {"LD_LIBRARY_PATH": str(library)})


def check_skeleton(cmake, prefix, work, compiler, environment):
    source = work / "my_host"
    shutil.copytree(prefix / "share" / "zm_hmi" / "skeleton_host", source)
    build_with_cmake(cmake, source, source / "build", prefix, compiler, environment)
    kit = source / "build" / "skeleton-contract"
    done = subprocess.run([kit], capture_output=True, text=True, check=False, env=environment)
    if done.returncode != 1 or "passed  double-scalar-keeps-its-number" not in done.stdout:
        sys.exit(f"the skeleton's first operation is not right\n{done.stdout}{done.stderr}")
    print("skeleton:", done.stdout.splitlines()[-1])


def check_python(prefix, library, work, environment):
    script = work / "script.py"
    script.write_text(SCRIPT)
    environment = environment | {"LD_LIBRARY_PATH": str(library)}
    print(run(prefix / "bin" / "zmhost", script, cwd="/", env=environment).strip())
    package = next(prefix.glob("lib/python3*/dist-packages"))
    run(sys.executable, script, cwd="/", env=environment | {"PYTHONPATH": str(package)})
    prompt = subprocess.run([prefix / "bin" / "zmhost"], input="print(6 * 7)\n", capture_output=True, text=True,
                            check=False, cwd="/", env=environment)
    if prompt.returncode != 0 or "42" not in prompt.stdout:
        sys.exit(f"the prompt does not answer\n{prompt.stdout}{prompt.stderr}")
    kit = run(prefix / "bin" / "zm-host-contract", env=environment, cwd="/")
    print("reference host:", kit.splitlines()[-1])


def main(what, cmake, build, work, compiler):
    work = pathlib.Path(work) / what
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    prefix = (install_packages if what == "packages" else install_files)(cmake, build, work)
    # As outside of this project: no path of it in the environment.
    environment = {key: value for key, value in os.environ.items() if not key.startswith(("PYTHON", "CMAKE"))}
    library = next(prefix.rglob("libzm_hmi_foundation.so")).parent
    folder = work / "consumer"
    write_consumer(folder, prefix)
    build_with_cmake(cmake, folder, folder / "build", prefix, compiler, environment)
    # Unpacked packages are not in the system's folders, where the loader looks.
    run(folder / "build" / "consumer", env=environment | {"LD_LIBRARY_PATH": str(library)})
    build_with_pkg_config(folder, library, compiler, environment)
    check_skeleton(cmake, prefix, work, compiler, environment)
    check_python(prefix, library, work, environment)


if __name__ == "__main__":
    main(*sys.argv[1:])
