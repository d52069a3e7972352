// What two passes over the same pair disagree on is a guess of one of them: it is emptied.
#pragma once

#include <cstdint>

#include "ground/records/shape.hpp"

namespace nadir::ground {

// own, other  disparities of the same pixels. What both know and agree on becomes their mean, the rest of `own` 0.
void keepAgreed(const uint16_t* other, const Shape& shape, uint16_t* own);

// The same, but where they do not agree that one of both stays which at least so many of the 7 x 7 pixels around that
// they agree on are close to; least is more than 0. The pixels of a rim have few around that are seen from both sides.
//
// agreed  room for the rows around one.
void keepSupported(const uint16_t* other, uint32_t least, const Shape& shape, uint16_t* agreed, uint16_t* own);

// otherSide  disparities of the first picture, its last column first. A pixel of `own` stays where the pixel that it
//            names in the first picture agrees, else it becomes 0: what only one picture shows is named by nothing.
void keepConfirmed(const uint16_t* otherSide, const Shape& shape, uint16_t* own);

}  // namespace nadir::ground
