/* Linkage of the exported functions and the library's version. */
#ifndef NADIR_API_H
#define NADIR_API_H

#define NADIR_VERSION_MAJOR 0
#define NADIR_VERSION_MINOR 2
#define NADIR_VERSION_PATCH 0
/* Empty in a release, "-dev" in what comes before it. */
#define NADIR_VERSION_STAGE "-dev"

#if defined(__GNUC__)
#define NADIR_API __attribute__((visibility("default")))
#else
#define NADIR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the library that is loaded, as "major.minor.patch" with the stage behind it ("0.2.0-dev" comes before
 * "0.2.0"); static storage. */
NADIR_API const char* nadir_version(void);

/* The instruction set whose kernels run on this processor: "scalar", "neon", "sse4.1", "avx2" or "avx512"; static
 * storage. The level changes the speed and never a result. */
NADIR_API const char* nadir_simd_level(void);

#ifdef __cplusplus
}
#endif

#endif
