#ifndef QUORDALVANE_QUOREXPORT_H
#define QUORDALVANE_QUOREXPORT_H

/*
 * Marks a name that programs outside the library may use; every other name is hidden. A program
 * that includes the header sees the same mark as the library. Otherwise an exception type of the
 * library would be a different type in the program, and the program could not catch exceptions of
 * this type.
 */
#define QUOR_EXPORT __attribute__((visibility("default")))

#endif
