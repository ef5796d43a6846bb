#ifndef QUORDALVANE_QUORHANDHELD_H
#define QUORDALVANE_QUORHANDHELD_H

#include <quordalvane/QuorIOPortC.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Lets the ports that are created from now on use the handheld device's own accessory
 * service, run loops and threads, in place of `quor_connect_devices`. Ports that exist keep what
 * they have. Any thread. Fails with QUOR_NO_MEMORY alone. */
QUOR_EXPORT QuorCode quor_use_handheld_platform(void);

#ifdef __cplusplus
}
#endif

#endif
