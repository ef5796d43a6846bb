#ifndef QUORDALVANE_QUOREXPORT_H
#define QUORDALVANE_QUOREXPORT_H

/*
 * Marks a name that programs outside the library may use; every other name is hidden. A program
 * that includes the header sees the same mark as the library. Otherwise an exception of the library
 * would have another type in the program, which then could not catch it.
 */
#define QUOR_EXPORT __attribute__((visibility("default")))

#endif
