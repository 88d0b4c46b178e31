#ifndef ZM_REFERENCE_HOST_SSP_MODEL_FILE_HPP
#define ZM_REFERENCE_HOST_SSP_MODEL_FILE_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>

namespace reference_host {

/// Told before each step of opening or saving: what is about to be done, how many steps are behind, and how
/// many there are in all. What it throws ends the work as any failure does.
using FileProgress = std::function<void(const char* step, std::size_t done, std::size_t total)>;

/// Opens a model and adds it to the open ones: a system structure description (`.ssd`), or an SSP archive
/// (`.ssp`, or whatever begins as an archive does). From an archive come also the block numbers, port
/// order, charts and parameters that were saved there, and, as the model's observers parameter, its
/// instrumented signals and streaming clients, which takes the library that registers their classes.
///
/// What in the file has to be passed over becomes a host warning: a connection with an end that does not
/// exist ("DanglingConnection"), kept data about what the description no longer has ("LeftOver").
///
/// A file that cannot be read is a host error "UnreadableFile"; contents that are refused are
/// "InvalidFile" or "InvalidDiagram" with file, entry or line, and reason; a name that is taken is
/// "ModelAlreadyOpen"; one that was closed or renamed meanwhile is "ModelNotOpen". Nothing is open then that
/// was not before. Main thread only.
ZM_REFHOST_API std::shared_ptr<Model> openModel(const std::filesystem::path& file,
                                                const FileProgress& progress = {});

/// Saves an open model as an SSP archive: its description with the edits, everything that came with the
/// archive it was read from, what a description cannot say, and the "Persistence" of its instrumented
/// signals and streaming clients, field by field as their classes give it. The same model gives the same
/// bytes.
///
/// The file is written whole or not at all (`writeFileAtomically`), and not when `progress`, or a script that
/// the host asks, has edited or closed the model ("UnwritableFile"). A model that is not open, whose
/// observers have ended, is refused ("ModelNotOpen"), so are a file name that does not end in ".ssp"
/// ("NotAnArchiveName") and whatever opening would refuse.
ZM_REFHOST_API void saveModel(const Model& model, const std::filesystem::path& file,
                              const FileProgress& progress = {});

}  // namespace reference_host

#endif
