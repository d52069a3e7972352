// The proof that the time of segmentation grows with the number of pixels alone.
#pragma once

namespace nadir::bench {

void printSegmentGrowth();

}  // namespace nadir::bench
