#ifndef ZM_HMI_FOUNDATION_EXPORT_HPP
#define ZM_HMI_FOUNDATION_EXPORT_HPP

/// Marks what the library offers to the host beyond its registered classes. Everything else is hidden.
#define ZM_HMI_API __attribute__((visibility("default")))

#endif
