#pragma once

#include "backends/Scheme.h"

namespace quordalvane::posix {

extern const Scheme tcpScheme;     ///< a printer on the network
extern const Scheme unixScheme;    ///< a local socket
extern const Scheme serialScheme;  ///< a serial line
extern const Scheme usbScheme;     ///< a printer at the system's USB printer driver

/// All schemes of this back end, in the order in which help texts list them.
inline constexpr const Scheme* schemes[] = {&tcpScheme, &unixScheme, &serialScheme, &usbScheme};

}  // namespace quordalvane::posix
