// A part's run.json tells its range; all else in it is the whole run's.
#include "tools/sequence/run_parts.hpp"

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/files/files.hpp"
#include "tools/sequence/settings_difference.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

size_t placeIn(const Json& place) { return wholeNumberIn<size_t>(place, 0, SIZE_MAX); }

RunPart partIn(const std::string& folder, const std::string& settings) {
  const std::string path = folder + "/run.json", text = readText(path);
  try {
    checkNesting(text);
    Json own = Json::parse(text);
    const Json range = own.at("frames");
    own.erase("frames");
    const std::string difference = settingsDifference(own.dump(), settings);
    if (!difference.empty()) throw Error("cannot join " + folder + ", which has other settings: " + difference);
    return {folder, {placeIn(range.at(0)), placeIn(range.at(1))}};
  } catch (const nlohmann::json::exception&) {
    throw Error("cannot join " + folder + ": its run.json tells of no range of frames");
  } catch (const UnusableFile& reason) {
    throw Error("cannot join " + folder + ": " + reason.what());
  }
}

}  // namespace

std::vector<RunPart> runParts(const std::string& folder, const std::string& settings) {
  std::vector<RunPart> all;
  std::error_code unreadable;
  for (const auto& entry : fs::directory_iterator(folder, unreadable))
    if (entry.is_directory()) all.push_back(partIn(entry.path().string(), settings));
  if (unreadable) throw Error("cannot read the folder " + folder + ": " + unreadable.message());
  std::sort(all.begin(), all.end(), [](const RunPart& a, const RunPart& b) { return a.range.begin < b.range.begin; });
  size_t reached = 0, count = 0;
  for (; count < all.size() && all[count].range.begin <= reached; reached = all[count++].range.end)
    if (all[count].range.begin < reached)
      throw Error("cannot join " + all[count - 1].folder + " and " + all[count].folder + ": both have the same frames");
  all.resize(count);
  return all;
}

}  // namespace nadir::tool
