// The hashes that nadir verify compares with, written by scripts/record/verify-table.
#include "lab/verify/verify.hpp"

namespace nadir::verify {

const Table& builtInTable() {
  static const Table table = {
      {"scene", 0xb18ae10e11dca763u},
      {"copies", 0xdaceaf0c495f5f31u},
      {"thresholds", 0x66a2a8ea600d0215u},
      {"arithmetic", 0x1ce735d9d8493e13u},
      {"masks", 0x0562b83d141c597cu},
      {"median", 0x2ddfef8ac41f3ae3u},
      {"maximum", 0x451a6267336b2aa5u},
      {"morphology", 0x496d895ce2b72f8bu},
      {"smoothing", 0x11804b75fbf4e6d6u},
      {"halving", 0x4c9eb439427e10adu},
      {"averages", 0x40c391d0f47cebe0u},
      {"hole filling", 0x6b7fbf5e7e26c4f5u},
      {"census", 0x1439dab8ac65f487u},
      {"costs", 0x81402fea72efe6a4u},
      {"costs, vector", 0x81402fea72efe6a4u},
      {"penalties", 0x5fea6862d1e3469fu},
      {"paths", 0x84ec402520a38ad9u},
      {"paths, vector", 0x84ec402520a38ad9u},
      {"selection", 0x9e1090f46082eabau},
      {"selection, vector", 0x9e1090f46082eabau},
      {"matching", 0xc6582d229af2e56bu},
      {"distinctiveness", 0xf0716a5e815685cau},
      {"post-processing", 0x0da0e7b2b92d605fu},
      {"calibration", 0x9310a2d8fe3701bbu},
      {"transforms", 0xc24583e0d6c0da9au},
      {"world points", 0x8c50b95d1835c65cu},
      {"ground points", 0x9edb656438dcbd76u},
      {"elevation map", 0xc3114b5f63fd9806u},
      {"map places", 0x53427887e1ec69e9u},
      {"fixed calibration", 0x6e579d9ae02c760au},
      {"fixed point", 0xff1b844b17bdf57du},
      {"elevation mask", 0x234c5bb9ece6d337u},
      {"labelling", 0x8e2b44ae30790bf6u},
      {"components", 0xbe838549295b969du},
      {"contour filter", 0xc5f1cfe8e2ad687eu},
      {"region growing", 0x013d2265128a0a23u},
      {"elevation regions", 0xfc6536f3fa1c8234u},
      {"geometry", 0xbc79fd3b8da1e9e0u},
      {"geometry, float", 0x988d255c74d561aeu},
      {"rectangles", 0x4245d9a2255cb876u},
      {"polygons", 0x59916683a46f5488u},
      {"lines", 0x0059e33a6b81fc90u},
      {"matrices", 0xb2ead83d8dcd9c21u},
      {"median of values", 0x006fc944c32dcfc2u},
      {"sorting", 0x3a764b74db604f2du},
      {"tracking", 0xc1b66e9f4f7c7f90u},
      {"search", 0xfb777970fd6dd748u},
      {"lists", 0xcb693ed57a161606u},
      {"vectors", 0x9aee4731f52422bdu},
  };
  return table;
}

}  // namespace nadir::verify
