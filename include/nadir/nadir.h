/* nadir: image processing and stereo vision for cameras that look at the ground.
 *
 * One frame's road: IP_Census_5x5 on both pictures of a rectified pair, IP_SgmFull, IP_SgmPostproc (stereo.h), the
 * transforms onto the ground (camera.h), IP_RGE_* on the elevation map (segment.h).
 *
 * Rules that hold everywhere unless a function says otherwise:
 * - The caller owns every buffer. Memory that a call needs for itself is released before it returns; a function that
 *   begins with nadir_ works in memory of the caller's instead, for programs that must not allocate while they run.
 * - A status of 1 is success, 0 failure. All checks come before the first write: a failed call leaves its outputs as
 *   they were. Nothing is logged.
 * - Nothing is read or written outside the extent that a function states, and no alignment beyond that of the element
 *   type is needed.
 * - Every function may be called from any number of threads at once on buffers that do not overlap, except IP_RGE_*
 *   (segment.h), which share one state; nadir_elevation_regions_* do the same with a state for each thread.
 * - A result is the same to the last bit on every processor, whichever instruction set computes it, in the default
 *   floating-point environment: rounding to nearest, subnormal numbers neither flushed (FTZ) nor taken for 0 (DAZ). In
 *   another one floats come out otherwise in their last bits, and decisions on them with them; nothing guards against
 *   it. Whichever way the caller rounds, the same bits come from all of imgproc.h, segment.h, stereo.h, vector.h and
 *   list.h, from image.h but for Img_FillBuffer of floats, and from IP_Utl_Median_u16 and IP_Utl_RadixIdxSort
 *   (numeric.h): they compute in integers, or divide where no way of rounding reaches another integer.
 */
#ifndef NADIR_NADIR_H
#define NADIR_NADIR_H

#include <nadir/api.h>
#include <nadir/camera.h>
#include <nadir/geometry.h>
#include <nadir/image.h>
#include <nadir/imgproc.h>
#include <nadir/list.h>
#include <nadir/matrix.h>
#include <nadir/numeric.h>
#include <nadir/segment.h>
#include <nadir/stereo.h>
#include <nadir/vector.h>

#endif
