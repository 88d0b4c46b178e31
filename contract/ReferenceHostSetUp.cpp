#include "contract/SetUp.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"

/// The reference host as it is at the start of a program that uses it: with its functions by name.
extern "C" void zmHostContractSetUp()
{
    reference_host::installDiagramFunctions();
    reference_host::installObserverFunctions();
    reference_host::installEditorFunctions();
}
