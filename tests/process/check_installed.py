"""Checks that what is installed is enough to build against.

    check_installed.py CMAKE BUILD_FOLDER WORK_FOLDER COMPILER BOOST_INCLUDE_FOLDER

Installs, then compiles, links and runs a program that includes every installed header and calls the library.
"""

import pathlib
import shutil
import subprocess
import sys

MAIN = """
int main()
{
    NVInitialize_zm_hmi_foundation();
    return zm_hmi_foundation::AddModelToPath(u"A", u"m") == u"m/A" ? 0 : 1;
}
"""


def main(cmake, build, work, compiler, boost):
    work = pathlib.Path(work)
    shutil.rmtree(work, ignore_errors=True)
    installed = work / "installed"
    subprocess.run([cmake, "--install", build, "--prefix", installed], check=True, stdout=subprocess.DEVNULL)
    include = installed / "include" / "zm_hmi_foundation"
    headers = sorted(header.relative_to(include) for header in include.rglob("*.hpp"))
    folders = {header.parts[0] for header in headers}
    if folders != {"host", "hmi", "hmi_foundation", "streamout"}:
        sys.exit(f"headers of {sorted(folders)} are installed")
    library = next(installed.rglob("libzm_hmi_foundation.so")).parent
    program = work / "program"
    source = work / "main.cpp"
    source.write_text("".join(f'#include "{header}"\n' for header in headers) + MAIN, encoding="utf-8")
    subprocess.run(
        [compiler, "-std=c++20", f"-I{include}", f"-I{boost}", source, "-o", program, f"-L{library}",
         "-lzm_hmi_foundation", f"-Wl,-rpath,{library},-rpath-link,{library}"],
        check=True,
    )
    subprocess.run([program], check=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
