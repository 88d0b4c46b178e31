#ifndef ZM_REFERENCE_HOST_SSP_SSD_READER_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_READER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// What a document may demand of us.
struct SsdLimits {
    std::size_t bytes = std::size_t{256} << 20U;
    std::size_t depth = 256;  ///< of nested XML elements; a system inside another takes two
};

/// Something that was passed over, with the place of it.
struct SsdWarning {
    std::uint64_t line = 0;  ///< 1-based
    std::string reason;
};

struct SsdDocument {
    std::unique_ptr<Model> model;
    std::vector<SsdWarning> warnings;  ///< in document order of their systems' ends
};

/// Reads a system structure description, as SSP 1.0 and 2.0 define it. `file` is what errors call it.
///
/// The model bears the name of the outermost System. Every Component and every System inside becomes
/// a block, numbered in document order; its connectors of kind "output" become its output ports, those
/// of kind "input" its input ports, and all other kinds ("parameter", "inout" …) are kept aside.
/// Connections are kept, also those with an end that does not exist, which is a warning.
///
/// Elements and attributes that we do not know are passed over with all they hold, signal
/// dictionaries among them. A prefix that is not declared belongs to no namespace, so its elements are
/// passed over too; only "ssd" itself, undeclared, is taken for what everybody means by it.
///
/// A document that is not well-formed XML, has a document type (and so might define entities), is not
/// a system structure description, exceeds a limit, or has an element without a valid name, two
/// elements of one name in a system, or a connector without a name is a host error
/// ("InvalidDiagram": file, line, reason).
ZM_REFHOST_API SsdDocument readSsd(std::istream& in, const std::string& file, const SsdLimits& limits = {});
ZM_REFHOST_API SsdDocument readSsd(std::string_view document, const std::string& file,
                                   const SsdLimits& limits = {});

}  // namespace reference_host

#endif
