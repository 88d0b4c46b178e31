"""Every snippet of the documents runs, and every link between them leads somewhere."""

import re
import shutil
import subprocess
import sys

import pytest

from conftest import PROJECT

DOCUMENTS = [PROJECT / "README.md", PROJECT / "CONTRIBUTING.md", *sorted((PROJECT / "docs").glob("*.md"))]
LINK = re.compile(r"\]\((?!https?:)([^)#]+)(#[^)]*)?\)")


def snippets(language):
    for document in DOCUMENTS:
        blocks = re.findall(rf"^```{language}\n(.*?)^```", document.read_text(encoding="utf-8"), re.M | re.S)
        for number, block in enumerate(blocks, 1):
            yield pytest.param(block, id=f"{document.name}-{number}")


@pytest.mark.parametrize("snippet", snippets("python"))
def test_python_snippets_run(snippet, tmp_path):
    shutil.copytree(PROJECT / "examples", tmp_path / "examples", ignore=shutil.ignore_patterns("__pycache__"))
    (tmp_path / "snippet.py").write_text(snippet, encoding="utf-8")
    result = subprocess.run(
        [sys.executable, "-m", "zmhost", "snippet.py"], cwd=tmp_path, capture_output=True, text=True, timeout=120
    )
    assert (result.returncode, result.stderr) == (0, "")


@pytest.mark.parametrize("snippet", snippets("cpp"))
def test_cpp_snippets_compile(snippet, tmp_path):
    (tmp_path / "snippet.cpp").write_text(snippet, encoding="utf-8")
    subprocess.run(
        ["g++-12", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", f"-I{PROJECT}", "snippet.cpp"],
        cwd=tmp_path,
        check=True,
    )


@pytest.mark.parametrize("document", DOCUMENTS, ids=lambda document: document.name)
def test_links_lead_to_files(document):
    links = [target for target, _ in LINK.findall(document.read_text(encoding="utf-8"))]
    assert [target for target in links if not (document.parent / target).exists()] == []


def test_the_readme_takes_two_screens():
    assert len((PROJECT / "README.md").read_text(encoding="utf-8").splitlines()) <= 100
