// The version is put together as a text.
#include <nadir/api.h>

#define NADIR_TEXT_OF(x) #x
#define NADIR_TEXT(x) NADIR_TEXT_OF(x)

const char* nadir_version(void) {
  return NADIR_TEXT(NADIR_VERSION_MAJOR) "." NADIR_TEXT(NADIR_VERSION_MINOR) "." NADIR_TEXT(NADIR_VERSION_PATCH)
      NADIR_VERSION_STAGE;
}
