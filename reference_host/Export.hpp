#ifndef ZM_REFERENCE_HOST_EXPORT_HPP
#define ZM_REFERENCE_HOST_EXPORT_HPP

/// Marks what scripts, programs and tests use of the reference host beside host/.
#define ZM_REFHOST_API __attribute__((visibility("default")))

#endif
