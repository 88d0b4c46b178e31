"""Breaks one operation of host/ after the other and says whether the contract kit notices.

    break_operations.py SOURCE_FOLDER WORK_FOLDER COMPILER KIT TABLE

A shared object that is loaded before the host stands between it and the kit. It defines every exported function
anew; the virtual operations of each object that passes are reached through a changed copy of its virtual table.
All of them forward, but for one, which the environment variable ZM_BREAK names: it aborts, does nothing, or
gives a plausible wrong answer. Then the checks of that operation run, and at least one must fail.

The table of all operations is written to TABLE and printed. An operation that is broken unnoticed fails the
test unless it is listed in EXCEPTIONS with the reason; so does an exception that is noticed after all.
"""

from __future__ import annotations

import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

MODES = ("abort", "nothing", "wrong")
CLASSES = (
    "COSMethodSignature", "COSMethodInfo", "COSPropInfo", "COSClassInfo", "COSClass", "COSNamespaceInfo",
    "COSNamespace", "COSInterface",
)

# Wrong answers that do not follow from the type of the result. `original` is the operation, `self` its object.
WRONG = {
    "nvCreateDoubleScalar": "return original(value + 1);",
    "nvCreateLogicalScalar": "return original(!value);",
    "nvDestroyArray": "if (value == nullptr) throw zmsvOutOfMemoryException(); return original(value);",
    "nvSetField": "original(value, index, name, nvCreateDeepCopy(field)); nvDestroyArray(field); return;",
    "nvReplaceField": "original(value, index, name, nvCreateDeepCopy(field)); nvDestroyArray(field); return;",
    "nvSetCell": "original(value, index, nvCreateDeepCopy(element)); nvDestroyArray(element); return;",
    "nvSetProperty": "return original(value, index, name, nvCreateString(\"wrong\"));",
    "zmsvFEVAL": "return original(outputCount, outputs, 0, inputs, functionName);",
    "zmsvThrowIExceptionFromDiagnostic":
        "throw zmsvException(zmsvMessageId(\"wrong\", \"Wrong\"), \"wrong\");",
    "zmsvThrowOutOfMemory": "throw zmsvException(zmsvMessageId(\"wrong\", \"Wrong\"), \"wrong\");",
    "nvAllocateZeroed":
        "{ void* block = original(size); if (size > 0 && block) *static_cast<char*>(block) = 1; return block; }",
    "nvFree": "if (block == nullptr) std::abort(); return original(block);",
    "makeTextConverter": "return original(\"UTF-8\");",
    "makeInterned": "return nvcos::internal::Interned(name ? strdup(name) : \"\");",
    "COSTypeRepository::getType": "return original(nvcos::internal::makeInterned(\"any\"));",
    "omGetArrayElement": "return original(value, 0);",
    "omGetInstanceData": "{ static int other; return &other; }",
    "COSNamespace::getNamespace":
        "{ const std::string n = fullName.c_str() ? fullName.c_str() : \"\";"
        " return original(nvcos::internal::makeInterned(n.substr(0, n.find('.')).c_str())); }",
    "COSNamespace::addNamespace": "try { original(info); } catch (const zmsvException&) {} return;",
    "COSNamespace::addInnerNamespace": "try { original(self, info); } catch (const zmsvException&) {} return;",
    "COSNamespace::addClass": "try { original(self, info, first, second); } catch (const zmsvException&) {} return;",
    "COSClass::addProperty": "try { original(self, property); } catch (const zmsvException&) {} return;",
    "COSClass::addMethod": "try { original(self, method); } catch (const zmsvException&) {} return;",
    "COSMethodSignature::addInput": "original(self, type); return original(self, type);",
    "COSMethodSignature::addOutput": "original(self, type); return original(self, type);",
    "COSMethodSignature::setNumberOfOptionalInputs": "return original(self, count > 0 ? count - 1 : 0);",
    "COSMethodSignature::createMethodSignature":
        "{ static COSMethodSignature* const one = original(); return one; }",
    "COSMethodInfo::COSMethodInfo": "return original(self, name ? strdup((std::string(name) + \"x\").c_str()) : 0);",
    "COSMethodInfo::invoke": "return original(self, client, outputCount, outputs, 0, inputs);",
    "COSMethodInfo::getSignature":
        "{ static const COSMethodSignature* const other = COSMethodSignature::createMethodSignature();"
        " return other; }",
    "COSPropInfo::getType":
        "return nvcos::COSTypeRepository::getType(nvcos::internal::makeInterned(\"asciiString\"));",
    "COSPropInfo::getValue": "original(self, instance); return COSValue(std::string(\"wrong\"));",
    "COSPropInfo::setValue": "return original(self, instance, COSValue());",
    "COSPropInfo::releaseValue": "original(self, instance, value); return original(self, instance, value);",
    "COSClassInfo::initializeClass": "original(self, cosClass, client); return original(self, cosClass, client);",
    "COSClassInfo::allocateInstance": "{ static int other; original(self, instance); return &other; }",
    "COSClassInfo::deallocateInstance": "return original(self, instance, nullptr);",
    "COSNamespaceInfo::defineContents":
        "original(self, cosNamespace); try { original(self, cosNamespace); } catch (...) {} return;",
    "COSNamespaceInfo::throwErrorForDefinitionOfExistingName":
        "return original(self, cosNamespace, nvcos::internal::makeInterned(\"wrong\"));",
    "COSInterface::addReference": "original(self); return original(self);",
    "COSInterface::releaseReference": "original(self); return original(self);",
    "COSClass::getInstanceData": "{ static int other; return &other; }",
    "COSClassInfo::copyData": "{ static int other; return &other; }",
    "zmsvMessageId::zmsvMessageId": "return original(self, key, catalog, arguments);",
    "zmsvMessageId::copy":
        "original(self, a0); const_cast<std::vector<zmsvMessageArgument>&>(self->arguments()).clear(); return;",
    "zmsvMessageId::move":
        "original(self, static_cast<zmsvMessageId&&>(a0)); const_cast<std::vector<zmsvMessageArgument>&>(self->arguments()).clear(); return;",
    "zmsvMessageId::copy-assignment": "{ zmsvMessageId& r = original(self, a0);"
        " const_cast<std::string&>(r.key()) += 'x'; return r; }",
    "zmsvMessageId::move-assignment": "{ zmsvMessageId& r = original(self, static_cast<zmsvMessageId&&>(a0));"
        " const_cast<std::string&>(r.key()) += 'x'; return r; }",
    "zmsvException::zmsvException": "return original(self, id, text + \"x\");",
    "zmsvException::copy": "original(self, a0); const_cast<std::string&>(self->id().key()) += 'x'; return;",
    "zmsvException::copy-assignment":
        "{ zmsvException& r = original(self, a0); const_cast<std::string&>(r.id().key()) += 'x'; return r; }",
}

LEAK = "what is not freed cannot be seen through host/"
SCOPE = "scopes cannot be seen through host/"
TRIVIAL = "an object without state: there is nothing to do"
DEFAULT = "the right answer is to do nothing"
SHOWN = "what is shown to the user cannot be seen through host/"
HOST_CALLS = "a host need not ask for it"

EXCEPTIONS: dict[tuple[str, str], str] = {
    **{(f"{name}", mode): SCOPE for mode in ("wrong",)
       for name in ("nvSetArrayScope", "zmsvSetLocalScope", "zmsvSetPersistentScope")},
    **{(name, mode): SHOWN for mode in ("nothing", "wrong")
       for name in ("zmsvReportAsWarning", "zmsvDiscardDiagnostic")},
    **{(f"{owner}::~{owner}", mode): LEAK for mode in ("nothing", "wrong")
       for owner in ("zmsvMessageId", "zmsvException", "zmsvOutOfMemoryException", "zmsvTextConverter",
                     "COSMethodSignature", "COSMethodInfo", "COSPropInfo", "COSClassInfo", "COSNamespaceInfo",
                     "COSInterface")},
    **{(f"{owner}::~{owner}", mode): "runs when the process ends" for mode in MODES
       for owner in ("COSClass", "COSNamespace")},
    **{(f"{owner}::{owner}", mode): TRIVIAL for mode in ("nothing", "wrong")
       for owner in ("COSMethodSignature", "COSPropInfo", "COSClassInfo", "COSNamespaceInfo", "COSClass",
                     "COSNamespace", "COSInterface", "zmsvTextConverter")},
    ("zmsvOutOfMemoryException::zmsvOutOfMemoryException", "wrong"): TRIVIAL,
    ("zmsvOutOfMemoryException::copy", "wrong"): TRIVIAL,
    ("zmsvOutOfMemoryException::copy-assignment", "nothing"): TRIVIAL,
    ("zmsvOutOfMemoryException::copy-assignment", "wrong"): TRIVIAL,
    **{(f"COSClassInfo::{name}", "nothing"): DEFAULT
       for name in ("customLoad", "customSave", "instanceLoaded", "copyData", "getChildrenOfInstance",
                    "isPropertyNameReservedByThisClass")},
    ("COSClassInfo::instanceLoaded", "wrong"): DEFAULT,
    **{("COSPropInfo::getVersion", mode): HOST_CALLS for mode in MODES},
}


def wrong_answer(operation) -> str:
    if operation.name in WRONG:
        return WRONG[operation.name]
    result, forward = operation.result, f"original({arguments(operation)})"
    if operation.kind in ("constructor", "destructor") or result == "void":
        return f"return {forward};"
    if result.endswith("&"):
        return f"return {forward};"  # an object without state
    if result == "bool":
        return f"return !{forward};"
    if result == "const bool *":
        return f"{{ static bool other; other = !*{forward}; return &other; }}"
    if result == "const char *":
        return 'return "wrong";'
    if result == "nvArray *":
        return 'return nvCreateString("wrong", std::size_t{5});'
    if result == "const nvArray *":
        return f"{{ {forward}; return value; }}"
    if result == "void *":
        return f"{{ static char other[64]; {forward}; return other; }}"
    if result == "zmsvDiagnostic *":
        if operation.name.startswith("zmsvFEVAL"):
            return f"{{ zmsvDiagnostic* d = {forward}; if (d) zmsvDiscardDiagnostic(d); return nullptr; }}"
        return '{ return zmsvCreateDiagnostic(zmsvMessageId("wrong", "Wrong"), "wrong"); }'
    if "basic_string<char16_t" in result or "u16string" in result:
        return f'return {forward} + u"x";'
    if "vector" in result:
        return f"{{ auto r = {forward}; r.push_back(\"x\"); return r; }}"
    if "string" in result:
        return f'return {forward} + "x";'
    if re.fullmatch(r"(std::)?(size_t|int64_t)|int|double|unsigned long", result):
        return f"return {forward} + 1;"
    raise SystemExit(f"no wrong answer for {operation.name} of type {result}: add one to WRONG")


def parameters(operation) -> list[tuple[str, str]]:
    own = [(each.type, each.name or f"a{i}") for i, each in enumerate(operation.parameters)]
    if operation.owner and operation.kind != "static":
        return [(f"{'const ' if operation.is_const else ''}{operation.owner} *", "self"), *own]
    return own


def arguments(operation) -> str:
    def passed(type_name: str, name: str) -> str:
        return f"static_cast<{type_name}>({name})" if type_name.endswith("&&") else name
    return ", ".join(passed(*each) for each in parameters(operation))


def result_of(operation) -> str:
    return "void" if operation.kind in ("constructor", "destructor") else operation.result


def nothing(operation) -> str:
    if result_of(operation) == "void":
        return "return;"
    return "return *self;" if operation.result.endswith("&") else "return {};"


def body(index: int, operation, original: str) -> str:
    seen = [f"see({name});" for type_name, name in parameters(operation)
            if any(re.search(rf"\b{each} \*$", type_name) for each in CLASSES) and operation.kind != "destructor"
            and not (operation.kind == "constructor" and name == "self")]
    result = result_of(operation)
    call = f"original({arguments(operation)})"
    if any(re.search(rf"\b{each} \*$", result) for each in CLASSES):
        last = f"auto* r = {call}; see(r); return r;"
    elif result.endswith("COSInterfacePtr"):
        last = f"auto r = {call}; see(r.get()); return r;"
    else:
        last = f"return {call};"
    return f"""{{
    {original}
    {' '.join(seen)}
    switch (modeOf({index})) {{
        case Abort: std::abort();
        case Nothing: {nothing(operation)}
        case Wrong: {wrong_answer(operation)}
        default: break;
    }}
    {last}
}}
"""


def interposer(operations) -> str:
    out = [PRELUDE]
    for each in operations:
        if each.slot is not None:
            out.append(f"// slot of {each.name}\n")
    names = ", ".join(f'"{each.name}"' for each in operations)
    out.append(f"const char* const operationNames[] = {{{names}}};\n{MODE}")
    for owner in CLASSES:
        out.append(f"void see(const {owner}* object);\n")
    for index, each in enumerate(operations):
        types = ", ".join(type_name for type_name, _ in parameters(each))
        declared = ", ".join(f"{type_name} {name}" for type_name, name in parameters(each))
        result = result_of(each)
        for number, symbol in enumerate(dict.fromkeys(each.symbols)):
            own = f"exported{index}_{number}"
            original = (f"using F = {result} (*)({types}); static const F original ="
                        f" find<F>(\"{symbol}\"); static_cast<void>(original);")
            out.append(f'{result} {own}({declared}) asm("{symbol}");\n{result} {own}({declared})\n'
                       + body(index, each, original))
        if each.slot is not None and each.kind == "method":
            original = (f"using F = {result} (*)({types}); const F original ="
                        f" originalOf<F>(self, {each.slot}); static_cast<void>(original);")
            # The default of an operation is exported: it breaks itself, once.
            if each.symbols:
                original += f" if (reinterpret_cast<void*>(original) == ownSymbol(\"{each.symbols[0]}\")) " \
                            f"return original({arguments(each)});"
            out.append(f"{result} slot{index}({declared})\n" + body(index, each, original))
    for owner in CLASSES:
        slots = [(i, each) for i, each in enumerate(operations)
                 if each.owner == f"nvcos::{owner}" and each.slot is not None]
        count = max(each.slot + (2 if each.kind == "destructor" else 1) for _, each in slots)
        rows = " ".join(f"{{{each.slot}, reinterpret_cast<void*>(slot{i})}}," for i, each in slots
                        if each.kind == "method")
        out.append(f"void see(const {owner}* object)\n{{\n    static const Slot slots[] = {{{rows}}};\n"
                   f"    replaceTable(const_cast<{owner}*>(object), slots, {count});\n}}\n")
    return "".join(out)


PRELUDE = r"""// Written by break_operations.py.
#include "host/Calls.hpp"
#include "host/ClassDescriptors.hpp"
#include "host/Containers.hpp"
#include "host/Memory.hpp"
#include "host/Text.hpp"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <map>
#include <vector>
using namespace nvcos;
using nvcos::internal::Interned;

namespace {
enum Mode { Forward, Abort, Nothing, Wrong };
template <class F> F find(const char* symbol)
{
    void* found = dlsym(RTLD_NEXT, symbol);
    if (found == nullptr) { std::fprintf(stderr, "no %s\n", symbol); std::abort(); }
    return reinterpret_cast<F>(found);
}
void* ownSymbol(const char* symbol) { return dlsym(RTLD_DEFAULT, symbol); }

struct Slot { int index; void* function; };
using Table = void**;
// The changed tables by the original ones; in front of each stands the original.
std::map<Table, Table>& tables() { static auto* const all = new std::map<Table, Table>; return *all; }
std::map<Table, Table>& changed() { static auto* const all = new std::map<Table, Table>; return *all; }
Table& tableOf(const void* object) { return *static_cast<Table*>(const_cast<void*>(object)); }

void replaceTable(void* object, const Slot* slots, int count, int slotCount)
{
    if (object == nullptr || changed().count(tableOf(object)) != 0) return;
    const Table original = tableOf(object);
    Table& copy = tables()[original];
    if (copy == nullptr) {
        // Two entries in front of the table, the offset and the type, belong to it.
        const int more = 8;  // what the implementing class adds
        copy = new void*[static_cast<std::size_t>(count + more + 2)] + 2;
        std::memcpy(copy - 2, original - 2, sizeof(void*) * static_cast<std::size_t>(count + more + 2));
        for (int i = 0; i < slotCount; ++i) copy[slots[i].index] = slots[i].function;
        changed()[copy] = original;
    }
    tableOf(object) = copy;
}
template <std::size_t N> void replaceTable(void* object, const Slot (&slots)[N], int count)
{
    replaceTable(object, slots, count, static_cast<int>(N));
}
template <class F> F originalOf(const void* object, int slot)
{
    const auto found = changed().find(tableOf(object));
    if (found == changed().end()) std::abort();
    return reinterpret_cast<F>(found->second[slot]);
}
}  // namespace
"""

MODE = r"""
Mode modeOf(int index)
{
    // "operation=mode". Breaks the host's constructors of static objects, too, so nothing here is static.
    static const char* const text = std::getenv("ZM_BREAK");
    if (text == nullptr) return Forward;
    const char* const name = operationNames[index];
    const std::size_t length = std::strlen(name);
    if (std::strncmp(text, name, length) != 0 || text[length] != '=') return Forward;
    switch (text[length + 1]) {
        case 'a': return Abort;
        case 'n': return Nothing;
        default: return Wrong;
    }
}
"""


def build(work: pathlib.Path, source: pathlib.Path, compiler: str, operations) -> pathlib.Path:
    work.mkdir(parents=True, exist_ok=True)
    text, library = work / "BrokenHost.cpp", work / "libbroken_host.so"
    generated = interposer(operations)
    if not (library.exists() and text.exists() and text.read_text() == generated):
        text.write_text(generated)
        subprocess.run([compiler, "-std=c++20", "-w", "-O0", "-shared", "-fPIC", f"-I{source}", "-o", library, text],
                       check=True)
    return library


def run_kit(kit: str, library: pathlib.Path, operation: str, mode: str | None) -> dict:
    environment = os.environ | {"LD_PRELOAD": str(library)}
    if mode:
        environment["ZM_BREAK"] = f"{operation}={mode}"
    command = [kit, "--json", "--time-limit", "3000", *(["--include", operation] if operation else [])]
    done = subprocess.run(command, env=environment, capture_output=True, text=True, errors="replace", check=False)
    if done.returncode == 2:
        return {"none": True}
    try:
        return json.loads(done.stdout, strict=False)
    except json.JSONDecodeError:
        return {"stderr": done.stderr}  # the kit itself did not start


def verdict(answer: dict) -> str:
    if answer.get("none"):
        return "no check"
    if "counts" not in answer:
        return "noticed"
    return "noticed" if answer["counts"]["failed"] + answer["counts"]["crashed"] else "UNNOTICED"


def main(source: str, work: str, compiler: str, kit: str, table: str) -> int:
    sys.path.insert(0, str(pathlib.Path(source) / "contract"))
    import host_interface

    operations = host_interface.read(pathlib.Path(source))
    library = build(pathlib.Path(work), pathlib.Path(source), compiler, operations)
    whole = run_kit(kit, library, "", None)
    if verdict(whole) != "UNNOTICED":
        bad = [each["name"] for each in whole.get("checks", []) if each["verdict"] in ("failed", "crashed")]
        print("the kit fails through the forwarding host:", bad, whole.get("stderr", ""))
        return 1
    cases = [(each.name, mode) for each in operations for mode in MODES]
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        answers = dict(zip(cases, pool.map(lambda case: verdict(run_kit(kit, library, *case)), cases)))
    lines, wrong = [], []
    for each in operations:
        cells = []
        for mode in MODES:
            answer, reason = answers[each.name, mode], EXCEPTIONS.get((each.name, mode))
            if (answer == "noticed") == bool(reason):
                wrong.append(f"{each.name}, {mode}: {answer}{', but listed as an exception' if reason else ''}")
            cells.append(f"exception: {reason}" if reason else answer)
        lines.append(f"{each.name:55} " + " | ".join(f"{mode}: {cell}" for mode, cell in zip(MODES, cells)))
    unknown = {name for name, _ in EXCEPTIONS} - {each.name for each in operations}
    wrong.extend(f"{name}: no such operation, but listed as an exception" for name in sorted(unknown))
    pathlib.Path(table).write_text("\n".join(lines) + "\n")
    print("\n".join(lines))
    noticed = sum(answer == "noticed" for answer in answers.values())
    print(f"\n{len(operations)} operations, {len(cases)} ways to break them: {noticed} noticed,"
          f" {len(EXCEPTIONS)} listed exceptions")
    print("\n".join(f"WRONG: {each}" for each in wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
