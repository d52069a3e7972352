// What a camera, settings and areas must be before anything is made of them.
#pragma once

#include <nadir/ground.h>
#include <nadir/rectify.h>

namespace nadir::ground {

// A status with the member or the area that it is about.
struct Judgement {
  NadirStatus status = NADIR_OK;
  const char* field = nullptr;
  uint32_t area = 0, corner = 0;
};

// Of records that are not null.
Judgement judged(const NadirCamera& camera, const NadirSettings& settings);
Judgement judged(const NadirArea& area);
Judgement judged(const NadirTrackSettings& settings);
Judgement judged(const NadirLens& lens);
Judgement judged(const NadirRectifiedView& view);  // but for whether its rotation is one

// True where a caller's record has all members that this library knows of. There is one version of each so far.
template <class Record>
bool isWhole(const Record* record) {
  return record->size == sizeof(Record);
}

}  // namespace nadir::ground
