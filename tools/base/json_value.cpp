// Numbers rounded for JSON.
#include "tools/base/json_value.hpp"

#include <cmath>
#include <cstdlib>

#include "tools/base/text.hpp"

namespace nadir::tool {

Json roundedNumber(double value, double steps) {
  return std::isfinite(value) ? Json(std::round(value * steps) / steps) : Json();
}

Json significantNumber(double value) {
  if (!std::isfinite(value)) return Json();
  const double kept = std::strtod(format("%.9g", value).c_str(), nullptr);
  const bool isWhole = kept == std::floor(kept) && std::abs(kept) < 1e9;
  return isWhole ? Json(static_cast<int64_t>(kept)) : Json(kept);
}

}  // namespace nadir::tool
