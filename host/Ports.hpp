#ifndef ZM_HOST_PORTS_HPP
#define ZM_HOST_PORTS_HPP

/// A port of the host editor's drawing. Known to the library by address only.
struct zmPort;

#endif
