// The TOML parser's own code, which Debian has only as a shared library; it is compiled as those who call it are.
#define TOML_ENABLE_FORMATTERS 0
#define TOML_IMPLEMENTATION
#include <toml++/toml.h>
