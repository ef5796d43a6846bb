#pragma once

// The framework's headers are C that this project's warnings do not fit.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <pappl/pappl.h>
#pragma GCC diagnostic pop
