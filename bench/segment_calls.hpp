// Calls of segment.h with all that they need kept alive.
#pragma once

#include <functional>
#include <memory>

#include "bench/picture.hpp"

namespace nadir::bench {

using Call = std::function<void()>;
using Picture16 = std::shared_ptr<lab::Picture<uint16_t>>;

Call labelling(const Picture16& src);                        // IP_CompFind_Process
Call smallBlobsRemoved(const Picture16& src);                // IP_ContourFilter
Call componentsFound(const Picture16& src);                  // IP_CompFinder_Process
Call regionsMapped(const Picture16& elev, int32_t maxStep);  // IP_RGE_Process, IP_RGE_CreateLabelMap
Call regionsListed(const Picture16& elev, int32_t maxStep);  // IP_RGE_Process, IP_RGE_CreateRegionList
Call regionsGrown(const Picture16& src, int32_t maxStep);    // IP_RGrow_Process

}  // namespace nadir::bench
