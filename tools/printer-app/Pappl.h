#pragma once

// The framework's C headers cause warnings, which are errors in this project.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <pappl/pappl.h>
#pragma GCC diagnostic pop
