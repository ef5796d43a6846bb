#ifndef QUORDALVANE_QUOREXPORT_H
#define QUORDALVANE_QUOREXPORT_H

/*
 * Marks a name that programs outside the library may use; every other name is hidden. The mark is
 * the same when the library is built and when it is used. So a type that both sides use, such as an
 * exception, is the same type on both sides.
 */
#define QUOR_EXPORT __attribute__((visibility("default")))

#endif
