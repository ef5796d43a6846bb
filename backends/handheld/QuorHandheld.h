#ifndef QUORDALVANE_QUORHANDHELD_H
#define QUORDALVANE_QUORHANDHELD_H

#include <quordalvane/QuorIOPortC.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ports that are created after this call use the handheld device's own accessory service, run
 * loops and threads. A program calls this function instead of `quor_connect_devices`. Ports that
 * exist already do not change. Any thread may call this function. The only possible error is
 * QUOR_NO_MEMORY. */
QUOR_EXPORT QuorCode quor_use_handheld_platform(void);

#ifdef __cplusplus
}
#endif

#endif
