#ifndef QUORDALVANE_QUOREXPORT_H
#define QUORDALVANE_QUOREXPORT_H

/*
 * Marks a name that programs outside of the library may use; every other name is hidden. The mark
 * is the same when the library is built and when it is used, so that types that cross the border,
 * exceptions among them, are one and the same on both sides.
 */
#define QUOR_EXPORT __attribute__((visibility("default")))

#endif
