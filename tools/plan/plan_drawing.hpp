// A plan drawn from the side and from above, as SVG.
#pragma once

#include "tools/files/files.hpp"
#include "tools/plan/plan.hpp"

namespace nadir::tool {

Bytes encodePlanDrawing(const Plan& plan);

}  // namespace nadir::tool
