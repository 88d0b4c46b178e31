#ifndef ZM_REFERENCE_HOST_SSP_SSD_READER_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_READER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// Limits that bound the memory which a document can take: reading takes at most 8 times its size and 256
/// MiB.
struct SsdLimits {
    std::size_t bytes = std::size_t{128} << 20U;
    std::size_t depth = 256;             ///< of nested XML elements; a system inside another takes two
    std::size_t nodes = 4'000'000;       ///< elements, texts, comments and processing instructions
    std::size_t attributes = 4'000'000;  ///< namespace declarations included
    std::size_t blocks = 500'000;
    std::size_t connections = 500'000;
};

/// Something that was passed over.
struct SsdWarning {
    std::uint64_t line = 0;  ///< 1-based, of the end of its tag
    std::string reason;
};

struct SsdDocument {
    std::unique_ptr<Model> model;
    std::vector<SsdWarning> warnings;  ///< in document order of their systems' ends
};

/// Reads a system structure description, as SSP 1.0 and 2.0 define it. `file` is its name in errors.
///
/// The model has the name of the outermost System. Every Component and every System inside becomes a block,
/// numbered in document order; its connectors of kind "output" become its output ports, those of kind "input"
/// its input ports, and all other kinds ("parameter", "inout" ...) are kept aside. Connections are kept, also
/// those with an end that does not exist, which is a warning. Names are mapped by `blockNameFromFile`.
///
/// Unknown elements and attributes are passed over with their contents, and so are signal dictionaries. An
/// undeclared prefix belongs to no namespace, so its elements are passed over too; only "ssd" is taken as if
/// it were declared.
///
/// A document that is not well-formed XML, has a document type (and so might define entities), is not a
/// system structure description, exceeds a limit, or has an element without a valid name, two elements of
/// one name in a system, or a connector without a name is a host error ("InvalidDiagram": file, line,
/// reason).
ZM_REFHOST_API SsdDocument readSsd(std::string_view document, const std::string& file,
                                   const SsdLimits& limits = {});

}  // namespace reference_host

#endif
