/* Every exported function of libnadirground with its type, as signatures.c does it for libnadir. That it links and
 * starts as a C program shows that it needs no C++ runtime. */
#include <nadir/check.h>
#include <nadir/ground.h>
#include <nadir/level.h>
#include <nadir/rectify.h>

const char* (*is_nadir_status_text)(NadirStatus) = nadir_status_text;
NadirStatus (*is_nadir_settings_fill)(NadirSettings*, const NadirCamera*) = nadir_settings_fill;
size_t (*is_nadir_road_bytes)(const NadirCamera*, const NadirSettings*, uint32_t) = nadir_road_bytes;
size_t (*is_nadir_result_bytes)(const NadirCamera*, const NadirSettings*, uint32_t) = nadir_result_bytes;
NadirStatus (*is_nadir_road_create)(const NadirCamera*, const NadirSettings*, const NadirArea*, uint32_t, NadirRoad**,
                                    NadirFault*) = nadir_road_create;
void (*is_nadir_road_destroy)(NadirRoad*) = nadir_road_destroy;
NadirStatus (*is_nadir_road_context)(const NadirRoad*, StereoCtx*) = nadir_road_context;
NadirStatus (*is_nadir_road_area)(const NadirRoad*, uint32_t, NadirPlacedArea*) = nadir_road_area;
NadirStatus (*is_nadir_result_create)(const NadirRoad*, NadirResult**) = nadir_result_create;
void (*is_nadir_result_destroy)(NadirResult*) = nadir_result_destroy;
NadirStatus (*is_nadir_road_process)(NadirRoad*, const NadirFrame*, NadirResult*) = nadir_road_process;
NadirStatus (*is_nadir_result_read)(const NadirResult*, NadirFindings*) = nadir_result_read;
NadirStatus (*is_nadir_road_points)(NadirRoad*, const NadirFrame*, const NadirResult*, NadirPoint*, size_t,
                                    size_t*) = nadir_road_points;
NadirStatus (*is_nadir_road_range)(const NadirCamera*, const NadirSettings*, double, uint32_t*) = nadir_road_range;
NadirStatus (*is_nadir_road_ground_plane)(NadirRoad*, const NadirFrame*, const NadirResult*,
                                          NadirGroundPlane*) = nadir_road_ground_plane;
const char* (*is_nadir_warning_name)(uint32_t) = nadir_warning_name;
const char* (*is_nadir_warning_number_name)(uint32_t, uint32_t) = nadir_warning_number_name;
const char* (*is_nadir_warning_sentence)(uint32_t) = nadir_warning_sentence;
double (*is_nadir_warning_scale)(uint32_t, uint32_t) = nadir_warning_scale;
NadirStatus (*is_nadir_track_settings_fill)(NadirTrackSettings*) = nadir_track_settings_fill;
size_t (*is_nadir_tracker_bytes)(const NadirRoad*, const NadirTrackSettings*) = nadir_tracker_bytes;
NadirStatus (*is_nadir_tracker_create)(const NadirRoad*, const NadirTrackSettings*, NadirTracker**,
                                       NadirFault*) = nadir_tracker_create;
void (*is_nadir_tracker_destroy)(NadirTracker*) = nadir_tracker_destroy;
NadirStatus (*is_nadir_tracker_step)(NadirTracker*, const NadirResult*, int64_t) = nadir_tracker_step;
NadirStatus (*is_nadir_tracker_replay)(NadirTracker*, const NadirMeasurement*) = nadir_tracker_replay;
NadirStatus (*is_nadir_tracker_read)(const NadirTracker*, uint32_t, NadirTrack*) = nadir_tracker_read;
NadirStatus (*is_nadir_tracker_average)(NadirTracker*, NadirPlane*) = nadir_tracker_average;
size_t (*is_nadir_tracker_save)(const NadirTracker*, void*, size_t) = nadir_tracker_save;
NadirStatus (*is_nadir_tracker_load)(NadirTracker*, const void*, size_t) = nadir_tracker_load;

NadirStatus (*is_nadir_rectified_views)(const NadirLens*, const NadirLens*, const double*, const double*,
                                        NadirRectifiedView*, NadirRectifiedView*, double*,
                                        NadirFault*) = nadir_rectified_views;
size_t (*is_nadir_rectifier_bytes)(const NadirRectifiedView*) = nadir_rectifier_bytes;
NadirStatus (*is_nadir_rectifier_create)(const NadirLens*, const NadirRectifiedView*, NadirRectifier**,
                                         NadirFault*) = nadir_rectifier_create;
void (*is_nadir_rectifier_destroy)(NadirRectifier*) = nadir_rectifier_destroy;
NadirStatus (*is_nadir_rectifier_process)(const NadirRectifier*, uint32_t, const void*, size_t, void*,
                                          size_t) = nadir_rectifier_process;
NadirStatus (*is_nadir_rectifier_source)(const NadirRectifier*, uint32_t, uint32_t, double*,
                                         double*) = nadir_rectifier_source;
size_t (*is_nadir_level_bytes)(const NadirRoad*) = nadir_level_bytes;
NadirStatus (*is_nadir_level_create)(const NadirRoad*, NadirLevel**) = nadir_level_create;
void (*is_nadir_level_destroy)(NadirLevel*) = nadir_level_destroy;
NadirStatus (*is_nadir_level_add)(NadirLevel*, const NadirFrame*, const NadirResult*) = nadir_level_add;
NadirStatus (*is_nadir_level_read)(const NadirLevel*, NadirLevelled*) = nadir_level_read;
NadirStatus (*is_nadir_level_taken)(const NadirLevel*, NadirPlane*) = nadir_level_taken;

const char* (*is_nadir_verdict_name)(uint32_t) = nadir_verdict_name;
const char* (*is_nadir_verdict_advice)(uint32_t) = nadir_verdict_advice;
size_t (*is_nadir_checker_bytes)(uint32_t, uint32_t) = nadir_checker_bytes;
NadirStatus (*is_nadir_checker_create)(uint32_t, uint32_t, NadirChecker**, NadirFault*) = nadir_checker_create;
void (*is_nadir_checker_destroy)(NadirChecker*) = nadir_checker_destroy;
NadirStatus (*is_nadir_checker_process)(NadirChecker*, const NadirPair*, NadirCheckup*) = nadir_checker_process;

int main(void) { return 0; }
