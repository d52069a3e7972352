// Statuses in words.
#include <nadir/ground.h>

const char* nadir_status_text(NadirStatus status) {
  switch (status) {
    case NADIR_OK: return "no fault";
    case NADIR_NO_MEMORY: return "not enough memory";
    case NADIR_NULL_POINTER: return "a pointer that must lead somewhere is null";
    case NADIR_BAD_RECORD: return "a record is of another version of the library";
    case NADIR_BAD_CAMERA: return "a number of the camera is missing or out of range";
    case NADIR_BAD_SETTING: return "a setting is out of range";
    case NADIR_BAD_AREA: return "an area needs 3 to 100 corners, none too far away";
    case NADIR_MAP_OUT_OF_REACH: return "areas need a map that ends near the camera";
    case NADIR_CAMERA_TOO_HIGH: return "areas in pixels need a camera that hangs lower";
    case NADIR_CORNER_OFF_GROUND: return "a corner of an area does not show the ground near the camera";
    case NADIR_AREA_WITHOUT_CELLS: return "an area holds the centre of no cell of the map";
    case NADIR_BAD_FRAME:
      return "a frame lacks a picture, or its bits, its strides or a measured height are out of range";
    case NADIR_FOREIGN_RESULT: return "the result was made for another road";
    case NADIR_NOTHING_FOUND: return "there is none";
    case NADIR_BAD_STATE: return "what was saved is damaged or of another tracker";
    case NADIR_BAD_TIME: return "frames go back in time";
    default: return "unknown status";
  }
}
